#include "tools/mibrel-cli/MibrelCli.h"

#include <exception>

#include <QCoreApplication>

#include "MibrelCore/Storage/TeskProjectArchive.h"
#include "tools/mibrel-cli/CliCommand.h"

namespace mibrel::cli {
namespace {

constexpr const char* kDescription =
    "Mibrel's command line: create, inspect and script qualitative research projects (.mvibrl packages).\n"
    "Results are printed as JSON; errors go to standard error (exit status 1, 2 for usage errors).";

} // namespace

CLI::App* addCommand(CLI::App& parent, CliContext& context, const std::string& name, const std::string& description,
                     std::function<void()> run) {
    CLI::App* command = parent.add_subcommand(name, description);
    command->callback([&context, run = std::move(run)] { context.action = run; });
    return command;
}

TeskProjectManifest openProject(const std::filesystem::path& projectURL) {
    return TeskProjectArchive::loadManifest(projectURL);
}

std::filesystem::path openedProject(const std::string& typed) {
    auto projectURL = absolutePath(typed);
    openProject(projectURL);
    return projectURL;
}

void ensureEventLoop() {
    static int argc = 1;
    static char name[] = "mibrel-cli";
    static char* argv[] = {name, nullptr};
    if (!QCoreApplication::instance()) new QCoreApplication(argc, argv); // lives as long as the program
}

std::filesystem::path absolutePath(const std::string& typed) {
    std::filesystem::path path = std::filesystem::absolute(typed).lexically_normal();
    if (!path.has_filename() && path.has_relative_path()) path = path.parent_path();
    return path;
}

int runMibrelCli(int argc, const char* const* argv, std::ostream& out, std::ostream& err) {
    CliContext context{out, err, {}};
    CLI::App app(kDescription, "mibrel-cli");
    app.require_subcommand(1);
    addProjectCommands(app, context);
    addWorkspaceCommands(app, context);
    addSourcesCommands(app, context);
    addAuditCommands(app, context);
    addEditCommands(app, context);
    addImportCommands(app, context);
    addExportCommands(app, context);
    addAnalyzeCommands(app, context);
    addDevCommands(app, context);
    addSuggestCommand(app, context);
    addDatasetCommands(app, context);
    addStatsCommands(app, context);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const int status = app.exit(error, out, err);
        return status == 0 ? kExitSuccess : kExitUsage;
    }
    try {
        if (context.action) context.action();
        return kExitSuccess;
    } catch (const UsageError& error) {
        err << error.what() << '\n';
        return kExitUsage;
    } catch (const std::exception& error) {
        err << error.what() << '\n';
        return kExitFailure;
    }
}

} // namespace mibrel::cli
