#include "MibrelMac/Views/MibrelResponsesImportSheetView.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "MibrelMac/Views/Kit/MibrelKitText.h"

namespace mibrel {
namespace {

QLabel* wrappingLabel(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setWordWrap(true);
    return label;
}

} // namespace

MibrelResponsesImportSheetView::MibrelResponsesImportSheetView(MibrelSourcesState& sources, QWidget* parent)
    : QDialog(parent), m_sources(sources), m_sheet(MibrelResponsesImportSheet::make(*sources.pendingResponsesImport())) {
    setWindowTitle(kit::qtText(MibrelResponsesImportSheet::kTitle));
    setObjectName(QStringLiteral("responsesImportSheet"));
    setMinimumWidth(520);
    auto* layout = new QVBoxLayout(this);
    auto* title = new QLabel(kit::qtText(MibrelResponsesImportSheet::kTitle), this);
    title->setStyleSheet(QStringLiteral("font-size: 15pt; font-weight: 600;"));
    layout->addWidget(title);
    layout->addWidget(wrappingLabel(kit::qtText(m_sheet.summary()), this));

    m_textColumn = new QComboBox(this);
    m_labelColumn = new QComboBox(this);
    m_labelColumn->addItem(kit::qtText(MibrelResponsesImportSheet::kRowNumbersChoice));
    for (const std::string& name : m_sheet.columnNames()) {
        m_textColumn->addItem(kit::qtText(name));
        m_labelColumn->addItem(kit::qtText(name));
    }
    m_textColumn->setCurrentIndex(static_cast<int>(m_sheet.textColumn));
    auto* form = new QFormLayout;
    form->addRow(kit::qtText(MibrelResponsesImportSheet::kTextColumnTitle), m_textColumn);
    form->addRow(kit::qtText(MibrelResponsesImportSheet::kLabelColumnTitle), m_labelColumn);
    layout->addLayout(form);

    auto* previewTitle = new QLabel(kit::qtText(MibrelResponsesImportSheet::kPreviewTitle), this);
    previewTitle->setStyleSheet(QStringLiteral("font-weight: 600;"));
    layout->addWidget(previewTitle);
    m_preview = wrappingLabel({}, this);
    m_preview->setTextFormat(Qt::PlainText);
    layout->addWidget(m_preview);
    m_count = new QLabel(this);
    layout->addWidget(m_count);

    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(kit::qtText(MibrelResponsesImportSheet::kCancelTitle), QDialogButtonBox::RejectRole);
    m_import = buttons->addButton(QString(), QDialogButtonBox::AcceptRole);
    m_import->setDefault(true);
    layout->addWidget(buttons);

    connect(buttons, &QDialogButtonBox::accepted, this, &MibrelResponsesImportSheetView::importRows);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_textColumn, &QComboBox::currentIndexChanged, this, [this](int index) {
        m_sheet.textColumn = index;
        refresh();
    });
    connect(m_labelColumn, &QComboBox::currentIndexChanged, this,
            [this](int index) { m_sheet.labelColumn = index - 1; }); // entry 0 is row numbers
    connect(this, &QDialog::rejected, &m_sources, &MibrelSourcesState::cancelResponsesImport);
    refresh();
}

void MibrelResponsesImportSheetView::refresh() {
    m_preview->setText(kit::qtText(m_sheet.preview().value_or("")));
    m_count->setText(kit::qtText(m_sheet.importableRowsText()));
    m_import->setText(kit::qtText(m_sheet.importButtonTitle()));
    m_import->setEnabled(m_sheet.canImport());
}

void MibrelResponsesImportSheetView::importRows() {
    m_sheet.importInto(m_sources);
    accept();
}

} // namespace mibrel
