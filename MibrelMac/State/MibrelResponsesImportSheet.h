#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "MibrelMac/State/MibrelSourcesState.h"

namespace mibrel {

// What the column-choice sheet shows and does while a response table waits. The
// researcher picks the answers' column and, if wanted, a column naming each respondent;
// labels start on row numbers.
struct MibrelResponsesImportSheet {
    static constexpr std::int64_t kRowNumbers = -1;
    static constexpr const char* kTitle = "Import Responses";
    static constexpr const char* kTextColumnTitle = "Response text column";
    static constexpr const char* kLabelColumnTitle = "Participant label column";
    static constexpr const char* kRowNumbersChoice = "Use row numbers";
    static constexpr const char* kPreviewTitle = "Preview (first row)";
    static constexpr const char* kCancelTitle = "Cancel";

    std::string fileName;
    TeskResponsesImport::Table table;
    std::int64_t textColumn = 0;
    std::int64_t labelColumn = kRowNumbers;

    // Starts on the suggested text column, or the first.
    static MibrelResponsesImportSheet make(const MibrelSourcesState::PendingResponsesImport& pending);

    // "answers.csv: 12 rows. Each row becomes one source."
    std::string summary() const;
    // The choosers' entries: each header, or "Column n" (from 1) where it is empty.
    std::vector<std::string> columnNames() const;
    // The first row's cell in the text column, if that row has one.
    std::optional<std::string> preview() const;
    // Rows whose text cell holds more than white space.
    std::int64_t importableRowCount() const;
    std::string importableRowsText() const;
    std::string importButtonTitle() const;
    bool canImport() const { return importableRowCount() > 0; }

    // Imports with the chosen columns and closes the sheet.
    void importInto(MibrelSourcesState& sources) const;
};

} // namespace mibrel
