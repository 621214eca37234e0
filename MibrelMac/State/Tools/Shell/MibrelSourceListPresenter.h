#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <QObject>

#include "MibrelCore/Sources/TeskSource.h"
#include "Platform/Foundation/Uuid.h"

namespace mibrel {

class MibrelShellUIState;
class MibrelSourcesState;

// What the sidebar's source list shows and what its commands do: the current source apart
// at the top, the others that pass the filter below it in list order, the text shown when
// nothing is listed, the row menu, and the delete confirmation it leads to.
class MibrelSourceListPresenter : public QObject {
    Q_OBJECT

public:
    struct EmptyText {
        std::string title;
        std::string detail; // empty when the title says it all
        bool operator==(const EmptyText&) const = default;
    };

    struct RowMenu {
        bool canTranscribeAgain = false; // only a source with a recording
    };

    MibrelSourceListPresenter(MibrelSourcesState& sources, MibrelShellUIState& shellUI, QObject* parent = nullptr);

    const std::string& filter() const { return m_filter; }
    void setFilter(std::string filter);
    bool showsClearButton() const { return !m_filter.empty(); }

    // The source the strip at the top shows, whatever the filter.
    const TeskSource* currentSource() const;
    // The other sources that pass the filter, in list order; worked out once per change, so
    // a list view may read it row by row.
    const std::vector<const TeskSource*>& otherSources() const { return m_otherSources; }
    // Absent while a row is listed below the strip.
    std::optional<EmptyText> emptyText() const;

    // A blank filter passes everything; otherwise the label must contain the trimmed text,
    // ignoring case.
    static bool sourceMatchesFilter(const TeskSource& source, const std::string& filter);
    // The row's text: a label blanked by hand in the file reads "Untitled source", never an empty row.
    static std::string displayLabel(const TeskSource& source);
    // The row's icon: a waveform for audio, a film for video, a page for text.
    static std::string_view symbol(const TeskSource& source);

    RowMenu rowMenu(const platform::Uuid& sourceID) const;
    // Selects the source and shows it in the Sources tool with the inspector open.
    void reviewTranscript(const platform::Uuid& sourceID);
    void transcribeAgain(const platform::Uuid& sourceID);

    // "Delete" asks first; the answer deletes or forgets the request.
    void requestDelete(const platform::Uuid& sourceID);
    const std::optional<TeskSource>& sourcePendingDelete() const { return m_sourcePendingDelete; }
    std::string deleteTitle() const;
    void confirmDelete();
    void cancelDelete();

signals:
    void changed();
    void pendingDeleteChanged();

private:
    void refilter();

    MibrelSourcesState& m_sources;
    MibrelShellUIState& m_shellUI;
    std::string m_filter;
    std::optional<TeskSource> m_sourcePendingDelete;
    std::vector<const TeskSource*> m_otherSources;
};

} // namespace mibrel
