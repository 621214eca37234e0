#include "MibrelMac/Views/Shell/MibrelToolTable.h"

#include <array>

#include <QWidget>

#include "MibrelMac/Views/Coding/MibrelCodingInspectorPanel.h"
#include "MibrelMac/Views/Coding/MibrelCodingView.h"
#include "MibrelMac/Views/Player/MibrelAudioPlayer.h"
#include "MibrelMac/Views/Shell/MibrelPendingToolPage.h"
#include "MibrelMac/Views/Sources/MibrelSourceInspectorPanel.h"
#include "MibrelMac/Views/Sources/MibrelTranscriptView.h"
#include "Platform/Foundation/EnumRawValues.h"

namespace mibrel {
namespace {

struct ToolEntry {
    MibrelTool tool;
    std::string_view panelName;
    std::string_view summary;
    std::string_view inspectorPromise; // what the panel will show, while the tool is being built
    MibrelToolParts (*make)(const MibrelToolContext&);
};

// A page's own player, made before the page that plays it and then handed to it.
template <class MakePage>
QWidget* pageWithPlayer(const MibrelToolContext& context, MibrelAudioPlayer*& player, MakePage makePage) {
    player = new MibrelAudioPlayer;
    player->setAudioOutputEnabled(context.playsAudio);
    QWidget* page = makePage(*player);
    player->setParent(page);
    return page;
}

// The recording's player is shared: the page plays it, the inspector reports why it cannot.
MibrelToolParts makeSources(const MibrelToolContext& context) {
    MibrelAudioPlayer* player = nullptr;
    QWidget* page = pageWithPlayer(context, player, [&](MibrelAudioPlayer& made) {
        return new MibrelTranscriptView(context.sources, context.workspace, made);
    });
    return {page, new MibrelSourceInspectorPanel(context.sources, context.workspace, *player)};
}

// Read & Code has its own player, so a segment can be heard where it stands.
MibrelToolParts makeCoding(const MibrelToolContext& context) {
    MibrelAudioPlayer* player = nullptr;
    QWidget* page = pageWithPlayer(context, player, [&](MibrelAudioPlayer& made) {
        return new MibrelCodingView(context.sources, context.workspace, context.shellUI, made);
    });
    return {page, new MibrelCodingInspectorPanel(context.sources, context.workspace, context.shellUI)};
}

constexpr std::array entries = {
    ToolEntry{MibrelTool::sources, "MibrelSourceInspectorPanel", "Your transcripts, recordings and responses.", "",
              makeSources},
    ToolEntry{MibrelTool::firstRead, "MibrelFirstReadInspectorPanel", "Frame the study and note first impressions.",
              "The study's framing: its question, approach and the first impressions you note as you read.", nullptr},
    ToolEntry{MibrelTool::contextualLens, "MibrelContextualLensInspectorPanel",
              "Read each source in the light of its setting and circumstances.",
              "The selected contextual review: the setting, circumstances and notes of one source.", nullptr},
    ToolEntry{MibrelTool::coding, "MibrelCodingInspectorPanel", "Read closely and mark passages with codes.",
              "The selected segment: trim an excerpt, add a memo, pick or create a code, pin a quote.", makeCoding},
    ToolEntry{MibrelTool::codebook, "MibrelCodeInspectorPanel", "Define, group and refine your codes.",
              "The selected code: its name, definition, category and the excerpts coded with it.", nullptr},
    ToolEntry{MibrelTool::analysis, "MibrelAnalysisLensInspectorPanel", "Look across sources and codes for patterns.",
              "The analysis lens in view and what its figures count.", nullptr},
    ToolEntry{MibrelTool::themes, "MibrelThemeInspectorPanel", "Build themes from the codes that belong together.",
              "The selected theme: its claim, its codes, and the evidence for and against it.", nullptr},
    ToolEntry{MibrelTool::evidence, "MibrelQuoteInspectorPanel", "Gather the quotes that support each theme.",
              "The selected quote: its text, role, codes, themes and rationale.", nullptr},
    ToolEntry{MibrelTool::assist, "MibrelAssistInspectorPanel", "Suggestions to weigh against your own reading.",
              "The selected suggestion and the reasons given for it; nothing applies itself.", nullptr},
    ToolEntry{MibrelTool::trustworthiness, "MibrelTrustworthinessInspectorPanel",
              "Keep the audit trail and check the work holds up.",
              "The selected trustworthiness note or audit event, with its details.", nullptr},
    ToolEntry{MibrelTool::report, "MibrelReportFormatInspector", "Draft and export the account of your findings.",
              "The report's format: its sections, their order and the export options.", nullptr},
};

static_assert(entries.size() == platform::allCases<MibrelTool>().size(), "every tool has an entry");

constexpr bool entriesInToolOrder() {
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (entries[i].tool != platform::allCases<MibrelTool>()[i]) return false;
    }
    return true;
}
static_assert(entriesInToolOrder(), "the table is indexed by tool");

const ToolEntry& entry(MibrelTool tool) { return entries[static_cast<std::size_t>(tool)]; }

} // namespace

MibrelToolParts makeToolParts(MibrelTool tool, const MibrelToolContext& context) {
    const ToolEntry& found = entry(tool);
    MibrelToolParts parts = found.make ? found.make(context)
                                       : MibrelToolParts{new MibrelPendingToolPage(tool, found.summary),
                                                         new MibrelPendingInspectorPanel(tool, found.inspectorPromise)};
    parts.inspector->setObjectName(QString::fromUtf8(found.panelName.data(),
                                                     static_cast<qsizetype>(found.panelName.size())));
    return parts;
}

std::string_view inspectorPanelName(MibrelTool tool) { return entry(tool).panelName; }

std::string_view toolSummary(MibrelTool tool) { return entry(tool).summary; }

} // namespace mibrel
