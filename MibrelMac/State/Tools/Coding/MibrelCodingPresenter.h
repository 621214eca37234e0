#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include <QObject>

#include "MibrelCore/Model/TeskCode.h"
#include "MibrelCore/Model/TeskCodeApplication.h"
#include "MibrelCore/Model/TeskQuote.h"
#include "MibrelCore/Sources/TeskSource.h"
#include "MibrelCore/Sources/TeskTranscript.h"

namespace mibrel {

class MibrelShellUIState;
class MibrelSourcesState;
class MibrelWorkspaceState;

// Read & Code's canvas: the selected source's segments with what is coded and pinned on
// each, the active code one keystroke applies, and the moves of the selection.
class MibrelCodingPresenter : public QObject {
    Q_OBJECT

public:
    static constexpr const char* kEmptyText = "Choose a source in the sidebar, then click a segment to code it.";
    static constexpr const char* kHeader =
        "Select an active code, move through excerpts, pin evidence, and send strong quotes into themes.";
    static constexpr const char* kEmptyPalette =
        "Create a code in the inspector, then use the active-code button on each excerpt.";

    struct Summary {
        std::size_t segments = 0;
        std::size_t coded = 0;
        std::size_t applications = 0;
        std::size_t quotes = 0;
        bool operator==(const Summary&) const = default;
    };

    // What a row offers besides its text and chips.
    struct RowActions {
        std::string applyTitle; // "Apply active code", or "Select an active code" with none
        bool canApply = false;
        bool hasQuote = false;  // "Update pinned quote…" and "Open quote in Evidence" instead of "Pin…"
        bool canPlay = false;   // a timed segment of a recording
    };

    MibrelCodingPresenter(MibrelSourcesState& sources, MibrelWorkspaceState& workspace, MibrelShellUIState& shellUI,
                          QObject* parent = nullptr);

    const TeskSource* source() const;
    Summary summary() const;
    // The recording to play beside the rows; absent for text or a file that is gone.
    std::optional<std::filesystem::path> mediaLocation() const;

    // The active code: kept pointing at a code that exists, the first one when it does not.
    void ensureActiveCode();
    const TeskCode* activeCode() const;
    void setActiveCode(const Uuid& codeID);
    // The codes the palette lists, in codebook order, narrowed by the typed filter.
    void setPaletteFilter(std::string filter);
    const std::string& paletteFilter() const { return m_paletteFilter; }
    std::vector<const TeskCode*> paletteCodes() const;
    // Digit n (1–9) makes the n-th listed code active; false when there is no such code.
    bool activatePaletteCode(std::size_t position);

    std::size_t rowCount() const;
    const TranscriptSegment& segmentAt(std::size_t row) const;
    const std::vector<TeskCodeApplication>& applicationsAt(std::size_t row) const;
    RowActions actionsAt(std::size_t row) const;
    // The codes on the row, each once, in the order they were applied.
    struct Chip {
        Uuid codeID;
        std::string name;
    };
    std::vector<Chip> chipsAt(std::size_t row) const;
    // The application of `codeID` on the row, for its chip's "Remove code {name}".
    std::optional<Uuid> applicationOf(std::size_t row, const Uuid& codeID) const;
    void removeCode(std::size_t row, const Uuid& codeID);
    std::optional<TeskQuote> quoteAt(std::size_t row) const;

    // The row of the selected segment in this source, if any.
    std::optional<std::size_t> selectedRow() const;
    void select(std::size_t row);
    // Moves the selection by `step` rows, from the first row when nothing is selected.
    void moveSelection(int step);

    // Codes the whole segment with the active code, once per code.
    void applyActiveCode(std::size_t row);
    // Pins the whole segment as a quote, with its codes and their themes; selects the quote.
    void pinQuote(std::size_t row);
    // Gives the row's quote the codes now on the segment, their themes and a fresh rationale.
    void updatePinnedQuote(std::size_t row);
    // Shows the row's quote in the Evidence tool.
    void openQuoteInEvidence(std::size_t row);

    // Distinct code ids of `applications`, sorted by their text form, so a quote does not
    // depend on the order of coding.
    static std::vector<Uuid> uniqueCodeIDs(const std::vector<TeskCodeApplication>& applications);
    // "Pinned during coding as evidence for {names}.": the themes' names, else the codes'.
    static std::string joined(const std::vector<std::string>& names);
    static std::string quoteRationale(const MibrelWorkspaceState& workspace, const std::vector<Uuid>& codeIDs,
                                      const std::vector<Uuid>& themeIDs);

signals:
    // The source, its segments or the evidence on them changed.
    void changed();
    // The active code, the codes listed or their filter changed.
    void paletteChanged();
    void selectionChanged();

private:
    const TeskTranscript* transcript() const;
    TeskResponseRef reference(std::size_t row) const;
    void reindex();

    MibrelSourcesState& m_sources;
    MibrelWorkspaceState& m_workspace;
    MibrelShellUIState& m_shellUI;
    std::string m_paletteFilter;
    // The source's applications and quotes by segment id, rebuilt on each change.
    std::unordered_map<std::string, std::vector<TeskCodeApplication>> m_applications;
    std::unordered_map<std::string, std::vector<TeskQuote>> m_quotes;
};

} // namespace mibrel
