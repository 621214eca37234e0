#pragma once

#include <memory>
#include <optional>
#include <string_view>

// Event-driven XML reading. Names keep their prefix ("w:t"): namespaces are not resolved.
namespace platform::xml {

// An element's attributes, valid during the start event only.
class XmlAttributes {
public:
    explicit XmlAttributes(const char** pairs) : m_pairs(pairs) {}
    std::optional<std::string_view> value(std::string_view name) const;

private:
    const char** m_pairs; // name, value, name, value, …, null
};

class XmlHandler {
public:
    virtual ~XmlHandler() = default;
    virtual void startElement(std::string_view name, const XmlAttributes& attributes) {
        (void)name;
        (void)attributes;
    }
    virtual void endElement(std::string_view name) { (void)name; }
    // Text between tags, possibly in several pieces.
    virtual void characters(std::string_view text) { (void)text; }
};

// Reads the document, calling the handler for each event. Returns false when the document
// is not well-formed; the events before the error have been delivered by then.
bool parse(std::string_view document, XmlHandler& handler);

// The same for a document that arrives in pieces: each piece is read as it comes.
class XmlPushParser {
public:
    explicit XmlPushParser(XmlHandler& handler);
    ~XmlPushParser();
    XmlPushParser(const XmlPushParser&) = delete;
    XmlPushParser& operator=(const XmlPushParser&) = delete;

    // Reads the next piece. False once the document has failed; later pieces are ignored.
    bool feed(std::string_view piece);
    // Ends the document. False when it failed anywhere or stops short.
    bool finish();

private:
    bool parsePiece(std::string_view piece, bool isFinal);

    struct Parser;
    std::unique_ptr<Parser> m_parser;
    bool m_failed = false;
};

} // namespace platform::xml
