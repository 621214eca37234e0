#include "MerivanteCore/Dataset/ScaleRange.h"

#include "MerivanteCore/Dataset/DatasetNumbers.h"

namespace merivante {

std::string ScaleRange::displayText() const {
    if (minimum && maximum) return cleanText(*minimum) + "-" + cleanText(*maximum);
    if (minimum) return cleanText(*minimum) + "+";
    if (maximum) return "up to " + cleanText(*maximum);
    return "Not set";
}

} // namespace merivante
