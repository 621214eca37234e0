#include "MibrelMac/Views/Sources/MibrelSourceInspectorPanel.h"

#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include "MibrelMac/State/Tools/Sources/MibrelSourceInspectorPresenter.h"
#include "MibrelMac/Views/Kit/MibrelKitText.h"
#include "MibrelMac/Views/MibrelTypography.h"

namespace mibrel {
namespace {

QFormLayout* makeForm() {
    auto* form = new QFormLayout;
    form->setContentsMargins(0, 0, 0, 0);
    form->setRowWrapPolicy(QFormLayout::WrapLongRows);
    form->setLabelAlignment(Qt::AlignLeft);
    return form;
}

void fillForm(QFormLayout* form, const std::vector<MibrelSourceInspectorPresenter::Field>& fields, QWidget* parent) {
    while (form->rowCount() > 0) form->removeRow(0);
    for (const auto& field : fields) {
        auto* value = new QLabel(kit::qtText(field.value), parent);
        value->setWordWrap(true);
        value->setTextInteractionFlags(Qt::TextSelectableByMouse);
        value->setAccessibleName(kit::qtText(field.label));
        form->addRow(kit::qtText(field.label), value);
    }
}

QLabel* sectionHeader(const QString& text, QWidget* parent) {
    return MibrelTypography::makeLabel(text, MibrelTypography::scaledFont(parent->font(), 0.9, QFont::DemiBold), true,
                                       parent);
}

} // namespace

MibrelSourceInspectorPanel::MibrelSourceInspectorPanel(MibrelSourcesState& sources, MibrelWorkspaceState& workspace,
                                                       QWidget* parent)
    : QWidget(parent), m_presenter(new MibrelSourceInspectorPresenter(sources, workspace, this)) {
    setObjectName(QStringLiteral("sourceInspector"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 16, 16, 16);
    layout->setSpacing(8);
    layout->addWidget(sectionHeader(QStringLiteral("Inspector"), this));
    m_empty = MibrelTypography::makeLabel(QString::fromUtf8(MibrelSourceInspectorPresenter::kEmptyText),
                                          MibrelTypography::scaledFont(font(), 1.0), true, this);
    m_empty->setWordWrap(true);
    layout->addWidget(m_empty);

    m_content = new QWidget(this);
    auto* content = new QVBoxLayout(m_content);
    content->setContentsMargins(0, 0, 0, 0);
    content->setSpacing(8);
    content->addWidget(sectionHeader(QStringLiteral("Label"), m_content));
    m_label = new QLineEdit(m_content);
    m_label->setObjectName(QStringLiteral("sourceInspectorLabel"));
    m_label->setAccessibleName(QStringLiteral("Label"));
    content->addWidget(m_label);
    content->addSpacing(6);
    content->addWidget(sectionHeader(QStringLiteral("Details"), m_content));
    m_details = makeForm();
    content->addLayout(m_details);
    content->addSpacing(6);
    content->addWidget(sectionHeader(QStringLiteral("Counts"), m_content));
    m_counts = makeForm();
    content->addLayout(m_counts);
    layout->addWidget(m_content);
    layout->addStretch();

    connect(m_label, &QLineEdit::editingFinished, this, [this] { m_presenter->rename(m_label->text().toStdString()); });
    connect(m_presenter, &MibrelSourceInspectorPresenter::changed, this, &MibrelSourceInspectorPanel::refresh);
    refresh();
}

void MibrelSourceInspectorPanel::refresh() {
    const TeskSource* source = m_presenter->source();
    m_empty->setVisible(source == nullptr);
    m_content->setVisible(source != nullptr);
    if (source == nullptr) return;
    // A blank name was refused: the field shows the name that stands.
    if (!m_label->hasFocus() || m_label->text().trimmed().isEmpty()) m_label->setText(kit::qtText(source->label));
    fillForm(m_details, m_presenter->details(), m_content);
    fillForm(m_counts, m_presenter->counts(), m_content);
}

} // namespace mibrel
