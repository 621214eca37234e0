#include "MibrelMac/Views/Kit/MibrelTypography.h"

#include <QLabel>

#include "MibrelMac/Views/Kit/MibrelDesign.h"

namespace mibrel::MibrelTypography {

QFont scaledFont(QFont font, double factor, QFont::Weight weight) {
    if (font.pointSizeF() > 0) {
        font.setPointSizeF(font.pointSizeF() * factor);
    } else {
        font.setPixelSize(static_cast<int>(font.pixelSize() * factor));
    }
    font.setWeight(weight);
    return font;
}

QLabel* makeLabel(const QString& text, const QFont& font, bool secondary, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setFont(font);
    label->setWordWrap(true);
    // The palette role, not a copied colour, so a theme change while open is followed.
    if (secondary) label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

QLabel* pageTitle(const QString& text, QWidget* parent) {
    return makeLabel(text, scaledFont(parent->font(), design::pageTitleScale, QFont::DemiBold), false, parent);
}

QLabel* sectionHeader(const QString& text, QWidget* parent) {
    QLabel* header = makeLabel(text, scaledFont(parent->font(), design::sectionHeaderScale, QFont::DemiBold), true,
                               parent);
    header->setWordWrap(false);
    return header;
}

} // namespace mibrel::MibrelTypography
