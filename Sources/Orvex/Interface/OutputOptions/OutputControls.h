#pragma once

#include "OrvexModel.h"

#include <QWidget>

namespace orvex {

/// How and where the roll is printed: media, colours, presets, and the buttons of the output. Each part keeps itself up
/// to date. Main thread.
class OutputControls : public QWidget {
    Q_OBJECT

public:
    explicit OutputControls(OrvexModel& session, QWidget* parent = nullptr);
};

} // namespace orvex
