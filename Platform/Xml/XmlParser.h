#pragma once

#include <string_view>

// Event-driven XML reading. Names keep their prefix ("w:t"): namespaces are not resolved.
namespace platform::xml {

class XmlHandler {
public:
    virtual ~XmlHandler() = default;
    virtual void startElement(std::string_view name) { (void)name; }
    virtual void endElement(std::string_view name) { (void)name; }
    // Text between tags, possibly in several pieces.
    virtual void characters(std::string_view text) { (void)text; }
};

// Reads the document, calling the handler for each event. Returns false when the document
// is not well-formed; the events before the error have been delivered by then.
bool parse(std::string_view document, XmlHandler& handler);

} // namespace platform::xml
