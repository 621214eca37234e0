#pragma once

#include <filesystem>
#include <optional>

// The bundled Teacher Retention study, copied out for the user to open and change.
namespace mibrel {
class MibrelProjectSession;
}

namespace mibrel::MibrelSampleProject {

inline constexpr const char* kCopyName = "Mibrel Sample - Teacher Retention";

// The first free name in `folder`: "… Teacher Retention.mvibrl", then "… 2", "… 3" and
// so on, so a second copy never overwrites a first that may hold the user's work.
std::filesystem::path freeCopyLocation(const std::filesystem::path& folder);

// Copies the sample into `folder`, or, if that fails, into `temporaryFolder` under a
// unique name. Throws the second failure's error when both fail.
std::filesystem::path copy(const std::filesystem::path& bundledSample, const std::filesystem::path& folder,
                           const std::filesystem::path& temporaryFolder);

// Copies the sample (when this copy of the program has one) into `folder` and opens the
// copy; what goes wrong is published on the session.
void openSample(MibrelProjectSession& session, const std::optional<std::filesystem::path>& bundledSample,
                const std::filesystem::path& folder, const std::filesystem::path& temporaryFolder);

} // namespace mibrel::MibrelSampleProject
