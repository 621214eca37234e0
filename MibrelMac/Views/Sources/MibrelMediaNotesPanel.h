#pragma once

#include <functional>

#include <QWidget>

class QLineEdit;
class QPushButton;
class QStandardItem;
class QStandardItemModel;
class QTreeView;

namespace mibrel {

class MibrelKitEmptyState;
class MibrelMediaNotesPresenter;
class MibrelSourcesState;

// The notes beside a recording: a field to add one at the player's current time, and the
// notes by time, each edited in place (emptied, it goes) and each a place to seek to.
class MibrelMediaNotesPanel : public QWidget {
    Q_OBJECT

public:
    // `playerTime` gives the player's position in seconds when a note is added.
    MibrelMediaNotesPanel(MibrelSourcesState& sources, std::function<double()> playerTime,
                          QWidget* parent = nullptr);

    MibrelMediaNotesPresenter& presenter() const { return *m_presenter; }

signals:
    void seekRequested(double seconds);

private:
    void refresh();
    void addNote();
    void commitEdit(QStandardItem* item);

    MibrelMediaNotesPresenter* m_presenter;
    std::function<double()> m_playerTime;
    QLineEdit* m_draft;
    QPushButton* m_add;
    QStandardItemModel* m_model;
    QTreeView* m_list;
    MibrelKitEmptyState* m_empty;
    bool m_filling = false;
};

} // namespace mibrel
