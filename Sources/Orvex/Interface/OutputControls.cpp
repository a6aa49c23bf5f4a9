#include "OutputControls.h"

#include "ColorControls.h"
#include "Controls.h"
#include "MediaControls.h"
#include "OutputButtons.h"
#include "PresetControls.h"

namespace orvex {

OutputControls::OutputControls(OrvexModel& session, QWidget* parent) : QWidget(parent) {
    auto* layout = controls::column(this);
    layout->addWidget(new MediaControls(session));
    layout->addWidget(new ColorControls(session));
    layout->addWidget(new PresetControls(session));
    layout->addWidget(new OutputButtons(session));
}

} // namespace orvex
