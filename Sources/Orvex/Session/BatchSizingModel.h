#pragma once

#include "BatchArrangementPreview.h"
#include "BatchSizeDraft.h"
#include "ChangeAnnouncer.h"

#include <QCoroTask>

#include <functional>
#include <stop_token>

namespace orvex {

class OrvexModel;

/// What the panel for the print sizes of many artworks knows and does, without its drawing. It works on a copy of the
/// layout; only `apply` reaches the session, and no failure changes anything but a message. Main thread; the two
/// arrangements of a preview are computed in the background, and it may be destroyed meanwhile.
class BatchSizingModel : public QObject {
    Q_OBJECT

public:
    /// Puts an arrangement that started from `basedOn` into the session; the message to show, absent when applied.
    using Apply = std::function<std::optional<QString>(const RollLayout& layout, const RollLayout& basedOn)>;

    /// The panel as it opens over the session's layout. The session must outlive it.
    explicit BatchSizingModel(OrvexModel& session, QObject* parent = nullptr);

    /// The same over any layout.
    BatchSizingModel(RollLayout original, Apply apply, QObject* parent = nullptr);

    ~BatchSizingModel() override;

    // State

    [[nodiscard]] const RollLayout& original() const { return original_; }

    [[nodiscard]] const QList<BatchSizeDraft>& rows() const { return rows_; }

    [[nodiscard]] BatchDimension dimension() const { return dimension_; }

    [[nodiscard]] const QString& commonSize() const { return commonSize_; }

    [[nodiscard]] bool allowRotation() const { return allowRotation_; }

    [[nodiscard]] const QString& pastedSizes() const { return pastedSizes_; }

    [[nodiscard]] bool pasteExpanded() const { return pasteExpanded_; }

    [[nodiscard]] const std::optional<BatchArrangementPreview>& preview() const { return preview_; }

    [[nodiscard]] const std::optional<QString>& issue() const { return issue_; }

    [[nodiscard]] bool calculating() const { return calculating_; }

    [[nodiscard]] const std::optional<BatchFieldID>& dimensionFocus() const { return dimensionFocus_; }

    [[nodiscard]] const std::optional<BatchFieldID>& previousDimensionFocus() const { return previousDimensionFocus_; }

    /// The ids of the ticked rows, in their order.
    [[nodiscard]] QList<QUuid> enabledIDs() const;

    [[nodiscard]] bool canCalculatePreview() const;
    [[nodiscard]] bool canApply() const;

    // Texts with values, in the current language

    /// How many rows are ticked.
    [[nodiscard]] QString selectionText() const;

    /// The names of a row's tick box and of its fields for those who hear the screen.
    [[nodiscard]] static QString tickLabel(const BatchSizeDraft& row);
    [[nodiscard]] static QString fieldLabel(const BatchSizeDraft& row, BatchDimension dimension);

    // The rows

    /// A text as it is typed into a field.
    void edit(const BatchFieldID& field, const QString& text);

    void setEnabled(const QUuid& id, bool enabled);
    void selectAll();
    void deselectAll();

    /// The field that has the keyboard now, if any; the one that had it is confirmed.
    void setDimensionFocus(const std::optional<BatchFieldID>& field);

    /// Return in a field: confirms it and releases the keyboard.
    void submit(const BatchFieldID& field);

    // The common controls

    void setDimension(BatchDimension dimension);
    void setCommonSize(const QString& text);
    void setAllowRotation(bool allowed);
    void setPastedSizes(const QString& text);
    void setPasteExpanded(bool expanded);

    /// Gives all ticked rows the common size in the chosen dimension.
    void fillCommonSize();

    /// Gives the ticked rows the pasted sizes, all of them or none.
    void fillPastedSizes();

    // The buttons

    /// Arranges the ticked rows' sizes in the background; `preview` or `issue` follows.
    void calculatePreview();

    /// Puts the preview into the session and closes the panel; a refusal keeps it open.
    void apply();

    /// Drops a running calculation and closes the panel.
    void cancel();

Q_SIGNALS:
    /// The state may have changed; once a turn of the event loop.
    void changed();

    /// The panel is to go.
    void closed();

private:
    [[nodiscard]] BatchSizeDraft* row(const QUuid& id);
    [[nodiscard]] RollLayout sizedLayout() const;
    void confirm(const QUuid& id);
    void enableAll(bool enabled);
    void dropResult();
    void report(const QString& issue);
    QCoro::Task<> runCalculation(RollLayout sized, std::stop_token stop);
    void finishCalculation(const std::optional<BatchArrangementPreview>& result, const QString& failure);

    ChangeAnnouncer announcer_;
    const RollLayout original_;
    const Apply apply_;
    QList<BatchSizeDraft> rows_;
    BatchDimension dimension_ = BatchDimension::width;
    QString commonSize_;
    bool allowRotation_ = true;
    QString pastedSizes_;
    bool pasteExpanded_ = false;
    std::optional<BatchArrangementPreview> preview_;
    std::optional<QString> issue_;
    bool calculating_ = false;
    std::stop_source calculation_{std::nostopstate}; ///< of the running calculation
    std::optional<BatchFieldID> dimensionFocus_;
    std::optional<BatchFieldID> previousDimensionFocus_;
};

} // namespace orvex
