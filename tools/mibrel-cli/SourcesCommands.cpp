#include <algorithm>
#include <memory>
#include <string>

#include "MibrelCore/Storage/TeskSourceStore.h"
#include "tools/mibrel-cli/CliCommand.h"

namespace mibrel::cli {
namespace {

struct TranscriptArguments {
    std::string path;
    std::string sourceID;
};

void showTranscript(CliContext& context, const TranscriptArguments& arguments) {
    const auto sourceID = Uuid::parse(arguments.sourceID);
    if (!sourceID) throw UsageError("“" + arguments.sourceID + "” is not a source id (a UUID).");
    const auto projectURL = absolutePath(arguments.path);
    openProject(projectURL);
    const auto sources = TeskSourceStore::loadIndex(projectURL);
    const bool known = std::any_of(sources.begin(), sources.end(),
                                   [&](const TeskSource& source) { return source.id == *sourceID; });
    if (!known) throw std::runtime_error("This project has no source with the id " + sourceID->uuidString() + ".");
    printJson(context.out, TeskSourceStore::loadTranscript(*sourceID, projectURL));
}

} // namespace

void addSourcesCommands(CLI::App& app, CliContext& context) {
    CLI::App* sources = app.add_subcommand("sources", "Read the list of sources (documents, recordings, responses)");
    sources->require_subcommand(1);
    auto listPath = std::make_shared<std::string>();
    CLI::App* list = addCommand(*sources, context, "list",
                                "Print the source index as JSON, rebuilt from the sources' folders if it is damaged",
                                [&context, listPath] {
                                    const auto projectURL = absolutePath(*listPath);
                                    openProject(projectURL);
                                    printJson(context.out, TeskSourceStore::loadIndex(projectURL));
                                });
    list->add_option("path", *listPath, "The project package")->required();

    CLI::App* transcript = app.add_subcommand("transcript", "Read a source's transcript");
    transcript->require_subcommand(1);
    auto arguments = std::make_shared<TranscriptArguments>();
    CLI::App* show = addCommand(*transcript, context, "show", "Print one source's transcript segments as JSON",
                                [&context, arguments] { showTranscript(context, *arguments); });
    show->add_option("path", arguments->path, "The project package")->required();
    show->add_option("sourceID", arguments->sourceID, "The source's id, as `sources list` prints it")->required();
}

} // namespace mibrel::cli
