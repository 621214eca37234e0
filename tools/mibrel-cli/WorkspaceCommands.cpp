#include <memory>
#include <string>

#include "MibrelCore/Storage/TeskWorkspaceStore.h"
#include "tools/mibrel-cli/CliCommand.h"

namespace mibrel::cli {
namespace {

// The workspace as the window would bind it: a package without analysis shows an empty one.
void showWorkspace(CliContext& context, const std::filesystem::path& projectURL) {
    openProject(projectURL);
    printJson(context.out, TeskWorkspaceStore::load(projectURL).value_or(TeskWorkspace{}));
}

} // namespace

void addWorkspaceCommands(CLI::App& app, CliContext& context) {
    CLI::App* workspace = app.add_subcommand("workspace", "Read the analysis state (codes, themes, quotes, report)");
    workspace->require_subcommand(1);

    auto path = std::make_shared<std::string>();
    CLI::App* show = addCommand(*workspace, context, "show", "Print the workspace as decoded, re-encoded as JSON",
                                [&context, path] { showWorkspace(context, absolutePath(*path)); });
    show->add_option("path", *path, "The project package")->required();
}

} // namespace mibrel::cli
