#include "MibrelCore/Export/TeskWordExporter.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

using namespace mibrel;
namespace word = mibrel::TeskWordExporter;

namespace {

const Uuid kSource = Uuid::random();

TranscriptSegment segment(std::string id, std::string text, std::optional<double> start = std::nullopt) {
    return {std::move(id), start, std::nullopt, std::move(text)};
}

TeskCode code(std::string name) {
    TeskCode result;
    result.name = std::move(name);
    return result;
}

TeskCodeApplication application(const Uuid& codeID, std::string segmentID,
                                std::optional<std::int64_t> charStart = std::nullopt,
                                std::optional<std::int64_t> charEnd = std::nullopt, const Uuid& sourceID = kSource) {
    TeskCodeApplication result;
    result.response = {sourceID, std::move(segmentID), charStart, charEnd};
    result.codeID = codeID;
    return result;
}

// What follows the label of each segment paragraph: the body and the bubbles.
std::vector<std::string> paragraphBodies(const std::string& html) {
    const std::string open = "<p style=\"margin:0 0 10pt 0;";
    std::vector<std::string> result;
    for (auto at = html.find(open); at != std::string::npos; at = html.find(open, at + 1)) {
        const auto body = html.find(":</b> ", at) + 6;
        result.push_back(html.substr(body, html.find("</p>\n", body) - body));
    }
    return result;
}

std::string highlight(const std::string& fill, const std::string& content) {
    return "<span style=\"background-color:" + fill + ";\">" + content + "</span>";
}

std::string bubble(const std::string& fill, const std::string& border, const std::string& name) {
    return " <span style=\"display:inline-block; background-color:" + fill + "; border:1px solid " + border +
           "; border-radius:8px; padding:0pt 4pt; font-family:Calibri, sans-serif; font-size:8pt; color:#333333; "
           "white-space:nowrap;\">" +
           name + "</span>";
}

// The paragraph body of a transcript of one segment.
std::string bodyOf(const TranscriptSegment& only, const TeskWorkspace& workspace) {
    const auto bodies = paragraphBodies(word::html("S", TeskTranscript{{only}}, workspace, kSource));
    return bodies.size() == 1 ? bodies.front() : "(" + std::to_string(bodies.size()) + " paragraphs)";
}

} // namespace

TEST(TeskWordExporterHtml, WritesTheWholeFragmentInItsFixedShape) {
    TeskWorkspace workspace;
    const TeskCode support = code("Support");
    workspace.codes.append(support);
    workspace.applications.append(application(support.id, "s1", 4, 8));
    // The same segment id in another source is not this transcript's coding.
    workspace.applications.append(application(support.id, "s2", std::nullopt, std::nullopt, Uuid::random()));
    const TeskTranscript transcript{{segment("s1", "The team helps.", 65.5), segment("s2", "Nothing here.")}};

    EXPECT_EQ(word::html("Interview \"1\"", transcript, workspace, kSource),
              "<html><head><meta charset=\"utf-8\"></head><body>\n"
              "<h2 style=\"font-family:Calibri, sans-serif; font-size:13pt; margin:0 0 4pt 0;\">Interview \"1\"</h2>\n"
              "<p style=\"font-family:Calibri, sans-serif; font-size:9pt; color:#666666; margin:0 0 12pt 0;\">"
              "Coded transcript exported from Merivante Mibrel. Highlights mark coded excerpts.</p>\n"
              "<p style=\"margin:0 0 10pt 0; font-family:Calibri, sans-serif; font-size:11pt; line-height:1.4;\">"
              "<b style=\"color:#555555;\">1:06:</b> The <span style=\"background-color:#DFF2E9;\">team</span> helps."
              " <span style=\"display:inline-block; background-color:#DFF2E9; border:1px solid #168F55; "
              "border-radius:8px; padding:0pt 4pt; font-family:Calibri, sans-serif; font-size:8pt; color:#333333; "
              "white-space:nowrap;\">Support</span></p>\n"
              "<p style=\"margin:0 0 10pt 0; font-family:Calibri, sans-serif; font-size:11pt; line-height:1.4;\">"
              "<b style=\"color:#555555;\">¶:</b> Nothing here.</p>\n"
              "</body></html>");
}

TEST(TeskWordExporterSegmentLabel, ShowsAPilcrowOrWholeMinutesAndSeconds) {
    EXPECT_EQ(word::segmentLabel(segment("a", "x")), "¶");
    EXPECT_EQ(word::segmentLabel(segment("a", "x", 3661)), "61:01");
    EXPECT_EQ(word::segmentLabel(segment("a", "x", 0)), "0:00");
    EXPECT_EQ(word::segmentLabel(segment("a", "x", 2.4)), "0:02");
    EXPECT_EQ(word::segmentLabel(segment("a", "x", 59.5)), "1:00"); // halves round up, into the next minute
    EXPECT_FALSE(word::segmentLabel(segment("a", "x", 1e300)).empty()); // a hand-edited time must not crash
}

TEST(TeskWordExporterHtml, OnlyTheFirstApplicationHighlightsWhileEveryOneGetsABubble) {
    TeskWorkspace workspace;
    const TeskCode first = code("Workload");
    const TeskCode second = code("Support");
    workspace.codes.append(first);
    workspace.codes.append(second);
    // Workspace order decides, not codebook order.
    workspace.applications.append(application(second.id, "s", 0, 3));
    workspace.applications.append(application(first.id, "s"));

    EXPECT_EQ(bodyOf(segment("s", "Too much marking."), workspace),
              highlight("#E4EBFA", "Too") + " much marking." + bubble("#E4EBFA", "#2E5FAA", "Support") +
                  bubble("#DFF2E9", "#168F55", "Workload"));
}

