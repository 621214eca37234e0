#include "MibrelCore/Export/TeskWordExporter.h"
#include "MibrelMac/State/MibrelPanels.h"
#include "MibrelMac/State/MibrelSourcesState.h"

namespace mibrel {

bool MibrelSourcesState::copyTranscriptForWord(const TeskWorkspace& workspace) {
    const TeskSource* selected = source(m_selectedSourceID);
    if (selected == nullptr) return false;
    const auto transcript = m_transcripts.find(selected->id);
    if (transcript == m_transcripts.end()) return false;
    m_panels.copyToClipboard(
        TeskWordExporter::html(selected->label, transcript->second, workspace, selected->id),
        TeskWordExporter::plainText(selected->label, transcript->second, workspace, selected->id));
    return true;
}

} // namespace mibrel
