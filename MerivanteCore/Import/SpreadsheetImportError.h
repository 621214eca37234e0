#pragma once

#include <exception>
#include <string>

namespace merivante {

// A data file of a kind no importer reads; `what()` is the message for the user.
class SpreadsheetImportError : public std::exception {
public:
    static SpreadsheetImportError unsupportedFileType(std::string extension);

    const std::string& extension() const { return m_extension; }
    const std::string& errorDescription() const { return m_description; }
    const char* what() const noexcept override { return m_description.c_str(); }

private:
    SpreadsheetImportError(std::string extension, std::string description)
        : m_extension(std::move(extension)), m_description(std::move(description)) {}

    std::string m_extension;
    std::string m_description;
};

} // namespace merivante
