#include "MibrelMac/Views/Coding/MibrelCodingInspectorPanel.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextCursor>
#include <QVBoxLayout>

#include "MibrelMac/State/MibrelWorkspaceState.h"
#include "MibrelMac/State/Tools/Coding/MibrelCodingInspectorPresenter.h"
#include "MibrelMac/Views/Kit/MibrelDesign.h"
#include "MibrelMac/Views/Kit/MibrelKitChip.h"
#include "MibrelMac/Views/Kit/MibrelKitEmptyState.h"
#include "MibrelMac/Views/Kit/MibrelKitText.h"
#include "MibrelMac/Views/Kit/MibrelTypography.h"

namespace mibrel {
namespace {

QPlainTextEdit* makeDraft(const QString& name, const QString& prompt, int lines, QWidget* parent) {
    auto* draft = new QPlainTextEdit(parent);
    draft->setAccessibleName(name);
    draft->setPlaceholderText(prompt);
    draft->setTabChangesFocus(true);
    draft->setFixedHeight(draft->fontMetrics().lineSpacing() * lines + 14);
    return draft;
}

} // namespace

MibrelCodingInspectorPanel::MibrelCodingInspectorPanel(MibrelSourcesState& sources, MibrelWorkspaceState& workspace,
                                                       MibrelShellUIState& shellUI, QWidget* parent)
    : QWidget(parent), m_presenter(new MibrelCodingInspectorPresenter(sources, workspace, shellUI, this)),
      m_workspace(workspace) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(design::panelMargin, design::panelMargin, design::panelMargin, design::panelMargin);
    layout->setSpacing(design::itemSpacing);
    layout->addWidget(MibrelTypography::sectionHeader(QStringLiteral("Inspector"), this));
    m_empty = new MibrelKitEmptyState(QString::fromUtf8(MibrelCodingInspectorPresenter::kNoSelectionTitle),
                                      QString::fromUtf8(MibrelCodingInspectorPresenter::kNoSelectionText), this);
    layout->addWidget(m_empty);
    m_content = new QWidget(this);
    auto* content = new QVBoxLayout(m_content);
    content->setContentsMargins(0, 0, 0, 0);
    content->setSpacing(6);
    content->addWidget(MibrelTypography::sectionHeader(QStringLiteral("Segment"), m_content));
    m_segmentText = makeDraft(QStringLiteral("Segment text"), QString(), 5, m_content);
    m_segmentText->setObjectName(QStringLiteral("codingInspectorSegmentText"));
    m_segmentText->setReadOnly(true);
    m_segmentText->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_segmentText->setToolTip(QStringLiteral("Select words here to make them the excerpt"));
    content->addWidget(m_segmentText);
    content->addWidget(MibrelTypography::sectionHeader(QStringLiteral("Code"), m_content));
    m_noCodes = MibrelTypography::makeLabel(QString::fromUtf8(MibrelCodingInspectorPresenter::kNoCodesText), font(),
                                            true, m_content);
    content->addWidget(m_noCodes);
    m_code = new QComboBox(m_content);
    m_code->setObjectName(QStringLiteral("codingInspectorCode"));
    m_code->setAccessibleName(QStringLiteral("Code"));
    content->addWidget(m_code);
    m_newCode = new QLineEdit(m_content);
    m_newCode->setObjectName(QStringLiteral("codingInspectorNewCode"));
    m_newCode->setPlaceholderText(QStringLiteral("Or new code name"));
    m_newCode->setAccessibleName(QStringLiteral("Or new code name"));
    content->addWidget(m_newCode);
    content->addWidget(MibrelTypography::sectionHeader(QStringLiteral("Excerpt"), m_content));
    m_excerpt = makeDraft(QStringLiteral("Excerpt"), QStringLiteral("Trim to the words that matter"), 4, m_content);
    m_excerpt->setObjectName(QStringLiteral("codingInspectorExcerpt"));
    content->addWidget(m_excerpt);
    content->addWidget(MibrelTypography::sectionHeader(QStringLiteral("Memo (optional)"), m_content));
    m_memo = makeDraft(QStringLiteral("Memo (optional)"), QString(), 3, m_content);
    m_memo->setObjectName(QStringLiteral("codingInspectorMemo"));
    content->addWidget(m_memo);
    m_apply = new QPushButton(QStringLiteral("Apply Code"), m_content);
    m_apply->setObjectName(QStringLiteral("codingInspectorApply"));
    m_pin = new QPushButton(QStringLiteral("Pin Quote for Evidence"), m_content);
    m_pin->setObjectName(QStringLiteral("codingInspectorPin"));
    content->addWidget(m_apply);
    content->addWidget(m_pin);
    content->addSpacing(6);
    content->addWidget(MibrelTypography::sectionHeader(QStringLiteral("Applied codes"), m_content));
    m_applied = new QVBoxLayout;
    m_applied->setSpacing(4);
    content->addLayout(m_applied);
    layout->addWidget(m_content);
    layout->addStretch();

