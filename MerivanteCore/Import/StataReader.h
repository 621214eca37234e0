#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "MerivanteCore/Import/TabularImport.h"

namespace merivante {

// A Stata file gives what any statistical package gives.
using StataImport = TabularImport;

// Reads a Stata .dta file of the tagged format (releases 117, 118 and 119) held in memory.
namespace StataReader {

enum class ByteOrder { little, big };

struct VarType {
    // `int_`, `long_`, `float_` and `double_` carry an underscore only because the plain
    // words are reserved.
    enum class Kind { str, byte, int_, long_, float_, double_, strL };
    Kind kind = Kind::byte;
    std::int64_t width = 0; // of a `str`

    static VarType fromCode(std::uint16_t code);
};

struct Header {
    std::int64_t release = 0;
    ByteOrder byteOrder = ByteOrder::little;
    std::int64_t variableCount = 0;
    std::int64_t observationCount = 0;
    std::string datasetLabel;
    std::string timestamp;
};

// A cursor over the file; tags are matched where the cursor stands, never searched for,
// except for the closing tag of a text tag.
class ByteReader {
public:
    explicit ByteReader(std::string_view bytes) : m_bytes(bytes) {}

    bool skipPast(std::string_view text);
    bool peekMatches(std::string_view text) const;
    std::optional<std::string_view> read(std::size_t count);
    std::optional<std::string> readTagText(std::string_view name);
    // An unsigned integer of `width` bytes (1 to 8) in the given order.
    std::optional<std::uint64_t> readUnsigned(std::size_t width, ByteOrder order);

    bool seek(std::uint64_t position);
    std::size_t remaining() const { return m_bytes.size() - m_position; }

private:
    std::string_view m_bytes;
    std::size_t m_position = 0;
};

// Absent for anything that is not a tagged .dta file; a release it does not read gives a
// result with no variables and one note.
std::optional<StataImport> read(std::string_view data);

// Whole numbers as integers, others with ten significant digits and no trailing zeros.
std::string formatNumber(double value);

} // namespace StataReader
} // namespace merivante
