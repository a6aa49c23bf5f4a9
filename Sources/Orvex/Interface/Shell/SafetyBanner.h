#pragma once

#include "OrvexModel.h"

#include <QWidget>

namespace orvex {

/// The promise that the program leaves the printer's settings alone. Main thread.
class SafetyBanner : public QWidget {
    Q_OBJECT

public:
    explicit SafetyBanner(OrvexModel& session, QWidget* parent = nullptr);
};

} // namespace orvex
