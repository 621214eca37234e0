#include "MibrelMac/Views/Sources/MibrelMediaNotesPanel.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QStandardItemModel>
#include <QTreeView>
#include <QVBoxLayout>

#include "MibrelMac/State/Tools/Sources/MibrelMediaNotesPresenter.h"
#include "MibrelMac/Views/Kit/MibrelDesign.h"
#include "MibrelMac/Views/Kit/MibrelKitEmptyState.h"
#include "MibrelMac/Views/Kit/MibrelKitText.h"
#include "MibrelMac/Views/Kit/MibrelTypography.h"

namespace mibrel {
namespace {

constexpr int NoteIDRole = Qt::UserRole + 1;
constexpr int TimestampRole = Qt::UserRole + 2;

QTreeView* makeNoteList(QStandardItemModel* model, QWidget* parent) {
    auto* list = new QTreeView(parent);
    list->setObjectName(QStringLiteral("mediaNotesList"));
    list->setAccessibleName(QStringLiteral("Media notes"));
    list->setModel(model);
    list->setHeaderHidden(true);
    list->setRootIsDecorated(false);
    list->setWordWrap(true); // a long note shows whole, over several lines
    list->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
    list->header()->setStretchLastSection(true);
    list->header()->setSectionResizeMode(QHeaderView::ResizeToContents); // the time column fits its text
    return list;
}

} // namespace

MibrelMediaNotesPanel::MibrelMediaNotesPanel(MibrelSourcesState& sources, std::function<double()> playerTime,
                                             QWidget* parent)
    : QWidget(parent), m_presenter(new MibrelMediaNotesPresenter(sources, this)), m_playerTime(std::move(playerTime)),
      m_draft(new QLineEdit(this)), m_add(new QPushButton(QStringLiteral("Add Note"), this)),
      m_model(new QStandardItemModel(this)), m_list(makeNoteList(m_model, this)),
      m_empty(new MibrelKitEmptyState(this)) {
    setObjectName(QStringLiteral("mediaNotesPanel"));
    setMinimumWidth(240);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    layout->addWidget(MibrelTypography::sectionHeader(QStringLiteral("Media Notes"), this));
    auto* addRow = new QHBoxLayout;
    m_draft->setObjectName(QStringLiteral("mediaNoteDraft"));
    m_draft->setPlaceholderText(QStringLiteral("Note at the player's time"));
    m_draft->setAccessibleName(QStringLiteral("New media note"));
    m_add->setObjectName(QStringLiteral("mediaNoteAdd"));
    m_add->setToolTip(QStringLiteral("Add the note at the player's current time"));
    addRow->addWidget(m_draft, 1);
    addRow->addWidget(m_add);
    layout->addLayout(addRow);
    layout->addWidget(m_empty);
    layout->addWidget(m_list, 1);

    connect(m_add, &QPushButton::clicked, this, &MibrelMediaNotesPanel::addNote);
    connect(m_draft, &QLineEdit::returnPressed, this, &MibrelMediaNotesPanel::addNote);
    connect(m_model, &QStandardItemModel::itemChanged, this, &MibrelMediaNotesPanel::commitEdit);
    // A click on a note's time, or Enter on a note, seeks there.
    const auto seek = [this](const QModelIndex& index) {
        emit seekRequested(index.siblingAtColumn(0).data(TimestampRole).toDouble());
    };
    connect(m_list, &QTreeView::clicked, this, [seek](const QModelIndex& index) {
        if (index.column() == 0) seek(index);
    });
    connect(m_list, &QTreeView::activated, this, seek);
    auto* deleteKey = new QShortcut(QKeySequence::Delete, m_list, nullptr, nullptr, Qt::WidgetShortcut);
    connect(deleteKey, &QShortcut::activated, this, [this] {
        const QModelIndex index = m_list->currentIndex();
        if (const auto id = Uuid::parse(index.siblingAtColumn(0).data(NoteIDRole).toString().toStdString())) {
            m_presenter->remove(*id);
        }
    });
    connect(m_presenter, &MibrelMediaNotesPresenter::changed, this, &MibrelMediaNotesPanel::refresh);
    refresh();
}

void MibrelMediaNotesPanel::refresh() {
    setVisible(m_presenter->isAvailable());
    m_filling = true;
    m_model->clear();
    for (const auto& row : m_presenter->rows()) {
        auto* time = new QStandardItem(kit::qtText(row.timeText));
        time->setEditable(false);
        time->setData(kit::qtText(row.noteID.uuidString()), NoteIDRole);
        time->setData(row.timestamp, TimestampRole);
        time->setToolTip(QStringLiteral("Play from %1").arg(kit::qtText(row.timeText)));
        time->setForeground(design::accent());
        auto* text = new QStandardItem(kit::qtText(row.text));
        text->setToolTip(QStringLiteral("Double-click to edit; empty the note to delete it"));
        m_model->appendRow({time, text});
    }
    m_filling = false;
    const auto empty = m_presenter->emptyText();
    m_empty->setVisible(empty.has_value());
    if (empty) m_empty->setTexts(QString(), kit::qtText(*empty));
    m_list->setVisible(!empty.has_value());
}

void MibrelMediaNotesPanel::addNote() {
    const std::string text = m_draft->text().toStdString();
    m_presenter->add(m_playerTime ? m_playerTime() : 0.0, text);
    m_draft->clear();
}

void MibrelMediaNotesPanel::commitEdit(QStandardItem* item) {
    if (m_filling || item->column() != 1) return;
    const auto id = Uuid::parse(m_model->item(item->row(), 0)->data(NoteIDRole).toString().toStdString());
    const std::string text = item->text().toStdString();
    // The presenter's change refills the model; not from inside the model's own signal.
    if (id) QMetaObject::invokeMethod(this, [this, id = *id, text] { m_presenter->edit(id, text); }, Qt::QueuedConnection);
}

} // namespace mibrel
