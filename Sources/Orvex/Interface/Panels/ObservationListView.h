#pragma once

#include "Stores/PrintJournal.h"

#include <QAbstractListModel>
#include <QListView>

namespace orvex {

/// The observations as a list that makes the texts of those alone that are looked at. Main thread.
class ObservationListModel : public QAbstractListModel {
    Q_OBJECT

public:
    using QAbstractListModel::QAbstractListModel;

    /// The newest first. A longer list that ends with what is shown keeps the reader's place.
    void setObservations(const QList<PrintObservation>& observations);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

private:
    [[nodiscard]] bool endsWithShown(const QList<PrintObservation>& observations) const;

    QList<PrintObservation> observations_;
};

/// Shows them, however many there are, each in as many lines as it needs. Main thread.
class ObservationListView : public QListView {
    Q_OBJECT

public:
    explicit ObservationListView(QWidget* parent = nullptr);

    void setObservations(const QList<PrintObservation>& observations) { model_->setObservations(observations); }

private:
    ObservationListModel* model_;
};

} // namespace orvex
