#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <tuple>

#include "MibrelCore/Import/TeskTranscriptImport.h"
#include "MibrelMac/State/MibrelResponsesImportSheet.h"
#include "MibrelMac/State/MibrelScriptedPanels.h"
#include "MibrelMac/State/MibrelSourcesState.h"
#include "tools/mibrel-cli/CliCommand.h"

namespace mibrel::cli {
namespace {

struct TableReport {
    std::vector<std::string> headers;
    std::vector<std::vector<std::string>> rows;
    std::optional<std::int64_t> suggestedTextColumn;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TableReport;
        return std::tuple{required("headers", &T::headers), required("rows", &T::rows),
                          optional("suggestedTextColumn", &T::suggestedTextColumn)};
    }
};

struct ImportReport {
    std::int64_t imported = 0;
    std::optional<std::string> notice;
    std::optional<Uuid> selectedSourceID;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = ImportReport;
        return std::tuple{required("imported", &T::imported), optional("notice", &T::notice),
                          optional("selectedSourceID", &T::selectedSourceID)};
    }
};

struct ImportOptions {
    std::string project;
    std::string file;
    std::optional<std::int64_t> textColumn;
    std::optional<std::int64_t> labelColumn;
};

// The text as read, closed by a line break for the terminal's sake.
void printText(CliContext& context, const std::string& file) {
    const std::string text = TeskTranscriptImport::text(absolutePath(file));
    context.out << text << (text.ends_with('\n') ? "" : "\n");
}

void printTable(CliContext& context, const std::string& file) {
    auto table = TeskResponsesImport::table(absolutePath(file));
    const auto suggested = table.suggestedTextColumn();
    printJson(context.out, TableReport{std::move(table.headers), std::move(table.rows), suggested});
}

// Fails with the state's own words when the import did not happen.
void throwOnError(const MibrelSourcesState& sources) {
    if (sources.lastError()) throw std::runtime_error(*sources.lastError());
}

ImportReport report(const MibrelSourcesState& sources, std::int64_t imported) {
    const auto& notice = sources.latestImportNotice();
    return {imported, notice ? std::optional(notice->detail) : std::nullopt, sources.selectedSourceID()};
}

void checkColumn(const MibrelResponsesImportSheet& sheet, std::int64_t column, const char* option) {
    const auto count = static_cast<std::int64_t>(sheet.table.headers.size());
    if (column < 0 || column >= count) {
        throw UsageError(std::string(option) + " " + std::to_string(column) + " is not a column of this table; its " +
                         std::to_string(count) + " columns are numbered from 0 to " + std::to_string(count - 1) + ".");
    }
}

void importTranscript(CliContext& context, const ImportOptions& options) {
    MibrelScriptedPanels panels;
    MibrelSourcesState sources(panels);
    sources.bind(openedProject(options.project));
    sources.setLastError(std::nullopt); // a damaged transcript elsewhere does not stop an import
    sources.importTranscript(absolutePath(options.file));
    throwOnError(sources);
    printJson(context.out, *sources.source(sources.selectedSourceID()));
}

void importResponses(CliContext& context, const ImportOptions& options) {
    MibrelScriptedPanels panels;
    MibrelSourcesState sources(panels);
    sources.bind(openedProject(options.project));
    sources.setLastError(std::nullopt);
    sources.openResponsesTable(absolutePath(options.file));
    throwOnError(sources);
    auto sheet = MibrelResponsesImportSheet::make(*sources.pendingResponsesImport());
    if (options.textColumn) {
        checkColumn(sheet, *options.textColumn, "--text-column");
        sheet.textColumn = *options.textColumn;
    }
    if (options.labelColumn) {
        checkColumn(sheet, *options.labelColumn, "--label-column");
        sheet.labelColumn = *options.labelColumn;
    }
    const std::size_t before = sources.sources().size();
    sheet.importInto(sources);
    throwOnError(sources);
    printJson(context.out, report(sources, static_cast<std::int64_t>(sources.sources().size() - before)));
}

} // namespace

void addImportCommands(CLI::App& app, CliContext& context) {
    auto file = std::make_shared<std::string>();
    CLI::App* text = addCommand(app, context, "text", "Print the plain text Mibrel reads from a document (.txt, .docx, .pdf)",
                                [&context, file] { printText(context, *file); });
    text->add_option("file", *file, "The document")->required();

    auto tableFile = std::make_shared<std::string>();
    CLI::App* table = addCommand(app, context, "table",
                                 "Print a response table (.csv, .tsv, .xlsx) and its suggested text column as JSON",
                                 [&context, tableFile] { printTable(context, *tableFile); });
    table->add_option("file", *tableFile, "The table")->required();

    CLI::App* import = app.add_subcommand("import", "Bring material into a project as new sources");
    import->require_subcommand(1);
    auto options = std::make_shared<ImportOptions>();
    CLI::App* transcript = addCommand(*import, context, "transcript",
                                      "Import a document as one source, its paragraphs as segments; prints the source",
                                      [&context, options] { importTranscript(context, *options); });
    transcript->add_option("project", options->project, "The project package")->required();
    transcript->add_option("file", options->file, "The document (.txt, .docx, .pdf, .md, .rtf)")->required();

    CLI::App* responses = addCommand(*import, context, "responses",
                                     "Import a response table, one source per row with response text",
                                     [&context, options] { importResponses(context, *options); });
    responses->add_option("project", options->project, "The project package")->required();
    responses->add_option("file", options->file, "The table (.csv, .tsv, .xlsx)")->required();
    responses->add_option("--text-column", options->textColumn,
                          "The answers' column, from 0 (default: the column with the longest average text)");
    responses->add_option("--label-column", options->labelColumn,
                          "A column naming each respondent, from 0 (default: \"Row n\" labels)");
    addMediaCommands(app, *import, context);
}

} // namespace mibrel::cli
