#pragma once

#include <map>
#include <vector>

#include "MibrelCore/Model/TeskWorkspace.h"
#include "MibrelCore/Sources/TeskSource.h"
#include "MibrelCore/Sources/TeskTranscript.h"

namespace mibrel {

using TeskTranscriptMap = std::map<Uuid, TeskTranscript>;

// One snapshot of the project for the engines: a view onto the caller's sources,
// transcripts and workspace, which must outlive it. Nothing is copied, so a view can be
// made for every redraw.
struct TeskAnalysisCorpus {
    const std::vector<TeskSource>& sources;    // in project order
    const TeskTranscriptMap& transcripts;      // a source may have none
    const TeskWorkspace& workspace;
};

} // namespace mibrel
