#include "MibrelMac/Views/Kit/MibrelKitPill.h"

#include <QPainter>

#include "MibrelMac/Views/Kit/MibrelTypography.h"

namespace mibrel {

MibrelKitPill::MibrelKitPill(QWidget* parent) : QLabel(parent) {
    setObjectName(QStringLiteral("kitPill"));
    setFont(MibrelTypography::scaledFont(font(), design::captionScale, QFont::DemiBold));
    setContentsMargins(9, 2, 9, 2);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setStatus(QString(), design::Tone::neutral);
}

void MibrelKitPill::setStatus(const QString& text, design::Tone tone) {
    m_tone = tone;
    setText(text);
    QPalette colours = palette();
    colours.setColor(QPalette::WindowText, design::toneColor(tone));
    setPalette(colours);
    setAccessibleName(text);
    update();
}

void MibrelKitPill::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(design::toneFill(m_tone));
    painter.drawRoundedRect(rect(), design::pillRadius, design::pillRadius);
    painter.end();
    QLabel::paintEvent(event);
}

} // namespace mibrel
