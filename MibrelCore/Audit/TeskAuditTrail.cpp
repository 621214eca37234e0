#include "MibrelCore/Audit/TeskAuditTrail.h"

#include "Platform/Files/FileSystem.h"
#include "Platform/Json/JsonFile.h"

namespace mibrel::TeskAuditTrail {
namespace fs = std::filesystem;

fs::path auditURL(const fs::path& projectURL) { return projectURL / "trustworthiness" / "audit.json"; }

std::vector<TeskAuditEvent> load(const fs::path& projectURL) {
    const fs::path url = auditURL(projectURL);
    if (!platform::files::itemExists(url)) return {};
    return platform::json::readJsonFile<std::vector<TeskAuditEvent>>(url);
}

TeskAuditEvent append(const std::string& event, const std::string& detail, const fs::path& projectURL) {
    std::vector<TeskAuditEvent> events = load(projectURL);
    TeskAuditEvent added{Uuid::random(), platform::now(), event, detail};
    events.push_back(added);
    platform::files::createDirectories(auditURL(projectURL).parent_path());
    platform::json::writeJsonFile(auditURL(projectURL), events);
    return added;
}

} // namespace mibrel::TeskAuditTrail
