#pragma once

#include <filesystem>
#include <functional>
#include <ostream>
#include <stdexcept>
#include <string>

#include <CLI/CLI.hpp>

#include "MibrelCore/Storage/TeskProjectManifest.h"
#include "Platform/Json/JsonCoding.h"

namespace merivante {
struct ImportedDataset;
}

namespace mibrel::cli {

// What a command needs besides its arguments: where to print, and a slot for the
// action that runs once the whole line has parsed.
struct CliContext {
    std::ostream& out;
    std::ostream& err;
    std::function<void()> action;
};

// A wrong argument that only the command can recognise (exit status 2).
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Adds a subcommand whose callback stores `run` as the action.
CLI::App* addCommand(CLI::App& parent, CliContext& context, const std::string& name, const std::string& description,
                     std::function<void()> run);

// Checks the package as opening it in the window would; throws its error when it is no project.
TeskProjectManifest openProject(const std::filesystem::path& projectURL);

// An absolute, normalised form of a path typed by the user, without a trailing separator.
std::filesystem::path absolutePath(const std::string& typed);

// The typed path made absolute, once it has been checked to be a project.
std::filesystem::path openedProject(const std::string& typed);

template <class T>
void printJson(std::ostream& out, const T& value) {
    out << platform::json::encode(value) << '\n';
}

void addProjectCommands(CLI::App& app, CliContext& context);
void addWorkspaceCommands(CLI::App& app, CliContext& context);
void addSourcesCommands(CLI::App& app, CliContext& context);
void addAuditCommands(CLI::App& app, CliContext& context);
void addEditCommands(CLI::App& app, CliContext& context);
void addImportCommands(CLI::App& app, CliContext& context);
void addExportCommands(CLI::App& app, CliContext& context);
// `dev generate`.
void addDevCommands(CLI::App& app, CliContext& context);
// `analyze` and `report`.
void addAnalyzeCommands(CLI::App& app, CliContext& context);
// Background work reports back through the event loop, as in the window: commands that
// wait for it make sure there is one.
void ensureEventLoop();

// Any data file the importers read (.csv, .txt, .xlsx, .sav, .dta, .mvkb, .mvkbfield).
merivante::ImportedDataset importDataset(const std::string& typed);

// `dataset import|classify-scale|archive|package`.
void addDatasetCommands(CLI::App& app, CliContext& context);
void addStatsCommands(CLI::App& app, CliContext& context);
// `suggest`.
void addSuggestCommand(CLI::App& app, CliContext& context);
// `import media`, `transcribe`, `helper call` and `media duration`.
void addMediaCommands(CLI::App& app, CLI::App& importCommand, CliContext& context);
// `export word`, under the export command.
void addExportWordCommand(CLI::App& exportCommand, CliContext& context);

} // namespace mibrel::cli
