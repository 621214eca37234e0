#include "MerivanteCore/Dataset/VariableKind.h"

namespace merivante {

std::string_view displayName(VariableKind kind) {
    switch (kind) {
    case VariableKind::demographicBackground: return "Demographic/background";
    case VariableKind::status: return "Status";
    case VariableKind::psychometricItem: return "Psychometric item";
    case VariableKind::testItem: return "Test item";
    case VariableKind::rubricItem: return "Rubric item";
    case VariableKind::outcome: return "Outcome";
    case VariableKind::grouping: return "Grouping";
    case VariableKind::textResponse: return "Text response";
    case VariableKind::administrative: return "Administrative";
    case VariableKind::exclude: return "Ignore";
    }
    return "";
}

} // namespace merivante
