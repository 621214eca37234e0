#include "MibrelMac/Views/Sources/MibrelSourceInspectorPanel.h"

#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include "MibrelMac/State/Tools/Sources/MibrelSourceInspectorPresenter.h"
#include "MibrelMac/Views/Kit/MibrelDesign.h"
#include "MibrelMac/Views/Kit/MibrelKitEmptyState.h"
#include "MibrelMac/Views/Kit/MibrelKitText.h"
#include "MibrelMac/Views/Kit/MibrelKitTile.h"
#include "MibrelMac/Views/Kit/MibrelTypography.h"
#include "MibrelMac/Views/Player/MibrelAudioPlayer.h"

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

} // namespace

MibrelSourceInspectorPanel::MibrelSourceInspectorPanel(MibrelSourcesState& sources, MibrelWorkspaceState& workspace,
                                                       const MibrelAudioPlayer& player, QWidget* parent)
    : QWidget(parent), m_presenter(new MibrelSourceInspectorPresenter(sources, workspace, this)), m_player(player) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(design::panelMargin, design::panelMargin, design::panelMargin, design::panelMargin);
    layout->setSpacing(design::itemSpacing);
    layout->addWidget(MibrelTypography::sectionHeader(QStringLiteral("Inspector"), this));
    m_empty = new MibrelKitEmptyState(QStringLiteral("No source selected"),
                                      QString::fromUtf8(MibrelSourceInspectorPresenter::kEmptyText), this);
    layout->addWidget(m_empty);
    m_content = new QWidget(this);
    auto* content = new QVBoxLayout(m_content);
    content->setContentsMargins(0, 0, 0, 0);
    content->setSpacing(design::itemSpacing);
    content->addWidget(MibrelTypography::sectionHeader(QStringLiteral("Label"), m_content));
    m_label = new QLineEdit(m_content);
    m_label->setObjectName(QStringLiteral("sourceInspectorLabel"));
    m_label->setAccessibleName(QStringLiteral("Label"));
    content->addWidget(m_label);
    content->addSpacing(6);
    content->addWidget(MibrelTypography::sectionHeader(QStringLiteral("Details"), m_content));
    m_details = makeForm();
    content->addLayout(m_details);
    m_playbackError = MibrelTypography::makeLabel(QString(), font(), false, m_content);
    m_playbackError->setObjectName(QStringLiteral("sourceInspectorPlaybackError"));
    m_playbackError->setStyleSheet(QStringLiteral("color: %1;").arg(design::toneColor(design::Tone::error).name()));
    content->addWidget(m_playbackError);
    content->addSpacing(6);
    content->addWidget(MibrelTypography::sectionHeader(QStringLiteral("Counts"), m_content));
    m_counts = new QGridLayout;
    m_counts->setSpacing(6);
    content->addLayout(m_counts);
    layout->addWidget(m_content);
    layout->addStretch();
    connect(m_label, &QLineEdit::editingFinished, this, [this] { m_presenter->rename(m_label->text().toStdString()); });
    connect(m_presenter, &MibrelSourceInspectorPresenter::changed, this, &MibrelSourceInspectorPanel::refresh);
    connect(&m_player, &MibrelAudioPlayer::errorChanged, this, &MibrelSourceInspectorPanel::showPlaybackError);
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
    const auto counts = m_presenter->counts();
    while (m_tiles.size() < counts.size()) {
        const int index = static_cast<int>(m_tiles.size());
        m_tiles.push_back(new MibrelKitTile(m_content));
        m_counts->addWidget(m_tiles.back(), index / 2, index % 2);
    }
    for (std::size_t i = 0; i < counts.size(); ++i) {
        m_tiles[i]->setValue(kit::qtText(counts[i].value), kit::qtText(counts[i].label));
    }
    showPlaybackError();
}

void MibrelSourceInspectorPanel::showPlaybackError() {
    const QString error = m_player.errorText();
    m_playbackError->setVisible(!error.isEmpty());
    m_playbackError->setText(QStringLiteral("The recording cannot be played: %1").arg(error));
}

} // namespace mibrel
