#pragma once

#include <optional>
#include <string>
#include <vector>

#include <QObject>

#include "MibrelCore/Model/TeskCodeApplication.h"
#include "MibrelCore/Model/TeskResponseRef.h"
#include "MibrelCore/Sources/TeskTranscript.h"

namespace mibrel {

class MibrelShellUIState;
class MibrelSourcesState;
class MibrelWorkspaceState;

// Read & Code's inspector: the selected segment coded the slow way, with a trimmed excerpt,
// a memo and a chosen or new code, or pinned as a quote. The drafts start afresh whenever
// the selected segment changes.
class MibrelCodingInspectorPresenter : public QObject {
    Q_OBJECT

public:
    static constexpr const char* kNoSelectionTitle = "Select a segment";
    static constexpr const char* kNoSelectionText = "Click a transcript segment in the canvas to code it here.";
    static constexpr const char* kNoCodesText = "No codes yet. Create one below.";

    MibrelCodingInspectorPresenter(MibrelSourcesState& sources, MibrelWorkspaceState& workspace,
                                   MibrelShellUIState& shellUI, QObject* parent = nullptr);

    // The selected segment, if it still exists.
    const TranscriptSegment* segment() const;
    std::vector<TeskCodeApplication> appliedCodes() const;

    // The drafts.
    std::optional<Uuid> selectedCodeID;
    std::string excerpt;
    std::string memo;
    std::string newCodeName;
    void resetFields();
    // Words selected in the segment's text become the excerpt, and the place they were
    // selected at is the one stored, even when the same words occur earlier in the text.
    // `before` is the segment's text in front of the selection.
    void takeSelection(const std::string& selected, const std::string& before);

    // Codes the segment with the drafts: a new code when one is named, the excerpt's exact
    // place in the text when it is found there. Then the drafts are cleared.
    void apply();
    // Pins the excerpt, or the whole segment without one, as a quote.
    void pinQuote();

    // Where `excerpt` stands in `text`, in characters as a reader counts them; absent when
    // it is the whole text or not in it.
    static std::optional<std::pair<std::int64_t, std::int64_t>> characterRange(const std::string& text,
                                                                              const std::string& excerpt);

signals:
    // The selection, the evidence on it or the drafts changed.
    void changed();

private:
    std::optional<TeskResponseRef> selectedReference() const;

    MibrelSourcesState& m_sources;
    MibrelWorkspaceState& m_workspace;
    MibrelShellUIState& m_shellUI;
    std::optional<TeskResponseRef> m_shownSelection;
    // The excerpt last taken from a selection, and the character where it starts.
    std::optional<std::pair<std::string, std::int64_t>> m_selectedExcerpt;
};

} // namespace mibrel
