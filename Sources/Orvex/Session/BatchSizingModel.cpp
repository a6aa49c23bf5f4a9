#include "BatchSizingModel.h"

#include "BackgroundTask.h"
#include "Layout/InchLayout.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"
#include "OrvexModel.h"

#include <QCoroFuture>
#include <QPointer>

#include <algorithm>

namespace orvex {

namespace {

QString nothingToResize() {
    return spt("请先选择要修改尺寸的作品。", "Select the artworks to resize first.");
}

QFuture<BatchArrangementPreview> startArranging(const RollLayout& sized, bool allowQuarterTurns) {
    return platform::startUserInitiatedTask(
        [sized, allowQuarterTurns] { return BatchArrangementPreview::make(sized, allowQuarterTurns); });
}

} // namespace

BatchSizingModel::BatchSizingModel(OrvexModel& session, QObject* parent)
    : BatchSizingModel(
          session.rollLayout(),
          [&session](const RollLayout& layout, const RollLayout& basedOn) {
              return session.applyBatchArrangement(layout, basedOn);
          },
          parent) {}

BatchSizingModel::BatchSizingModel(RollLayout original, Apply apply, QObject* parent)
    : QObject(parent),
      original_(std::move(original)),
      apply_(std::move(apply)) {
    connect(&announcer_, &ChangeAnnouncer::changed, this, &BatchSizingModel::changed);
    for (const RollArtwork& item : original_.items) {
        rows_.append(BatchSizeDraft::make(item, original_.widthInches));
    }
}

BatchSizingModel::~BatchSizingModel() {
    calculation_.request_stop();
}

QList<QUuid> BatchSizingModel::enabledIDs() const {
    QList<QUuid> ids;
    for (const BatchSizeDraft& each : rows_) {
        if (each.enabled) {
            ids.append(each.item.id);
        }
    }
    return ids;
}

bool BatchSizingModel::canCalculatePreview() const {
    return !calculating_ && !enabledIDs().isEmpty();
}

bool BatchSizingModel::canApply() const {
    return !calculating_ && preview_.has_value();
}

QString BatchSizingModel::selectionText() const {
    return spt("已选 %1 幅，共 %2 幅", "%1 of %2 selected").arg(enabledIDs().size()).arg(rows_.size());
}

QString BatchSizingModel::tickLabel(const BatchSizeDraft& row) {
    return spt("选择作品 %1", "Select artwork %1").arg(row.item.title);
}

QString BatchSizingModel::fieldLabel(const BatchSizeDraft& row, BatchDimension dimension) {
    return dimension == BatchDimension::width
               ? spt("%1，作品宽度，英寸", "%1, Artwork width, inches").arg(row.item.title)
               : spt("%1，作品高度，英寸", "%1, Artwork height, inches").arg(row.item.title);
}

void BatchSizingModel::edit(const BatchFieldID& field, const QString& text) {
    if (BatchSizeDraft* const edited = row(field.id)) {
        edited->edit(text, field.dimension);
        dropResult();
    }
}

void BatchSizingModel::setEnabled(const QUuid& id, bool enabled) {
    BatchSizeDraft* const ticked = row(id);
    if (ticked != nullptr && ticked->enabled != enabled) {
        ticked->enabled = enabled;
        dropResult();
    }
}

void BatchSizingModel::selectAll() {
    enableAll(true);
}

void BatchSizingModel::deselectAll() {
    enableAll(false);
}

void BatchSizingModel::setDimensionFocus(const std::optional<BatchFieldID>& field) {
    if (field == dimensionFocus_) {
        return;
    }
    dimensionFocus_ = field;
    if (previousDimensionFocus_) {
        confirm(previousDimensionFocus_->id);
    }
    previousDimensionFocus_ = field;
    announcer_.announce();
}

void BatchSizingModel::submit(const BatchFieldID& field) {
    confirm(field.id);
    setDimensionFocus(std::nullopt);
}

void BatchSizingModel::setDimension(BatchDimension dimension) {
    dimension_ = dimension;
    announcer_.announce();
}

void BatchSizingModel::setCommonSize(const QString& text) {
    commonSize_ = text;
    announcer_.announce();
}

void BatchSizingModel::setAllowRotation(bool allowed) {
    if (allowRotation_ != allowed) {
        allowRotation_ = allowed;
        dropResult(); // an arrangement with turns is not to be applied once they are ruled out
    }
}

void BatchSizingModel::setPastedSizes(const QString& text) {
    pastedSizes_ = text;
    announcer_.announce();
}

void BatchSizingModel::setPasteExpanded(bool expanded) {
    pasteExpanded_ = expanded;
    announcer_.announce();
}

void BatchSizingModel::fillCommonSize() {
    if (enabledIDs().isEmpty()) {
        report(nothingToResize());
        return;
    }
    const auto size = PrintUnits::parseDecimalInput(commonSize_, QLocale());
    if (!size || *size <= 0.0) {
        report(batchSizeNotPositive());
        return;
    }
    for (BatchSizeDraft& each : rows_) {
        if (each.enabled) {
            each.edit(commonSize_, dimension_);
            each.confirm();
        }
    }
    dropResult();
}

void BatchSizingModel::fillPastedSizes() {
    QList<BatchSizeDraft> filled = rows_;
    try {
        const QList<QUuid> ids = enabledIDs();
        if (ids.isEmpty()) {
            throw OrvexError::invalid(
                spt("请先选择要填入尺寸的作品。", "Select the artworks to fill with sizes first."));
        }
        const auto requests = BatchArtworkSizeParser::requests(pastedSizes_, ids);
        const RollLayout sized = original_.sizingArtworks(requests, allowRotation_);
        for (BatchSizeDraft& each : filled) {
            if (each.enabled) {
                each.take(sized.items.at(sized.index(each.item.id)));
            }
        }
    } catch (const OrvexError& error) {
        preview_.reset();
        report(error.message());
        return;
    }
    rows_ = filled;
    dropResult();
}

void BatchSizingModel::calculatePreview() {
    if (calculating_) {
        return;
    }
    try {
        const RollLayout sized = sizedLayout();
        dropResult();
        calculating_ = true;
        calculation_ = std::stop_source();
        runCalculation(sized, calculation_.get_token());
    } catch (const OrvexError& error) {
        preview_.reset();
        report(error.message());
    }
}

/// The layout in the sizes of the ticked rows. Raises OrvexError.
RollLayout BatchSizingModel::sizedLayout() const {
    QList<BatchArtworkSizeRequest> requests;
    for (const BatchSizeDraft& each : rows_) {
        if (each.enabled) {
            requests.append(each.request());
        }
    }
    if (requests.isEmpty()) {
        throw OrvexError::invalid(nothingToResize());
    }
    return original_.sizingArtworks(requests, allowRotation_);
}

QCoro::Task<> BatchSizingModel::runCalculation(RollLayout sized, std::stop_token stop) {
    const QPointer<BatchSizingModel> self(this);
    std::optional<BatchArrangementPreview> result;
    QString failure;
    try {
        const QFuture<BatchArrangementPreview> arranging = startArranging(sized, allowRotation_);
        result = co_await arranging;
    } catch (const std::exception& exception) {
        failure = failureMessage(exception);
    }
    if (!self) {
        co_return; // the panel is gone
    }
    calculating_ = false;
    announcer_.announce();
    if (!stop.stop_requested()) {
        finishCalculation(result, failure);
    }
}

void BatchSizingModel::finishCalculation(const std::optional<BatchArrangementPreview>& result, const QString& failure) {
    preview_ = result;
    if (!result) {
        issue_ = failure;
    }
}

void BatchSizingModel::apply() {
    if (!canApply()) {
        return;
    }
    issue_ = apply_(preview_->layout, original_);
    announcer_.announce();
    if (!issue_) {
        Q_EMIT closed();
    }
}

void BatchSizingModel::cancel() {
    calculation_.request_stop();
    Q_EMIT closed();
}

BatchSizeDraft* BatchSizingModel::row(const QUuid& id) {
    const auto found = std::ranges::find_if(rows_, [&](const BatchSizeDraft& each) { return each.item.id == id; });
    return found == rows_.end() ? nullptr : &*found;
}

void BatchSizingModel::confirm(const QUuid& id) {
    if (BatchSizeDraft* const confirmed = row(id)) {
        confirmed->confirm();
        announcer_.announce();
    }
}

void BatchSizingModel::enableAll(bool enabled) {
    for (BatchSizeDraft& each : rows_) {
        each.enabled = enabled;
    }
    dropResult();
}

/// The sizes are no longer those of the preview, nor of one that is being calculated.
void BatchSizingModel::dropResult() {
    calculation_.request_stop();
    preview_.reset();
    issue_.reset();
    announcer_.announce();
}

void BatchSizingModel::report(const QString& issue) {
    issue_ = issue;
    announcer_.announce();
}

} // namespace orvex
