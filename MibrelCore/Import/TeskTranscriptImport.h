#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

// Turns a document on disk (plain text, Word, PDF) into one plain-text string, whose
// paragraphs become a transcript's segments.
namespace mibrel::TeskTranscriptImport {

class ImportError : public std::runtime_error {
public:
    enum class Kind { unreadable, unsupportedFormat };

    explicit ImportError(Kind kind);
    Kind kind() const { return m_kind; }

private:
    Kind m_kind;
};

// By the file's ending: .docx, .pdf, .txt/.text/.md/.rtf or none (read as plain text, rtf
// control words included). Throws ImportError, DocxArchive::ArchiveError or FileError.
std::string text(const std::filesystem::path& location);

} // namespace mibrel::TeskTranscriptImport
