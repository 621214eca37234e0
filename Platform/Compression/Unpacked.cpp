#include "Platform/Compression/Unpacked.h"

#include <algorithm>

namespace platform::compression {
namespace {

constexpr std::size_t kMebibyte = std::size_t{1} << 20;
constexpr std::size_t kSmallestLimit = 64 * kMebibyte;
constexpr std::size_t kLargestLimit = 1024 * kMebibyte;
constexpr std::size_t kLargestRatio = 200;

} // namespace

std::size_t unpackLimit(std::size_t archiveSize) {
    const std::size_t scaled = archiveSize > kLargestLimit / kLargestRatio ? kLargestLimit : archiveSize * kLargestRatio;
    return std::clamp(scaled, kSmallestLimit, kLargestLimit);
}

} // namespace platform::compression
