#include "MerivanteCore/Dataset/DataVariable.h"

namespace merivante {

void DataVariable::assignType(VariableKind kind) {
    assignedType = kind;
    includeInDescriptives = includedInDescriptivesByDefault(kind);
    includeInReliability = isReliabilityEligible(kind);
}

bool DataVariable::isOutcomeSelectionCandidate() const {
    return numericSummary && nonMissingCount >= 1 && canServeAsDependentVariable(assignedType);
}

bool DataVariable::isGroupingSelectionCandidate(std::int64_t rowCount) const {
    return canServeAsIndependentGroupingVariable(assignedType) && nonMissingCount >= 1 && uniqueCount >= 2 &&
           uniqueCount <= maximumGroupingLevelCount(rowCount);
}

std::int64_t DataVariable::maximumGroupingLevelCount(std::int64_t rowCount) {
    if (rowCount >= 60) return 30;
    if (rowCount >= 24) return rowCount / 2;
    return 12;
}

} // namespace merivante
