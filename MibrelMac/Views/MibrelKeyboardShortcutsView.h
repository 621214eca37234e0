#pragma once

#include <QDialog>

namespace mibrel {

// Help → Keyboard Shortcuts: every key the window answers to, by where it works.
class MibrelKeyboardShortcutsView : public QDialog {
    Q_OBJECT

public:
    explicit MibrelKeyboardShortcutsView(QWidget* parent = nullptr);
};

} // namespace mibrel
