#pragma once

#include <string>

namespace mibrel {

// One timed unit of speech as the helper reports it; times in seconds from the start of
// the file the helper was given.
struct SpokenWord {
    std::string text;
    double start = 0;
    double duration = 0;

    double end() const { return start + duration; }

    bool operator==(const SpokenWord&) const = default;
};

} // namespace mibrel
