#pragma once

#include <QWidget>

class QLabel;

namespace mibrel {

// What a page or panel shows when it has nothing to show: a heading that says so and a
// line that says what to do about it.
class MibrelKitEmptyState : public QWidget {
    Q_OBJECT

public:
    explicit MibrelKitEmptyState(QWidget* parent = nullptr);
    MibrelKitEmptyState(const QString& heading, const QString& text, QWidget* parent = nullptr);

    // An empty text hides the second line.
    void setTexts(const QString& heading, const QString& text);
    QString heading() const;
    QString text() const;

private:
    QLabel* m_heading;
    QLabel* m_text;
};

} // namespace mibrel
