#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace merivante {

// Any distribution function by its name, with its arguments in order (counts such as `k`
// as numbers); for scripts and the command line. Absent for an unknown name or the wrong
// number of arguments.
std::optional<double> callDistribution(std::string_view name, const std::vector<double>& arguments);

// The names callDistribution knows, with their argument names ("studentTCDF t df").
std::vector<std::string> distributionSignatures();

} // namespace merivante
