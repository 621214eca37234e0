#include "MerivanteCore/Import/ClassifierTokens.h"

#include <vector>

#include "Platform/Text/Regex.h"
#include "Platform/Text/Text.h"

namespace merivante {

std::set<std::string> classifierTokens(std::string_view text) {
    static const platform::text::Regex camelBoundary("([a-z0-9])([A-Z])");
    const std::string spaced = camelBoundary.replacingAll(text, "$1 $2");
    std::vector<std::string> runs = platform::text::alphanumericRuns(platform::text::lowercased(spaced));
    return {std::make_move_iterator(runs.begin()), std::make_move_iterator(runs.end())};
}

} // namespace merivante
