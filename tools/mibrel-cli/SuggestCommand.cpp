#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include <QEventLoop>
#include <QTimer>

#include "MibrelMac/State/MibrelAssistRun.h"
#include "tools/mibrel-cli/BoundProject.h"
#include "tools/mibrel-cli/CliCommand.h"

namespace mibrel::cli {
namespace {

struct SuggestReport {
    std::int64_t accepted = 0;
    std::optional<std::string> lastError;
    std::vector<TeskCodeSuggestion> suggestions;
    bool usedAppleIntelligence = false;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = SuggestReport;
        return std::tuple{required("accepted", &T::accepted), optional("lastError", &T::lastError),
                          required("suggestions", &T::suggestions),
                          required("usedAppleIntelligence", &T::usedAppleIntelligence)};
    }
};

struct SuggestOptions {
    std::string project;
    std::string sourceID;
    bool local = false;
    bool acceptAll = false;
};

void waitForRun(const MibrelAssistRun& run) {
    if (!run.isRunning()) return;
    QEventLoop loop;
    QObject::connect(&run, &MibrelAssistRun::changed, &loop, [&] {
        if (!run.isRunning()) loop.quit();
    });
    loop.exec();
}

void suggest(CliContext& context, const SuggestOptions& options) {
    ensureEventLoop();
    BoundProject project(openedProject(options.project));
    const auto sourceID = Uuid::parse(options.sourceID);
    if (!sourceID || !project.sources.source(*sourceID)) throw UsageError("No source has the id " + options.sourceID + ".");
    project.sources.select(*sourceID);
    MibrelAssistRun run(project.sources, project.workspace);
    run.setLocalOnly(options.local);
    run.runSuggestions();
    waitForRun(run);
    SuggestReport report{0, run.lastError(), run.suggestions(), run.usedAppleIntelligence()};
    if (options.acceptAll) {
        for (const TeskCodeSuggestion& suggestion : report.suggestions) {
            run.accept(suggestion.id);
            if (project.workspace.lastError()) throw std::runtime_error(*project.workspace.lastError());
            ++report.accepted;
        }
    }
    printJson(context.out, report);
}

} // namespace

void addSuggestCommand(CLI::App& app, CliContext& context) {
    auto options = std::make_shared<SuggestOptions>();
    CLI::App* command = addCommand(app, context, "suggest",
                                   "Suggest codes for a source's uncoded segments; nothing is applied unless --accept-all",
                                   [&context, options] { suggest(context, *options); });
    command->add_option("project", options->project, "The project package")->required();
    command->add_option("sourceID", options->sourceID, "The source's id")->required();
    command->add_flag("--local", options->local, "Keyword matching only, without the on-device model");
    command->add_flag("--accept-all", options->acceptAll,
                      "Accept every suggestion, as the window's Accept does (audited, undoable)");
}

} // namespace mibrel::cli
