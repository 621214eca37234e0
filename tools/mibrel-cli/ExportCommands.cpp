#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <tuple>

#include "MibrelCore/Export/TeskFindingsExporter.h"
#include "MibrelCore/Export/TeskHandoffExporter.h"
#include "Platform/Json/JsonFields.h"
#include "tools/mibrel-cli/CliCommand.h"

namespace mibrel::cli {
namespace {

// What an export wrote: the packet names its member checks, the bundle its codes.
struct ExportReport {
    std::optional<std::int64_t> codes;
    std::optional<std::int64_t> memberChecks;
    std::string path;
    std::int64_t quotes = 0;
    std::int64_t sources = 0;
    std::int64_t themes = 0;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = ExportReport;
        return std::tuple{optional("codes", &T::codes),   optional("memberChecks", &T::memberChecks),
                          required("path", &T::path),     required("quotes", &T::quotes),
                          required("sources", &T::sources), required("themes", &T::themes)};
    }
};

struct ExportOptions {
    std::string project;
    std::string output;
    std::optional<std::string> title;
};

// Exports carry the manifest's app version, as the window's do.
struct OpenedProject {
    std::filesystem::path url;
    std::string title;
    std::string appVersion;
};

OpenedProject open(const ExportOptions& options) {
    const std::filesystem::path url = absolutePath(options.project);
    const TeskProjectManifest manifest = openProject(url);
    return {url, options.title.value_or(manifest.title), manifest.appVersion};
}

void exportPacket(CliContext& context, const ExportOptions& options) {
    const OpenedProject project = open(options);
    const auto result =
        TeskFindingsExporter::exportPacket(project.url, project.title, project.appVersion, absolutePath(options.output));
    printJson(context.out, ExportReport{std::nullopt, result.memberCheckCount, result.fileURL.string(),
                                        result.quoteCount, result.sourceCount, result.themeCount});
}

void exportHandoff(CliContext& context, const ExportOptions& options) {
    const OpenedProject project = open(options);
    const auto result = TeskHandoffExporter::exportBundle(project.url, project.title, project.appVersion,
                                                          absolutePath(options.output));
    const auto& manifest = result.manifest;
    printJson(context.out, ExportReport{manifest.codesExported, std::nullopt, result.handoffURL.string(),
                                        manifest.quotesExported, static_cast<std::int64_t>(manifest.sources.size()),
                                        manifest.themesExported});
}

void addOptions(CLI::App& command, ExportOptions& options, const std::string& outputDescription) {
    command.add_option("project", options.project, "The project package")->required();
    command.add_option("output", options.output, outputDescription)->required();
    command.add_option("--title", options.title, "The title to present (default: the project's title)");
}

} // namespace

void addExportCommands(CLI::App& app, CliContext& context) {
    CLI::App* exportCommand = app.add_subcommand("export", "Write what leaves the project: presentation packet, handoff bundle, Word copy");
    exportCommand->require_subcommand(1);

    auto options = std::make_shared<ExportOptions>();
    CLI::App* packet = addCommand(*exportCommand, context, "packet",
                                  "Write the presentation packet (.zvk) with themes, quotes and trustworthiness notes",
                                  [&context, options] { exportPacket(context, *options); });
    addOptions(*packet, *options, "The packet file to write (.zvk)");

    CLI::App* handoff = addCommand(*exportCommand, context, "handoff",
                                   "Write the handoff bundle for Kessil Bench: a dataset of one row per source, and "
                                   "copies of the workspace and sources",
                                   [&context, options] { exportHandoff(context, *options); });
    addOptions(*handoff, *options, "The bundle folder to write (usually ending .mvibrl-handoff); an earlier one is replaced");

    addExportWordCommand(*exportCommand, context);
}

} // namespace mibrel::cli
