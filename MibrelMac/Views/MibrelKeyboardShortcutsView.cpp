#include "MibrelMac/Views/MibrelKeyboardShortcutsView.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace mibrel {
namespace {

struct Shortcut {
    const char* keys;
    const char* action;
};

struct Place {
    const char* name;
    std::initializer_list<Shortcut> shortcuts;
};

const Place places[] = {
    {"Everywhere",
     {{"Ctrl+1 … Ctrl+9", "Show the first nine tools"},
      {"Alt+Ctrl+I", "Show or hide the inspector"},
      {"Ctrl+Z", "Undo"},
      {"Shift+Ctrl+Z", "Redo"},
      {"Ctrl+,", "Settings"},
      {"Ctrl+/", "This list"}}},
    {"Source list",
     {{"Up, Down", "Move through the sources"},
      {"Enter", "Open the source"},
      {"Delete", "Delete the source (asks first)"},
      {"Menu key", "The source's commands"}}},
    {"Sources: transcript",
     {{"F2", "Correct the segment"},
      {"Space", "Play the recording from the segment"},
      {"Menu key", "Split, merge or play the segment"}}},
    {"Sources: media notes",
     {{"Enter", "Play from the note's time"}, {"F2", "Edit the note"}, {"Delete", "Delete the note"}}},
    {"Read & Code",
     {{"Up, Down or J, K", "Move to the next or previous segment"},
      {"1 … 9", "Make the first nine codes of the palette active"},
      {"Enter", "Apply the active code to the segment"},
      {"P", "Pin the segment as an exemplar quote"},
      {"Space", "Play from the segment, or pause"},
      {"Menu key", "The segment's commands and its codes"}}},
};

} // namespace

MibrelKeyboardShortcutsView::MibrelKeyboardShortcutsView(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("keyboardShortcuts"));
    setWindowTitle(QStringLiteral("Keyboard Shortcuts"));
    resize(520, 560);
    auto* layout = new QVBoxLayout(this);
    auto* list = new QTreeWidget(this);
    list->setAccessibleName(QStringLiteral("Keyboard shortcuts"));
    list->setColumnCount(2);
    list->setHeaderLabels({QStringLiteral("Keys"), QStringLiteral("Action")});
    list->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    list->setRootIsDecorated(false);
    for (const Place& place : places) {
        auto* group = new QTreeWidgetItem(list, {QString::fromUtf8(place.name)});
        group->setFirstColumnSpanned(true);
        QFont bold = group->font(0);
        bold.setBold(true);
        group->setFont(0, bold);
        for (const Shortcut& shortcut : place.shortcuts) {
            new QTreeWidgetItem(group, {QString::fromUtf8(shortcut.keys), QString::fromUtf8(shortcut.action)});
        }
    }
    list->expandAll();
    layout->addWidget(list);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
}

} // namespace mibrel
