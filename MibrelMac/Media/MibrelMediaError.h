#pragma once

#include <stdexcept>
#include <string>

namespace mibrel::media {

// A recording that cannot be opened, decoded or written; what() says why in plain words.
class MibrelMediaLayerError : public std::runtime_error {
public:
    explicit MibrelMediaLayerError(const std::string& message) : std::runtime_error(message) {}
};

} // namespace mibrel::media
