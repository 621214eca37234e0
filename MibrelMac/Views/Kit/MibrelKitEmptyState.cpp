#include "MibrelMac/Views/Kit/MibrelKitEmptyState.h"

#include <QLabel>
#include <QVBoxLayout>

#include "MibrelMac/Views/Kit/MibrelDesign.h"
#include "MibrelMac/Views/Kit/MibrelTypography.h"

namespace mibrel {

MibrelKitEmptyState::MibrelKitEmptyState(QWidget* parent) : MibrelKitEmptyState(QString(), QString(), parent) {}

MibrelKitEmptyState::MibrelKitEmptyState(const QString& heading, const QString& text, QWidget* parent)
    : QWidget(parent),
      m_heading(MibrelTypography::makeLabel(QString(), MibrelTypography::scaledFont(font(), design::headingScale,
                                                                                    QFont::DemiBold),
                                            false, this)),
      m_text(MibrelTypography::makeLabel(QString(), font(), true, this)) {
    setObjectName(QStringLiteral("kitEmptyState"));
    m_heading->setObjectName(QStringLiteral("kitEmptyStateHeading"));
    m_text->setObjectName(QStringLiteral("kitEmptyStateText"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(m_heading);
    layout->addWidget(m_text);
    setTexts(heading, text);
}

void MibrelKitEmptyState::setTexts(const QString& heading, const QString& text) {
    m_heading->setText(heading);
    m_text->setText(text);
    m_text->setVisible(!text.isEmpty());
    setAccessibleName(text.isEmpty() ? heading : heading + QStringLiteral(". ") + text);
}

QString MibrelKitEmptyState::heading() const { return m_heading->text(); }

QString MibrelKitEmptyState::text() const { return m_text->text(); }

} // namespace mibrel
