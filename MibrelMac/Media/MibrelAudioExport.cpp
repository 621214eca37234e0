#include "MibrelMac/Media/MibrelAudioExport.h"

namespace mibrel::media {

MibrelAudioExportResult exportAudioM4A(const MibrelAudioExportRequest&) { return {}; }

} // namespace mibrel::media