TEST(TeskWordExporterHtml, OffsetsOutsideTheTextHighlightTheWholeSegment) {
    TeskWorkspace workspace;
    const TeskCode only = code("C");
    workspace.codes.append(only);
    const std::string whole = highlight("#DFF2E9", "abcdef") + bubble("#DFF2E9", "#168F55", "C");
    const auto bodyWith = [&](std::optional<std::int64_t> start, std::optional<std::int64_t> end) {
        TeskWorkspace coded = workspace;
        coded.applications.append(application(only.id, "s", start, end));
        return bodyOf(segment("s", "abcdef"), coded);
    };
    EXPECT_EQ(bodyWith(2, 7), whole);  // past the end
    EXPECT_EQ(bodyWith(-1, 3), whole); // before the start
    EXPECT_EQ(bodyWith(3, 3), whole);  // empty
    EXPECT_EQ(bodyWith(4, 2), whole);  // reversed
    EXPECT_EQ(bodyWith(2, std::nullopt), whole);
    EXPECT_EQ(bodyWith(std::nullopt, 2), whole);
    // Up to the very end is still a range.
    EXPECT_EQ(bodyWith(2, 6), "ab" + highlight("#DFF2E9", "cdef") + bubble("#DFF2E9", "#168F55", "C"));
}

TEST(TeskWordExporterHtml, OffsetsCountCharactersNotBytes) {
    TeskWorkspace workspace;
    const TeskCode only = code("C");
    workspace.codes.append(only);
    // "ü" and "ß" are two bytes; the flag is two code points and one character.
    const TranscriptSegment text = segment("s", "Süß 🇩🇪 ja");
    const auto bodyWith = [&](std::int64_t start, std::int64_t end) {
        TeskWorkspace coded = workspace;
        coded.applications.append(application(only.id, "s", start, end));
        return bodyOf(text, coded);
    };
    const std::string bubbleC = bubble("#DFF2E9", "#168F55", "C");
    EXPECT_EQ(bodyWith(4, 5), "Süß " + highlight("#DFF2E9", "🇩🇪") + " ja" + bubbleC);
    EXPECT_EQ(bodyWith(6, 8), "Süß 🇩🇪 " + highlight("#DFF2E9", "ja") + bubbleC);
    EXPECT_EQ(bodyWith(1, 9), highlight("#DFF2E9", "Süß 🇩🇪 ja") + bubbleC); // 8 characters, not 15 bytes
}

TEST(TeskWordExporterHtml, CodesTakeColoursByPositionModuloSixAndUnknownCodesTheFirst) {
    TeskWorkspace workspace;
    for (int i = 0; i < 8; ++i) workspace.codes.append(code("Code " + std::to_string(i)));
    const Uuid seventh = workspace.codes[7].id;
    const Uuid fifth = workspace.codes[5].id;
    workspace.applications.append(application(seventh, "a"));
    workspace.applications.append(application(fifth, "b"));
    workspace.applications.append(application(Uuid::random(), "c"));
    const TeskTranscript transcript{{segment("a", "one"), segment("b", "two"), segment("c", "three")}};

    EXPECT_EQ(paragraphBodies(word::html("S", transcript, workspace, kSource)),
              (std::vector<std::string>{
                  highlight("#E4EBFA", "one") + bubble("#E4EBFA", "#2E5FAA", "Code 7"),
                  highlight("#FDE2DE", "two") + bubble("#FDE2DE", "#B03A2E", "Code 5"),
                  highlight("#DFF2E9", "three") + bubble("#DFF2E9", "#168F55", "Code"),
              }));
}

TEST(TeskWordExporterHtml, EscapesAmpersandsAndAngleBracketsOnce) {
    TeskWorkspace workspace;
    const TeskCode odd = code("Q&A <draft>");
    workspace.codes.append(odd);
    // The range counts the raw text, so it covers "<b>" whole.
    workspace.applications.append(application(odd.id, "s", 4, 7));
    const TeskTranscript transcript{{segment("s", "R&D <b> &amp; \"x\"")}};
    const std::string html = word::html("A & B <1>", transcript, workspace, kSource);

    EXPECT_NE(html.find(">A &amp; B &lt;1&gt;</h2>"), std::string::npos);
    EXPECT_EQ(paragraphBodies(html),
              std::vector<std::string>{"R&amp;D " + highlight("#DFF2E9", "&lt;b&gt;") + " &amp;amp; \"x\"" +
                                       bubble("#DFF2E9", "#168F55", "Q&amp;A &lt;draft&gt;")});
}

TEST(TeskWordExporterPlainText, ListsEachSegmentWithItsCodesInBrackets) {
    TeskWorkspace workspace;
    const TeskCode workload = code("Work & load");
    const TeskCode support = code("Support");
    workspace.codes.append(workload);
    workspace.codes.append(support);
    workspace.applications.append(application(support.id, "s1", 0, 2));
    workspace.applications.append(application(workload.id, "s1"));
    workspace.applications.append(application(Uuid::random(), "s3"));
    workspace.applications.append(application(support.id, "s2", std::nullopt, std::nullopt, Uuid::random()));
    const TeskTranscript transcript{
        {segment("s1", "I <never> stop.", 3661), segment("s2", "Plain."), segment("s3", "Odd one.", 12.5)}};

    EXPECT_EQ(word::plainText("Interview <1>", transcript, workspace, kSource),
              "Interview <1>\n\n"
              "61:01: I <never> stop.  [Support, Work & load]\n\n"
              "¶: Plain.\n\n"
              "0:13: Odd one.  [Code]\n\n");
    EXPECT_EQ(word::plainText("Empty", TeskTranscript{}, workspace, kSource), "Empty\n\n");
}
