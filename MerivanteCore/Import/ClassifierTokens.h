#pragma once

#include <set>
#include <string>
#include <string_view>

namespace merivante {

// The words of a column name as the classifiers see them: "respondentId" gives
// {"respondent", "id"}; "Q3_agree-level" gives {"q3", "agree", "level"}. A camel-case
// boundary splits only before lower-casing, so callers that lower-case first keep it whole.
std::set<std::string> classifierTokens(std::string_view text);

} // namespace merivante
