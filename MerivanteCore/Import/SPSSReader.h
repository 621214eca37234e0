#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "MerivanteCore/Import/TabularImport.h"

// Reads an SPSS system file (.sav) held in memory: names, labels, value labels and the
// data, plain or bytecode-compressed. Everything is decided from the file itself.
namespace merivante::SPSSReader {

// A cursor over the file; a read that does not fit leaves the position where it was.
class ByteReader {
public:
    explicit ByteReader(std::string_view bytes) : m_bytes(bytes) {}

    std::optional<std::string_view> readBytes(std::int64_t count);
    std::optional<std::int32_t> readInt32LE();
    std::optional<double> readDoubleLE();

    std::size_t position() const { return m_position; }
    std::size_t remaining() const { return m_bytes.size() - m_position; }

private:
    std::string_view m_bytes;
    std::size_t m_position = 0;
};

// Absent when the file is not a usable system file; there is no finer error.
std::optional<TabularImport> read(std::string_view data);

// "YYYY-MM-DD" of an SPSS date (seconds since 1582-10-14), for years 1583 to 9998.
std::optional<std::string> formatSPSSDate(double seconds);

// Whole numbers as integers, others with the format's decimals (1 to 10), else shortest.
std::string trimNumber(double value, std::int64_t decimals);

} // namespace merivante::SPSSReader
