#include "Platform/Foundation/Bytes.h"

#include <array>
#include <cstdint>

namespace platform {
namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::array<std::int8_t, 256> makeDecodeTable() {
    std::array<std::int8_t, 256> table{};
    for (auto& entry : table) entry = -1;
    for (int i = 0; i < 64; ++i) table[static_cast<unsigned char>(kAlphabet[i])] = static_cast<std::int8_t>(i);
    return table;
}

constexpr auto kDecodeTable = makeDecodeTable();

} // namespace

std::string Bytes::base64Encoded() const {
    const std::string_view data = view();
    std::string out;
    out.reserve((data.size() + 2) / 3 * 4);
    std::size_t i = 0;
    for (; i + 3 <= data.size(); i += 3) {
        const auto n = (static_cast<std::uint32_t>(static_cast<unsigned char>(data[i])) << 16) |
                       (static_cast<std::uint32_t>(static_cast<unsigned char>(data[i + 1])) << 8) |
                       static_cast<unsigned char>(data[i + 2]);
        out += kAlphabet[(n >> 18) & 63];
        out += kAlphabet[(n >> 12) & 63];
        out += kAlphabet[(n >> 6) & 63];
        out += kAlphabet[n & 63];
    }
    const std::size_t rest = data.size() - i;
    if (rest > 0) {
        auto n = static_cast<std::uint32_t>(static_cast<unsigned char>(data[i])) << 16;
        if (rest == 2) n |= static_cast<std::uint32_t>(static_cast<unsigned char>(data[i + 1])) << 8;
        out += kAlphabet[(n >> 18) & 63];
        out += kAlphabet[(n >> 12) & 63];
        out += rest == 2 ? kAlphabet[(n >> 6) & 63] : '=';
        out += '=';
    }
    return out;
}

std::optional<Bytes> Bytes::fromBase64(std::string_view text) {
    if (text.size() % 4 != 0) return std::nullopt;
    std::size_t padding = 0;
    if (!text.empty() && text.back() == '=') padding = text.size() >= 2 && text[text.size() - 2] == '=' ? 2 : 1;
    std::string out;
    out.reserve(text.size() / 4 * 3);
    std::uint32_t accumulator = 0;
    int bits = 0;
    for (std::size_t i = 0; i < text.size() - padding; ++i) {
        const int value = kDecodeTable[static_cast<unsigned char>(text[i])];
        if (value < 0) return std::nullopt;
        accumulator = (accumulator << 6) | static_cast<std::uint32_t>(value);
        bits += 6;
        if (bits >= 8) {
            bits -= 8;
            out += static_cast<char>((accumulator >> bits) & 0xFF);
        }
    }
    return Bytes(std::move(out));
}

} // namespace platform
