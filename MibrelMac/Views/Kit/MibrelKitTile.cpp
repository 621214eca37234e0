#include "MibrelMac/Views/Kit/MibrelKitTile.h"

#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

#include "MibrelMac/Views/Kit/MibrelDesign.h"
#include "MibrelMac/Views/Kit/MibrelTypography.h"

namespace mibrel {

MibrelKitTile::MibrelKitTile(QWidget* parent) : MibrelKitTile(QString(), QString(), parent) {}

MibrelKitTile::MibrelKitTile(const QString& value, const QString& label, QWidget* parent)
    : QFrame(parent),
      m_value(MibrelTypography::makeLabel(QString(), MibrelTypography::scaledFont(font(), design::tileNumberScale,
                                                                                  QFont::DemiBold),
                                          false, this)),
      m_label(MibrelTypography::makeLabel(QString(), MibrelTypography::scaledFont(font(), design::captionScale), true,
                                          this)) {
    setObjectName(QStringLiteral("kitTile"));
    m_value->setWordWrap(false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(12, 8, 12, 8);
    layout->setSpacing(0);
    layout->addWidget(m_value);
    layout->addWidget(m_label);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setValue(value, label);
}

void MibrelKitTile::setValue(const QString& value, const QString& label) {
    m_value->setText(value);
    m_label->setText(label);
    // Read as one phrase: "Segments: 12".
    setAccessibleName(label + QStringLiteral(": ") + value);
}

QString MibrelKitTile::value() const { return m_value->text(); }

QString MibrelKitTile::label() const { return m_label->text(); }

void MibrelKitTile::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette().color(QPalette::Mid), 1));
    painter.setBrush(palette().color(QPalette::AlternateBase));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), design::cornerRadius, design::cornerRadius);
    QFrame::paintEvent(event);
}

} // namespace mibrel
