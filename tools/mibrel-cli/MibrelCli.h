#pragma once

#include <ostream>

namespace mibrel::cli {

// Exit statuses: 0 success, 1 a failure described in words for the user, 2 a usage error.
inline constexpr int kExitSuccess = 0;
inline constexpr int kExitFailure = 1;
inline constexpr int kExitUsage = 2;

// Runs one command line. Results go to `out` (JSON through the shared encoder), errors
// to `err`. Never throws.
int runMibrelCli(int argc, const char* const* argv, std::ostream& out, std::ostream& err);

} // namespace mibrel::cli
