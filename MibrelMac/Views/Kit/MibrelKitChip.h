#pragma once

#include <QFrame>

class QToolButton;

namespace mibrel {

// A code (or theme) attached to something, as a small capsule: its name, which can be
// chosen, and a remove button. Both are buttons with names, so the keyboard and a screen
// reader reach them.
class MibrelKitChip : public QFrame {
    Q_OBJECT

public:
    // An empty `removeName` leaves the chip without a remove button.
    MibrelKitChip(const QString& text, const QString& chooseName, const QString& removeName,
                  QWidget* parent = nullptr);

    QString text() const;
    QToolButton* chooseButton() const { return m_choose; }
    QToolButton* removeButton() const { return m_remove; }

signals:
    void chosen();
    void removeRequested();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QToolButton* m_choose;
    QToolButton* m_remove = nullptr;
};

} // namespace mibrel
