#pragma once

#include <QFont>
#include <QString>

class QLabel;
class QWidget;

// The few text styles the views share, derived from the desktop's own font so they follow
// the user's size and theme.
namespace mibrel::MibrelTypography {

QFont scaledFont(QFont font, double factor, QFont::Weight weight = QFont::Normal);

// A wrapping label; a secondary one takes the theme's muted colour, so hints and headers
// never compete with the content.
QLabel* makeLabel(const QString& text, const QFont& font, bool secondary, QWidget* parent = nullptr);

// A page's title, at the top of a tool.
QLabel* pageTitle(const QString& text, QWidget* parent);

// A small muted heading over a group of controls ("Details", "Counts").
QLabel* sectionHeader(const QString& text, QWidget* parent);

} // namespace mibrel::MibrelTypography
