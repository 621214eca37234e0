#pragma once

#include <cstddef>

#include "MibrelCore/Model/TeskWorkspace.h"

namespace mibrel::bench {

struct LargeProjectSize {
    std::size_t sources = 400;
    std::size_t segmentsPerSource = 60;
    std::size_t codes = 500;
    std::size_t applications = 100'000;
    std::size_t quotes = 5'000;
};

// A workspace of the given size with realistic text lengths; the same seed gives the same ids.
TeskWorkspace makeLargeWorkspace(const LargeProjectSize& size = {}, unsigned seed = 7);

} // namespace mibrel::bench
