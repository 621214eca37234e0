#include "Platform/Xml/XmlParser.h"

#include <string>

#include <gtest/gtest.h>

namespace platform::xml {
namespace {

// Writes the events down as text, to compare one reading with another.
struct EventLog : XmlHandler {
    std::string log;
    void startElement(std::string_view name, const XmlAttributes& attributes) override {
        log += "<" + std::string(name) + std::string(attributes.value("a").value_or("")) + ">";
    }
    void endElement(std::string_view name) override { log += "</" + std::string(name) + ">"; }
    void characters(std::string_view text) override { log += text; }
};

const std::string document = R"(<?xml version="1.0"?><w:body><w:p a="1"><w:t>Caf&#xE9; &amp; más</w:t></w:p><w:p/></w:body>)";

TEST(XmlPushParserTest, ADocumentCutAnywhereReadsAsAWhole) {
    EventLog whole;
    ASSERT_TRUE(parse(document, whole));
    EXPECT_EQ(whole.log, "<w:body><w:p1><w:t>Café & más</w:t></w:p><w:p></w:p></w:body>");
    for (std::size_t cut = 0; cut <= document.size(); ++cut) {
        EventLog pieces;
        XmlPushParser parser(pieces);
        EXPECT_TRUE(parser.feed(document.substr(0, cut)) && parser.feed(document.substr(cut)) && parser.finish()) << cut;
        EXPECT_EQ(pieces.log, whole.log) << cut;
    }
}

TEST(XmlPushParserTest, AFaultKeepsTheEventsBeforeItAndEndsTheReading) {
    EventLog events;
    XmlPushParser parser(events);
    EXPECT_TRUE(parser.feed("<w:body><w:p>kept</w:p>"));
    EXPECT_FALSE(parser.feed("<w:p>broken</w:body>"));
    EXPECT_FALSE(parser.feed("<w:p>ignored</w:p>"));
    EXPECT_FALSE(parser.finish());
    EXPECT_TRUE(events.log.starts_with("<w:body><w:p>kept</w:p>")) << events.log;
    EXPECT_EQ(events.log.find("ignored"), std::string::npos);

    EventLog unfinished;
    XmlPushParser open(unfinished);
    EXPECT_TRUE(open.feed("<w:body><w:p>"));
    EXPECT_FALSE(open.finish());
}

} // namespace
} // namespace platform::xml
