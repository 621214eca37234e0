#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

// A moment in time, UTC, with microsecond resolution in memory.
using Date = std::chrono::sys_time<std::chrono::microseconds>;

// The current moment, or the clock installed by a ScopedClockOverride.
Date now();

// Written as "YYYY-MM-DDTHH:MM:SSZ": UTC, whole seconds (fractions are dropped).
std::string formatISO8601(Date date);
// Writes formatISO8601's characters without allocating; returns how many were written.
inline constexpr std::size_t kISO8601BufferSize = 32;
std::size_t writeISO8601(Date date, char (&out)[kISO8601BufferSize]);

// Reads "YYYY-MM-DDTHH:MM:SS" with optional fractional seconds, then "Z" or an
// offset "+hh:mm", "-hh:mm", "+hhmm". Anything else is absent.
std::optional<Date> parseISO8601(std::string_view text);

// Replaces the clock of now() while it lives; for tests that need distinct or fixed moments.
class ScopedClockOverride {
public:
    explicit ScopedClockOverride(std::function<Date()> clock);
    ~ScopedClockOverride();
    ScopedClockOverride(const ScopedClockOverride&) = delete;
    ScopedClockOverride& operator=(const ScopedClockOverride&) = delete;

private:
    std::function<Date()> m_previous;
};

} // namespace platform