    connect(m_apply, &QPushButton::clicked, this, [this] {
        takeDrafts();
        m_presenter->apply();
        showDrafts();
    });
    connect(m_pin, &QPushButton::clicked, this, [this] {
        takeDrafts();
        m_presenter->pinQuote();
    });
    connect(m_segmentText, &QPlainTextEdit::selectionChanged, this, &MibrelCodingInspectorPanel::takeSelection);
    connect(m_presenter, &MibrelCodingInspectorPresenter::changed, this, &MibrelCodingInspectorPanel::refresh);
    refresh();
}

// Selecting words in the segment makes them the excerpt, at the place they were selected.
void MibrelCodingInspectorPanel::takeSelection() {
    const QTextCursor cursor = m_segmentText->textCursor();
    if (!cursor.hasSelection()) return;
    const QString text = m_segmentText->toPlainText();
    QString selected = cursor.selectedText();
    selected.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
    m_presenter->takeSelection(selected.toStdString(), text.left(cursor.selectionStart()).toStdString());
    m_excerpt->setPlainText(kit::qtText(m_presenter->excerpt));
}

void MibrelCodingInspectorPanel::takeDrafts() {
    const QVariant chosen = m_code->currentData();
    m_presenter->selectedCodeID = chosen.isValid() ? Uuid::parse(chosen.toString().toStdString()) : std::nullopt;
    m_presenter->newCodeName = m_newCode->text().toStdString();
    m_presenter->excerpt = m_excerpt->toPlainText().toStdString();
    m_presenter->memo = m_memo->toPlainText().toStdString();
}

void MibrelCodingInspectorPanel::showDrafts() {
    m_newCode->setText(kit::qtText(m_presenter->newCodeName));
    m_excerpt->setPlainText(kit::qtText(m_presenter->excerpt));
    m_memo->setPlainText(kit::qtText(m_presenter->memo));
}

void MibrelCodingInspectorPanel::refresh() {
    const bool selected = m_presenter->segment() != nullptr;
    m_empty->setVisible(!selected);
    m_content->setVisible(selected);
    if (!selected) return;
    const QString segmentText = kit::qtText(m_presenter->segment()->text);
    if (m_segmentText->toPlainText() != segmentText) m_segmentText->setPlainText(segmentText);
    fillCodes();
    fillApplied();
    // Drafts the presenter cleared (another segment, a finished apply) clear here too.
    if (m_presenter->excerpt.empty() && m_presenter->memo.empty() && m_presenter->newCodeName.empty()) showDrafts();
}

void MibrelCodingInspectorPanel::fillCodes() {
    const QVariant keep = m_code->currentData();
    m_code->clear();
    for (const TeskCode& code : m_workspace.workspace().codes) {
        m_code->addItem(kit::qtText(code.name), kit::qtText(code.id.uuidString()));
    }
    m_noCodes->setVisible(m_code->count() == 0);
    m_code->setVisible(m_code->count() > 0);
    if (const int at = m_code->findData(keep); at >= 0) m_code->setCurrentIndex(at);
}

void MibrelCodingInspectorPanel::fillApplied() {
    while (QLayoutItem* item = m_applied->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    for (const TeskCodeApplication& application : m_presenter->appliedCodes()) {
        const TeskCode* code = m_workspace.code(application.codeID);
        if (code == nullptr) continue;
        const QString name = kit::qtText(code->name);
        auto* chip = new MibrelKitChip(name, name, QStringLiteral("Remove code ") + name, m_content);
        connect(chip, &MibrelKitChip::removeRequested, this, [this, id = application.id] {
            QMetaObject::invokeMethod(this, [this, id] { m_workspace.deleteApplication(id); }, Qt::QueuedConnection);
        });
        m_applied->addWidget(chip, 0, Qt::AlignLeft);
    }
}

} // namespace mibrel
