#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <tuple>

#include "MibrelCore/Audit/TeskAuditTrail.h"
#include "MibrelCore/Storage/TeskProjectArchive.h"
#include "MibrelCore/Storage/TeskSourceStore.h"
#include "MibrelCore/Storage/TeskWorkspaceStore.h"
#include "Platform/Json/JsonFields.h"
#include "tools/mibrel-cli/CliCommand.h"

namespace mibrel::cli {
namespace {

struct WorkspaceCounts {
    std::int64_t applications = 0;
    std::int64_t categories = 0;
    std::int64_t codes = 0;
    std::int64_t contextualLensReviews = 0;
    std::int64_t memberChecks = 0;
    std::int64_t quotes = 0;
    std::int64_t reportFindings = 0;
    std::int64_t reportSections = 0;
    std::int64_t themes = 0;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = WorkspaceCounts;
        return std::tuple{required("applications", &T::applications),
                          required("categories", &T::categories),
                          required("codes", &T::codes),
                          required("contextualLensReviews", &T::contextualLensReviews),
                          required("memberChecks", &T::memberChecks),
                          required("quotes", &T::quotes),
                          required("reportFindings", &T::reportFindings),
                          required("reportSections", &T::reportSections),
                          required("themes", &T::themes)};
    }
};

// What `project info` prints. Each part that cannot be read is reported beside the
// others instead of failing the command, so the output helps diagnose a damaged package.
struct ProjectInfo {
    std::optional<std::int64_t> auditEvents{};
    std::optional<std::string> auditError{};
    TeskProjectManifest manifest;
    std::string path;
    std::optional<std::int64_t> sources{};
    std::optional<std::string> sourcesError{};
    std::optional<WorkspaceCounts> workspace{};
    std::optional<std::string> workspaceError{};

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = ProjectInfo;
        return std::tuple{optional("auditError", &T::auditError),   optional("auditEvents", &T::auditEvents),
                          required("manifest", &T::manifest),        required("path", &T::path),
                          optional("sources", &T::sources),          optional("sourcesError", &T::sourcesError),
                          optional("workspace", &T::workspace),      optional("workspaceError", &T::workspaceError)};
    }
};

std::int64_t count(const auto& items) { return static_cast<std::int64_t>(items.size()); }

WorkspaceCounts countsOf(const TeskWorkspace& w) {
    return WorkspaceCounts{count(w.applications),           count(w.categories),
                           count(w.codes),                  count(w.contextualLensReviews),
                           count(w.trustworthiness.memberChecks), count(w.quotes),
                           count(w.reportFindings),         count(w.reportSections),
                           count(w.themes)};
}

// Runs `read`, putting its value or its error's words into the two slots.
template <class Value, class Read>
void readInto(std::optional<Value>& value, std::optional<std::string>& error, Read read) {
    try {
        value = read();
    } catch (const std::exception& failure) {
        error = failure.what();
    }
}

ProjectInfo projectInfo(const std::filesystem::path& projectURL) {
    ProjectInfo info{.manifest = openProject(projectURL), .path = projectURL.string()};
    readInto(info.sources, info.sourcesError, [&] { return count(TeskSourceStore::loadIndex(projectURL)); });
    readInto(info.workspace, info.workspaceError,
             [&] { return countsOf(TeskWorkspaceStore::load(projectURL).value_or(TeskWorkspace{})); });
    readInto(info.auditEvents, info.auditError, [&] { return count(TeskAuditTrail::load(projectURL)); });
    return info;
}

struct CreateOptions {
    std::string path;
    std::optional<std::string> title;
    bool replace = false;
};

// As the window's New Project: the ".mvibrl" ending is added when missing, and a name
// that had to be extended never replaces an existing package.
void createProject(CliContext& context, const CreateOptions& options) {
    const auto chosen = TeskProjectArchive::newProjectLocation(absolutePath(options.path));
    TeskProjectArchive::createEmpty(chosen.location, options.title.value_or(chosen.title),
                                    options.replace && chosen.mayReplace);
    printJson(context.out, ProjectInfo{.manifest = openProject(chosen.location), .path = chosen.location.string()});
}

} // namespace

void addProjectCommands(CLI::App& app, CliContext& context) {
    CLI::App* project = app.add_subcommand("project", "Create and inspect project packages");
    project->require_subcommand(1);

    auto create = std::make_shared<CreateOptions>();
    CLI::App* createCommand = addCommand(*project, context, "create",
                                         "Create an empty project (adds the .mvibrl ending when missing) and print it",
                                         [&context, create] { createProject(context, *create); });
    createCommand->add_option("path", create->path, "Where to create the package")->required();
    createCommand->add_option("--title", create->title, "The project's title (default: the file name)");
    createCommand->add_flag("--replace", create->replace, "Replace an existing package of that name");

    auto infoPath = std::make_shared<std::string>();
    CLI::App* infoCommand =
        addCommand(*project, context, "info", "Print the manifest and what the project holds, as JSON",
                   [&context, infoPath] { printJson(context.out, projectInfo(absolutePath(*infoPath))); });
    infoCommand->add_option("path", *infoPath, "The project package")->required();
}

} // namespace mibrel::cli
