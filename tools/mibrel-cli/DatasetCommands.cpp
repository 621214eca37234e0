#include <map>
#include <memory>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "MerivanteCore/Dataset/MerivantePackageLayout.h"
#include "MerivanteCore/Dataset/MerivanteProjectManifest.h"
#include "MerivanteCore/Dataset/ProjectArchive.h"
#include "MerivanteCore/Import/CSVImporter.h"
#include "MerivanteCore/Import/SPSSReader.h"
#include "MerivanteCore/Import/ScaleItemClassifier.h"
#include "MerivanteCore/Import/SpreadsheetImporter.h"
#include "MerivanteCore/Import/StataReader.h"
#include "Platform/Files/FileSystem.h"
#include "Platform/Foundation/EnumRawValues.h"
#include "tools/mibrel-cli/CliCommand.h"

namespace mibrel::cli {

using merivante::ImportedDataset;

// The parser's two failures carry no text of their own; the command line needs one.
ImportedDataset importDataset(const std::string& typed) {
    try {
        return merivante::SpreadsheetImporter().importData(absolutePath(typed));
    } catch (merivante::CSVParserError error) {
        throw std::runtime_error(error == merivante::CSVParserError::emptyFile
                                     ? "The file holds no header row."
                                     : "The file has a quoted field that is never closed.");
    }
}

namespace {

// A command printing what a statistical-package reader found, labels and notes included,
// before any dataset is built.
template <typename Reader>
void addReaderCommand(CLI::App& parent, CliContext& context, const std::string& name, const std::string& kind,
                      Reader read, merivante::StatPackageImportError unreadable) {
    auto file = std::make_shared<std::string>();
    addCommand(parent, context, name, "Print everything read from " + kind + " file as JSON",
               [&context, file, read, unreadable] {
                   const auto result = read(platform::files::readFile(absolutePath(*file)));
                   if (!result) throw unreadable;
                   printJson(context.out, *result);
               })
        ->add_option("file", *file, "The " + kind + " file")
        ->required();
}

std::vector<std::vector<std::string>> columnsOf(const ImportedDataset& dataset) {
    std::vector<std::vector<std::string>> columns;
    for (const std::string& header : dataset.headers) columns.push_back(dataset.values(header));
    return columns;
}

struct ClassifyOptions {
    std::string file;
    std::string questions;
};

void classifyScale(CliContext& context, const ClassifyOptions& options) {
    const ImportedDataset dataset = importDataset(options.file);
    std::map<std::string, std::string> questionText;
    if (!options.questions.empty()) {
        questionText = platform::json::decode<std::map<std::string, std::string>>(
            platform::files::readFile(absolutePath(options.questions)));
    }
    printJson(context.out, merivante::ScaleItemClassifier::classify(dataset.headers, columnsOf(dataset), questionText));
}

struct ArchiveOptions {
    std::string input;
    std::string output;
    std::vector<std::string> reverse;
    std::vector<std::string> unreliable;
};

struct ArchiveReport {
    std::string archive;
    std::string datasetName;
    std::int64_t rowCount = 0;
    std::int64_t variableCount = 0;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = ArchiveReport;
        return std::tuple{required("archive", &T::archive), required("datasetName", &T::datasetName),
                          required("rowCount", &T::rowCount), required("variableCount", &T::variableCount)};
    }
};

void archive(CliContext& context, const ArchiveOptions& options) {
    const ImportedDataset dataset = importDataset(options.input);
    const platform::Date now = platform::now();
    const auto archive = merivante::ProjectArchive::make(
        dataset, {}, {}, {options.reverse.begin(), options.reverse.end()},
        {options.unreliable.begin(), options.unreliable.end()}, now, now);
    const auto output = absolutePath(options.output);
    platform::files::writeFileAtomically(output, archive.encode());
    printJson(context.out, ArchiveReport{output.string(), archive.datasetName, dataset.rowCount(),
                                         static_cast<std::int64_t>(archive.variableStates.size())});
}

struct PackageOptions {
    std::string output;
    std::string name;
    std::string mode = "copy";
};

void package(CliContext& context, const PackageOptions& options) {
    const auto mode = platform::fromRawValue<merivante::DatasetStorageMode>(options.mode);
    if (!mode) throw UsageError("--mode must be copy or pointer.");
    merivante::MerivanteProjectManifest manifest;
    manifest.projectName = options.name;
    manifest.datasetMode = *mode;
    merivante::MerivantePackageLayout::createFolder(absolutePath(options.output), manifest);
    printJson(context.out, manifest);
}

} // namespace

void addDatasetCommands(CLI::App& app, CliContext& context) {
    CLI::App* dataset = app.add_subcommand("dataset", "Survey datasets: import, classify, archive and package");
    dataset->require_subcommand(1);

    auto file = std::make_shared<std::string>();
    addCommand(*dataset, context, "import",
               "Import a data file (.csv, .txt, .xlsx, .sav, .dta, .mvkb, .mvkbfield) and print the dataset as JSON",
               [&context, file] { printJson(context.out, importDataset(*file)); })
        ->add_option("file", *file, "The data file")
        ->required();

    addReaderCommand(*dataset, context, "read-spss", "an SPSS .sav", merivante::SPSSReader::read,
                     merivante::StatPackageImportError::unreadableSPSS());
    addReaderCommand(*dataset, context, "read-stata", "a Stata .dta", merivante::StataReader::read,
                     merivante::StatPackageImportError::unreadableStata());

    auto classify = std::make_shared<ClassifyOptions>();
    CLI::App* classifyCommand =
        addCommand(*dataset, context, "classify-scale", "Score each column of a data file as a likely scale item",
                   [&context, classify] { classifyScale(context, *classify); });
    classifyCommand->add_option("file", classify->file, "The data file")->required();
    classifyCommand->add_option("--questions", classify->questions,
                                "A JSON file mapping column names to their question texts");

    auto archiveOptions = std::make_shared<ArchiveOptions>();
    CLI::App* archiveCommand =
        addCommand(*dataset, context, "archive", "Write a data file and the decisions about its variables as one .mvk",
                   [&context, archiveOptions] { archive(context, *archiveOptions); });
    archiveCommand->add_option("input", archiveOptions->input, "The data file")->required();
    archiveCommand->add_option("output", archiveOptions->output, "The archive to write (.mvk)")->required();
    archiveCommand->add_option("--reverse", archiveOptions->reverse, "Reverse-coded variables, comma-separated")
        ->delimiter(',');
    archiveCommand->add_option("--unreliable", archiveOptions->unreliable, "Variables flagged as unreliable items")
        ->delimiter(',');

    auto packageOptions = std::make_shared<PackageOptions>();
    CLI::App* packageCommand =
        addCommand(*dataset, context, "package", "Create an empty .merivante project folder",
                   [&context, packageOptions] { package(context, *packageOptions); });
    packageCommand->add_option("output", packageOptions->output, "The package folder to create")->required();
    packageCommand->add_option("--name", packageOptions->name, "The project's name")->required();
    packageCommand->add_option("--mode", packageOptions->mode, "copy (the package keeps the data) or pointer")
        ->check(CLI::IsMember({"copy", "pointer"}));
}

} // namespace mibrel::cli
