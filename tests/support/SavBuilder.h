#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace mibrel::testing {

// Writes SPSS system files byte by byte, for tests and benchmarks that need files no
// program would write (broken records, odd paddings) or sizes no fixture should have.
class SavBuilder {
public:
    // A numeric cell (absent is system-missing) or the text of a string cell.
    using Cell = std::variant<std::optional<double>, std::string>;

    explicit SavBuilder(bool compressed, double bias = 100);

    // A numeric variable; `printType` 5 is F, 20 is DATE.
    SavBuilder& numeric(const std::string& name, std::optional<std::string> label = std::nullopt, int printType = 5,
                        int decimals = 0);
    // A string variable of `width` bytes, with its continuation slots.
    SavBuilder& string(const std::string& name, int width, std::optional<std::string> label = std::nullopt);
    // Pairs of an 8-byte raw value and its label, for the given 1-based slot numbers.
    SavBuilder& valueLabels(const std::vector<std::pair<std::string, std::string>>& pairs,
                            const std::vector<std::int32_t>& slots);
    SavBuilder& extension(std::int32_t subtype, const std::string& bytes);
    SavBuilder& raw(const std::string& bytes);
    SavBuilder& endDictionary();

    SavBuilder& row(const std::vector<Cell>& cells);
    // Compressed files may say where the data ends.
    SavBuilder& endOfData();
    std::string bytes();

    static std::string int32(std::int32_t value);
    static std::string float64(double value);

private:
    void slotValue(std::optional<unsigned char> code, const std::string& raw);
    void flushBlock();

    bool m_compressed;
    double m_bias;
    std::vector<int> m_slotWidths; // per variable: 0 numeric, else the string width
    std::string m_bytes;
    std::string m_codes;
    std::string m_pending;
};

} // namespace mibrel::testing
