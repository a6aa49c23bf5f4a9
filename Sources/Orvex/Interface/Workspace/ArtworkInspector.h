#pragma once

#include "OrvexModel.h"

#include <QLabel>
#include <QList>
#include <QPushButton>
#include <QWidget>

namespace orvex {

class Card;
class InchFieldView;

/// The selected artwork: what it is, its size and position by number, and what can be done with it. Main thread.
class ArtworkInspector : public QWidget {
    Q_OBJECT

public:
    explicit ArtworkInspector(OrvexModel& session, QWidget* parent = nullptr);

    void syncFromSession();

private:
    void build();
    [[nodiscard]] QWidget* emptyState();
    [[nodiscard]] QWidget* selectedState();
    void addSizes(QLayout& layout);
    void addPosition(QLayout& layout);
    void addButtons(QLayout& layout);
    void addButton(QLayout& layout, const QString& name, const QString& text, void (OrvexModel::*command)());
    void connectSignals();

    void bindFields(const QUuid& id);
    void showArtwork(const RollArtwork& artwork);
    void removeSelected();

    OrvexModel& session_;
    std::optional<QUuid> boundID_; ///< of the artwork that the fields stand for
    QWidget* empty_;
    QWidget* selected_;
    QLabel* title_;
    QLabel* pixelSize_;
    InchFieldView* width_;
    InchFieldView* height_;
    QLabel* reference_;
    QLabel* sizeSource_;
    InchFieldView* scale_;
    QLabel* frame_;
    InchFieldView* left_;
    InchFieldView* top_;
    QLabel* resolution_;
    QLabel* missing_;
    QList<QPushButton*> buttons_;
};

} // namespace orvex
