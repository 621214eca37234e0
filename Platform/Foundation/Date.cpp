#include "Platform/Foundation/Date.h"

#include <cstdio>
#include <utility>

namespace platform {
namespace {

std::function<Date()>& clockOverride() {
    static std::function<Date()> clock;
    return clock;
}

void writeDigits(char* out, int value, int width) {
    for (int i = width - 1; i >= 0; --i) {
        out[i] = static_cast<char>('0' + value % 10);
        value /= 10;
    }
}

bool readDigits(std::string_view text, std::size_t at, std::size_t width, int& value) {
    if (at + width > text.size()) return false;
    value = 0;
    for (std::size_t i = at; i < at + width; ++i) {
        if (text[i] < '0' || text[i] > '9') return false;
        value = value * 10 + (text[i] - '0');
    }
    return true;
}

struct Civil {
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
};

bool readCivil(std::string_view text, Civil& c) {
    return readDigits(text, 0, 4, c.year) && text.size() > 4 && text[4] == '-' && readDigits(text, 5, 2, c.month) &&
           text.size() > 7 && text[7] == '-' && readDigits(text, 8, 2, c.day) && text.size() > 10 &&
           text[10] == 'T' && readDigits(text, 11, 2, c.hour) && text.size() > 13 && text[13] == ':' &&
           readDigits(text, 14, 2, c.minute) && text.size() > 16 && text[16] == ':' &&
           readDigits(text, 17, 2, c.second);
}

// Microseconds of an optional ".fff…" part starting at `at`; advances `at` past it.
bool readFraction(std::string_view text, std::size_t& at, std::chrono::microseconds& fraction) {
    fraction = std::chrono::microseconds(0);
    if (at >= text.size() || text[at] != '.') return true;
    ++at;
    const std::size_t start = at;
    long long micros = 0;
    int scale = 100000;
    while (at < text.size() && text[at] >= '0' && text[at] <= '9') {
        micros += (text[at] - '0') * scale;
        scale /= 10;
        ++at;
    }
    fraction = std::chrono::microseconds(micros);
    return at > start;
}

// Offset east of UTC of "Z", "+hh:mm", "-hh:mm" or "+hhmm" at `at`, which must end the text.
std::optional<std::chrono::minutes> readZone(std::string_view text, std::size_t at) {
    if (at >= text.size()) return std::nullopt;
    if (text[at] == 'Z') {
        return at + 1 == text.size() ? std::optional(std::chrono::minutes(0)) : std::nullopt;
    }
    if (text[at] != '+' && text[at] != '-') return std::nullopt;
    const int sign = text[at] == '-' ? -1 : 1;
    int hours = 0;
    int minutes = 0;
    std::size_t next = at + 1;
    if (!readDigits(text, next, 2, hours)) return std::nullopt;
    next += 2;
    if (next < text.size() && text[next] == ':') ++next;
    if (!readDigits(text, next, 2, minutes) || next + 2 != text.size()) return std::nullopt;
    if (hours > 23 || minutes > 59) return std::nullopt;
    return std::chrono::minutes(sign * (hours * 60 + minutes));
}

Civil civilFrom(Date date) {
    using namespace std::chrono;
    const auto wholeSeconds = floor<seconds>(date);
    const auto wholeDays = floor<days>(wholeSeconds);
    const year_month_day ymd{wholeDays};
    const hh_mm_ss<seconds> time{wholeSeconds - wholeDays};
    return Civil{static_cast<int>(ymd.year()), static_cast<int>(static_cast<unsigned>(ymd.month())),
                 static_cast<int>(static_cast<unsigned>(ymd.day())), static_cast<int>(time.hours().count()),
                 static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count())};
}

bool isValid(const Civil& c) {
    using namespace std::chrono;
    const year_month_day ymd{year(c.year), month(static_cast<unsigned>(c.month)), day(static_cast<unsigned>(c.day))};
    return ymd.ok() && c.hour <= 23 && c.minute <= 59 && c.second <= 59;
}

} // namespace

Date now() {
    if (const auto& clock = clockOverride()) return clock();
    return std::chrono::time_point_cast<std::chrono::microseconds>(std::chrono::system_clock::now());
}

std::size_t writeISO8601(Date date, char (&out)[kISO8601BufferSize]) {
    const Civil c = civilFrom(date);
    if (c.year < 0 || c.year > 9999) {
        // The fixed-width form cannot hold such a year; write it in full.
        const int length = std::snprintf(out, kISO8601BufferSize, "%d-%02d-%02dT%02d:%02d:%02dZ", c.year, c.month,
                                         c.day, c.hour, c.minute, c.second);
        return static_cast<std::size_t>(length);
    }
    writeDigits(out, c.year, 4);
    out[4] = '-';
    writeDigits(out + 5, c.month, 2);
    out[7] = '-';
    writeDigits(out + 8, c.day, 2);
    out[10] = 'T';
    writeDigits(out + 11, c.hour, 2);
    out[13] = ':';
    writeDigits(out + 14, c.minute, 2);
    out[16] = ':';
    writeDigits(out + 17, c.second, 2);
    out[19] = 'Z';
    return 20;
}

std::string formatISO8601(Date date) {
    char buffer[kISO8601BufferSize];
    return std::string(buffer, writeISO8601(date, buffer));
}

std::optional<Date> parseISO8601(std::string_view text) {
    using namespace std::chrono;
    Civil civil;
    if (!readCivil(text, civil) || !isValid(civil)) return std::nullopt;
    std::size_t at = 19;
    microseconds fraction{};
    if (!readFraction(text, at, fraction)) return std::nullopt;
    const auto zone = readZone(text, at);
    if (!zone) return std::nullopt;
    const sys_days days{year_month_day{year(civil.year), month(static_cast<unsigned>(civil.month)),
                                       day(static_cast<unsigned>(civil.day))}};
    const auto local = days + hours(civil.hour) + minutes(civil.minute) + seconds(civil.second);
    return Date(local - *zone) + fraction;
}

ScopedClockOverride::ScopedClockOverride(std::function<Date()> clock)
    : m_previous(std::exchange(clockOverride(), std::move(clock))) {}

ScopedClockOverride::~ScopedClockOverride() { clockOverride() = std::move(m_previous); }

} // namespace platform
