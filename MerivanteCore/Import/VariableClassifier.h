#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "MerivanteCore/Dataset/ColumnProfile.h"
#include "MerivanteCore/Dataset/DataVariable.h"

// Decides by rule, from the column's name and answers, what a column is for, and builds its
// variable. Every importer calls it once per column; it never fails.
namespace merivante::VariableClassifier {

DataVariable classify(std::string_view name, const std::vector<std::string>& values);

// The same decision from a column already profiled.
DataVariable classify(std::string_view name, const ColumnProfile& profile);

} // namespace merivante::VariableClassifier
