#pragma once

#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "MibrelCore/Model/TeskValueTypes.h"
#include "MibrelCore/Sources/TeskMediaKind.h"
#include "MibrelCore/Sources/TeskMediaMemo.h"
#include "MibrelCore/Sources/TeskMediaNote.h"
#include "MibrelCore/Sources/TeskTranscriptionStatus.h"

namespace mibrel {

// One imported item: a document, a recording, a video or one respondent's answers.
// Every key may be missing, so hand-repaired and old files load.
struct TeskSource {
    Uuid id = Uuid::random();
    std::string label = "Untitled source";
    Date date = platform::now();
    std::vector<std::string> tags;
    std::optional<std::string> mediaFilename; // the original recording, inside the source's folder
    std::optional<TeskMediaKind> mediaKind;
    std::optional<std::string> transcriptionMediaFilename; // audio prepared for transcription, where it differs
    std::optional<TeskTranscriptionStatus> transcriptionStatus;
    TeskMediaMemo mediaMemo;
    std::vector<TeskMediaNote> mediaNotes;
    Date createdAt = platform::now();

    bool operator==(const TeskSource&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskSource;
        return std::tuple{defaulted("createdAt", &T::createdAt),
                          defaulted("date", &T::date),
                          defaulted("id", &T::id),
                          defaulted("label", &T::label),
                          optional("mediaFilename", &T::mediaFilename),
                          optional("mediaKind", &T::mediaKind),
                          defaulted("mediaMemo", &T::mediaMemo),
                          defaulted("mediaNotes", &T::mediaNotes),
                          defaulted("tags", &T::tags),
                          optional("transcriptionMediaFilename", &T::transcriptionMediaFilename),
                          optional("transcriptionStatus", &T::transcriptionStatus)};
    }

    // Files from before video support name a recording but no kind; all of those were audio.
    static void finishDecoding(TeskSource& source, const platform::json::JsonObjectReader&) {
        if (!source.mediaKind && source.mediaFilename) source.mediaKind = TeskMediaKind::audio;
    }
};

} // namespace mibrel
