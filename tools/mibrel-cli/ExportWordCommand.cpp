#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>

#include "MibrelCore/Export/TeskWordExporter.h"
#include "MibrelCore/Storage/TeskSourceStore.h"
#include "MibrelCore/Storage/TeskWorkspaceStore.h"
#include "tools/mibrel-cli/CliCommand.h"

namespace mibrel::cli {
namespace {

struct WordArguments {
    std::string project;
    std::string sourceID;
    std::string format = "html";
};

// Both forms are what "Copy Transcript for Word" puts on the clipboard.
void exportWord(CliContext& context, const WordArguments& arguments) {
    const auto sourceID = Uuid::parse(arguments.sourceID);
    if (!sourceID) throw UsageError("“" + arguments.sourceID + "” is not a source id (a UUID).");
    const auto projectURL = openedProject(arguments.project);
    const auto sources = TeskSourceStore::loadIndex(projectURL);
    const auto source = std::find_if(sources.begin(), sources.end(),
                                     [&](const TeskSource& candidate) { return candidate.id == *sourceID; });
    if (source == sources.end()) {
        throw std::runtime_error("This project has no source with the id " + sourceID->uuidString() + ".");
    }
    const TeskTranscript transcript = TeskSourceStore::loadTranscript(*sourceID, projectURL);
    const TeskWorkspace workspace = TeskWorkspaceStore::load(projectURL).value_or(TeskWorkspace{});
    const std::string result = arguments.format == "text"
                                   ? TeskWordExporter::plainText(source->label, transcript, workspace, *sourceID)
                                   : TeskWordExporter::html(source->label, transcript, workspace, *sourceID);
    // Closed by a line break for the terminal's sake; the plain form already ends with one.
    context.out << result << (result.ends_with('\n') ? "" : "\n");
}

} // namespace

void addExportWordCommand(CLI::App& exportCommand, CliContext& context) {
    auto arguments = std::make_shared<WordArguments>();
    CLI::App* word = addCommand(exportCommand, context, "word",
                                "Print a source's coded transcript as a word processor pastes it: an HTML fragment "
                                "with highlights and code bubbles, or plain text with the codes in brackets",
                                [&context, arguments] { exportWord(context, *arguments); });
    word->add_option("project", arguments->project, "The project package")->required();
    word->add_option("sourceID", arguments->sourceID, "The source's id, as `sources list` prints it")->required();
    word->add_option("--format", arguments->format, "html (the default) or text")
        ->check(CLI::IsMember({"html", "text"}));
}

} // namespace mibrel::cli
