#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

// A 128-bit identifier. Its canonical text is upper-case with hyphens
// ("6F9619FF-8B86-D011-B42D-00CF4FC964FF"); parsing accepts either case.
class Uuid {
public:
    // The nil UUID; real identifiers come from random().
    constexpr Uuid() = default;
    explicit constexpr Uuid(const std::array<std::uint8_t, 16>& bytes) : m_bytes(bytes) {}

    // A random (version 4) UUID.
    static Uuid random();
    static std::optional<Uuid> parse(std::string_view text);

    std::string uuidString() const;
    // Writes the 36 characters of the canonical text to `out`.
    void writeCanonical(char* out) const;
    const std::array<std::uint8_t, 16>& bytes() const { return m_bytes; }

    // Byte order equals the order of the canonical strings.
    friend constexpr auto operator<=>(const Uuid&, const Uuid&) = default;

private:
    std::array<std::uint8_t, 16> m_bytes{};
};

} // namespace platform

template <>
struct std::hash<platform::Uuid> {
    std::size_t operator()(const platform::Uuid& uuid) const noexcept;
};
