#pragma once

#include <cstdint>
#include <exception>
#include <string>

namespace merivante {

// Why a statistical-package or survey-package file could not become a dataset; `what()` is
// the message for the user.
class StatPackageImportError : public std::exception {
public:
    enum class Kind { mvkbHasNoData, noDataRows, unreadableSPSS, unreadableStata, unreadableMvkb, unreadableMvkbField };

    static StatPackageImportError mvkbHasNoData(std::string message);
    static StatPackageImportError noDataRows(std::int64_t columnCount);
    static StatPackageImportError unreadableSPSS();
    static StatPackageImportError unreadableStata();
    static StatPackageImportError unreadableMvkb();
    static StatPackageImportError unreadableMvkbField();

    Kind kind() const { return m_kind; }
    std::int64_t columnCount() const { return m_columnCount; }
    const std::string& errorDescription() const { return m_description; }
    const char* what() const noexcept override { return m_description.c_str(); }

private:
    StatPackageImportError(Kind kind, std::string description) : m_kind(kind), m_description(std::move(description)) {}

    Kind m_kind;
    std::string m_description;
    std::int64_t m_columnCount = 0;
};

} // namespace merivante
