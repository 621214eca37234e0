#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "MibrelCore/Audit/TeskAuditEvent.h"

// The project's append-only log of analytic decisions, "trustworthiness/audit.json".
// It lives apart from the workspace, so a damaged workspace never takes the log with it.
namespace mibrel::TeskAuditTrail {

std::filesystem::path auditURL(const std::filesystem::path& projectURL);

// Oldest first; empty when there is no log yet. Throws FileError or DecodingError.
std::vector<TeskAuditEvent> load(const std::filesystem::path& projectURL);

// Reads the whole log, adds one event and writes it back atomically. A log that cannot
// be read is never overwritten: the error propagates and the event is not recorded.
TeskAuditEvent append(const std::string& event, const std::string& detail, const std::filesystem::path& projectURL);

} // namespace mibrel::TeskAuditTrail
