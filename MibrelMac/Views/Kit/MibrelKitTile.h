#pragma once

#include <QFrame>

class QLabel;

namespace mibrel {

// A figure with its label under it ("12" over "Segments"), the way every tool shows counts.
class MibrelKitTile : public QFrame {
    Q_OBJECT

public:
    explicit MibrelKitTile(QWidget* parent = nullptr);
    MibrelKitTile(const QString& value, const QString& label, QWidget* parent = nullptr);

    void setValue(const QString& value, const QString& label);
    QString value() const;
    QString label() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QLabel* m_value;
    QLabel* m_label;
};

} // namespace mibrel
