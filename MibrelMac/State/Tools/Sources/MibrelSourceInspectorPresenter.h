#pragma once

#include <optional>
#include <string>
#include <vector>

#include <QObject>

#include "MibrelCore/Sources/TeskSource.h"

namespace mibrel {

class MibrelSourcesState;
class MibrelWorkspaceState;

// The Sources tool's inspector: the selected source's name (renamed here), what it is,
// how its transcription went, and how much of it has been coded.
class MibrelSourceInspectorPresenter : public QObject {
    Q_OBJECT

public:
    struct Field {
        std::string label;
        std::string value;
        bool operator==(const Field&) const = default;
    };

    MibrelSourceInspectorPresenter(MibrelSourcesState& sources, MibrelWorkspaceState& workspace,
                                   QObject* parent = nullptr);

    const TeskSource* source() const;
    // What the panel says with no source selected.
    static constexpr const char* kEmptyText = "Select a source in the sidebar to see its details.";

    // A blank name is not taken; the old one stays.
    void rename(const std::string& label);
    // Kind, creation date, length of the recording, transcription status.
    std::vector<Field> details() const;
    // Segments, words, coded segments, applications, media notes.
    std::vector<Field> counts() const;

signals:
    void changed();

private:
    MibrelSourcesState& m_sources;
    MibrelWorkspaceState& m_workspace;
};

} // namespace mibrel
