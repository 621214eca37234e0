#include "MibrelMac/Media/MibrelMediaAsset.h"

#include "MibrelMac/Media/MibrelMediaError.h"

namespace mibrel::media {

MibrelMediaInfo probeMedia(const std::filesystem::path&) { throw MibrelMediaLayerError("not yet"); }

std::optional<double> mediaDurationSeconds(const std::filesystem::path&) { return std::nullopt; }

} // namespace mibrel::media
