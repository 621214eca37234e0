#pragma once

#include <optional>
#include <string>
#include <vector>

#include <QObject>

#include "MibrelCore/Sources/TeskMediaNote.h"

namespace mibrel {

class MibrelSourcesState;

// The timed notes beside a recording's transcript: listed by time, added at the player's
// position, edited in place (a blank text deletes the note), and each a place to seek to.
class MibrelMediaNotesPresenter : public QObject {
    Q_OBJECT

public:
    struct Row {
        Uuid noteID;
        std::string timeText; // "m:ss"
        double timestamp = 0;
        std::string text;
    };

    explicit MibrelMediaNotesPresenter(MibrelSourcesState& sources, QObject* parent = nullptr);

    // Notes belong to recordings: a text source offers none.
    bool isAvailable() const;
    std::vector<Row> rows() const;
    std::optional<std::string> emptyText() const;

    void add(double playerTime, const std::string& text);
    void edit(const Uuid& noteID, const std::string& text);
    void remove(const Uuid& noteID);

signals:
    void changed();

private:
    MibrelSourcesState& m_sources;
};

} // namespace mibrel
