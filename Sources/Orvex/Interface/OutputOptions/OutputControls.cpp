#include "OutputControls.h"

#include "Controls/Controls.h"
#include "OutputOptions/ColorControls.h"
#include "OutputOptions/MediaControls.h"
#include "OutputOptions/OutputButtons.h"
#include "OutputOptions/PresetControls.h"

namespace orvex {

OutputControls::OutputControls(OrvexModel& session, QWidget* parent) : QWidget(parent) {
    auto* layout = controls::column(this);
    layout->addWidget(new MediaControls(session));
    layout->addWidget(new ColorControls(session));
    layout->addWidget(new PresetControls(session));
    layout->addWidget(new OutputButtons(session));
}

} // namespace orvex
