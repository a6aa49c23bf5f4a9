#include "RollInchField.h"

#include "Layout/InchLayout.h"
#include "SizeTexts.h"

namespace orvex {

RollInchField::RollInchField(Binding value, bool artworkSize) : value_(std::move(value)), artworkSize_(artworkSize) {
    restart();
}

QString RollInchField::format(double value, bool artworkSize) {
    return artworkSize ? artworkSizeText(value) : inchesText(value);
}

void RollInchField::takeFocus() {
    focused_ = true;
    restart();
}

void RollInchField::type(const QString& text) {
    draft_ = text;
}

void RollInchField::commit() {
    if (!isStale()) {
        writeDraft();
    }
    restart();
}

void RollInchField::leaveFocus() {
    focused_ = false;
    commit();
}

void RollInchField::syncValue() {
    if (isStale()) {
        restart();
    }
}

void RollInchField::restart() {
    editBaseline_ = value_.read();
    draft_ = format(editBaseline_, artworkSize_);
}

bool RollInchField::isStale() const {
    return value_.read() != editBaseline_;
}

void RollInchField::writeDraft() const {
    const auto number = PrintUnits::parseDecimalInput(draft_, QLocale());
    const bool isOnlyVisited = draft_ == format(editBaseline_, artworkSize_);
    if (number && !isOnlyVisited && *number != value_.read()) {
        value_.write(*number);
    }
}

} // namespace orvex
