#pragma once

#include <QDialog>

#include "MibrelMac/State/MibrelResponsesImportSheet.h"

class QComboBox;
class QLabel;
class QPushButton;

namespace mibrel {

// The column choice for a waiting response table. Closing it any way but Import leaves
// the project as it was.
class MibrelResponsesImportSheetView : public QDialog {
    Q_OBJECT

public:
    MibrelResponsesImportSheetView(MibrelSourcesState& sources, QWidget* parent = nullptr);

private:
    void refresh();
    void importRows();

    MibrelSourcesState& m_sources;
    MibrelResponsesImportSheet m_sheet;
    QComboBox* m_textColumn;
    QComboBox* m_labelColumn;
    QLabel* m_preview;
    QLabel* m_count;
    QPushButton* m_import;
};

} // namespace mibrel
