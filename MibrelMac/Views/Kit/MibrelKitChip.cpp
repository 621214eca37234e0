#include "MibrelMac/Views/Kit/MibrelKitChip.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QToolButton>

#include "MibrelMac/Views/Kit/MibrelDesign.h"

namespace mibrel {

MibrelKitChip::MibrelKitChip(const QString& text, const QString& chooseName, const QString& removeName,
                             QWidget* parent)
    : QFrame(parent), m_choose(new QToolButton(this)) {
    setObjectName(QStringLiteral("kitChip"));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 1, 4, 1);
    layout->setSpacing(2);
    m_choose->setText(text);
    m_choose->setAutoRaise(true);
    m_choose->setAccessibleName(chooseName.isEmpty() ? text : chooseName);
    m_choose->setToolTip(chooseName);
    layout->addWidget(m_choose);
    connect(m_choose, &QToolButton::clicked, this, &MibrelKitChip::chosen);
    if (!removeName.isEmpty()) {
        m_remove = new QToolButton(this);
        m_remove->setText(QStringLiteral("×"));
        m_remove->setAutoRaise(true);
        m_remove->setAccessibleName(removeName);
        m_remove->setToolTip(removeName);
        layout->addWidget(m_remove);
        connect(m_remove, &QToolButton::clicked, this, &MibrelKitChip::removeRequested);
    }
    setAccessibleName(text);
}

QString MibrelKitChip::text() const { return m_choose->text(); }

void MibrelKitChip::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor outline = design::accent();
    QColor fill = outline;
    fill.setAlpha(0x1E);
    painter.setPen(QPen(outline, 1));
    painter.setBrush(fill);
    const qreal radius = height() / 2.0;
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    painter.end();
    QFrame::paintEvent(event);
}

} // namespace mibrel
