#pragma once

#include <string>

#include "MibrelCore/Model/TeskWorkspace.h"
#include "MibrelCore/Sources/TeskTranscript.h"

// One coded transcript as a clipboard payload for a word processor: plain text, and an
// HTML fragment with inline styles only (word processors drop style sheets on paste), in
// which the first code applied to a segment highlights it and every code shows as a bubble.
// Codes take their colours from a palette of six by their position in the codebook; a code
// missing from the codebook is shown as "Code" in the first colours.
namespace mibrel::TeskWordExporter {

// The source label, then one line per segment: "label: text", with the codes' names in
// brackets after it when the segment is coded; blank lines between.
std::string plainText(const std::string& sourceLabel, const TeskTranscript& transcript, const TeskWorkspace& workspace,
                      const Uuid& sourceID);

std::string html(const std::string& sourceLabel, const TeskTranscript& transcript, const TeskWorkspace& workspace,
                 const Uuid& sourceID);

// "¶" for a segment without a time, otherwise its start as minutes and seconds ("61:01").
std::string segmentLabel(const TranscriptSegment& segment);

} // namespace mibrel::TeskWordExporter
