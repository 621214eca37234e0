#include "MibrelCore/Model/TeskWorkspace.h"

#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "tests/support/TestSupport.h"

using namespace mibrel;
namespace json = platform::json;

namespace {

Date at(std::string_view iso) { return *platform::parseISO8601(iso); }

// The message of the DecodingError that decoding `text` as T throws; empty when it decodes.
template <class T = TeskWorkspace>
std::string decodingFailure(std::string_view text) {
    try {
        (void)json::decode<T>(std::string(text));
    } catch (const json::DecodingError& error) {
        return error.what();
    }
    return {};
}

bool contains(std::string_view text, std::string_view part) { return text.find(part) != std::string_view::npos; }

std::vector<std::string> topLevelKeys(const std::string& text) {
    rapidjson::Document document;
    document.Parse(text.c_str());
    std::vector<std::string> keys;
    for (const auto& member : document.GetObject()) keys.emplace_back(member.name.GetString());
    return keys;
}

// The sample's keys that may be left out and still decode.
template <class T>
std::vector<std::string> optionalKeys(const T& sample) {
    const std::string text = json::encode(sample);
    std::vector<std::string> optional;
    for (const std::string& key : topLevelKeys(text)) {
        rapidjson::Document document;
        document.Parse(text.c_str());
        document.RemoveMember(key.c_str());
        rapidjson::StringBuffer buffer;
        rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
        document.Accept(writer);
        if (decodingFailure<T>(buffer.GetString()).empty()) optional.push_back(key);
    }
    return optional;
}

// Every record and every optional value present, with whole-second dates so the
// text form loses nothing.
TeskWorkspace populatedWorkspace() {
    const platform::ScopedClockOverride clock([] { return at("2024-03-05T09:30:00Z"); });
    const Uuid source = Uuid::random();
    const TeskCode code{.name = "Belonging", .definition = "d", .fullDescription = "f", .includeWhen = "i",
                        .excludeWhen = "e", .borderlineCases = "b", .exampleQuote = "q", .contextNotes = "n",
                        .status = TeskCodeStatus::accepted, .includeInContextualLens = true};
    const TeskCategory category{.name = "Place", .memo = "why", .codeIDs = {code.id}};
    const TeskTheme theme{.name = "Home", .memo = "m", .interpretiveClaim = "claim", .codeIDs = {code.id},
                          .categoryIDs = {category.id}, .contextLens = "lens", .counterEvidence = "counter"};
    return TeskWorkspace{
        .studyFrame = {"question", "purpose", "methodology", "stance", "first read"},
        .contextLens = {"setting", "population", "culture", "institution", "positionality", "consequences"},
        .contextualLensReviews = {TeskContextualLensReview{
            .codeID = code.id, .themeID = theme.id, .context = "c", .voice = "v", .powerPosition = "p",
            .representation = "r", .counterPatterns = "cp", .consequences = "cs", .analyticAction = "a",
            .updatedAt = at("2024-03-06T10:00:00Z")}},
        .codes = {code}, .categories = {category}, .themes = {theme},
        .applications = {TeskCodeApplication{
            .response = {source, "seg-2", 4, 19}, .codeID = code.id, .excerpt = "passage", .memo = "m"}},
        .quotes = {TeskQuote{.response = {source, "seg-1", std::nullopt, std::nullopt}, .text = "t",
                             .codeIDs = {code.id}, .themeIDs = {theme.id}, .memo = "m", .rationale = "r",
                             .role = TeskQuoteRole::counterExample}},
        .reportFindings = {TeskReportFinding{.themeID = theme.id, .titleOverride = "T", .claimOverride = "C",
                                             .writerNote = "N", .includeExemplarQuotes = false,
                                             .includeCounterExamples = false}},
        .reportSections = {TeskReportSection::make(TeskReportSectionKind::findings, "", "body", "sig", false)},
        .trustworthiness = {"reflexivity", "limitations", "negative", "audit",
                            {TeskMemberCheck{.date = "May 2024", .finding = "f", .outcome = "o", .feedback = "fb"}}},
        .reportMemo = "report memo",
        .reportDraftRTFData = Bytes(std::string("{\\rtf1 caf\xC3\xA9}") + '\0' + '\xFF'),
        .updatedAt = at("2024-03-07T11:00:00Z")};
}

} // namespace

TEST(TeskWorkspaceCoding, EmptyObjectIsAFreshWorkspace) {
    const Date moment = at("2024-01-02T03:04:05Z");
    const platform::ScopedClockOverride clock([&] { return moment; });
    const auto workspace = json::decode<TeskWorkspace>("{}");
    TeskWorkspace expected;
    expected.updatedAt = moment;
    EXPECT_TRUE(workspace == expected);
    EXPECT_EQ(workspace.formatVersion, 1);

    // Null counts as missing for every defaulted key.
    EXPECT_EQ(json::decode<TeskWorkspace>(R"({"codes":null,"formatVersion":null,"reportDraftRTFData":null,)"
                                          R"("studyFrame":null,"updatedAt":null})"),
              workspace);

    // Every non-optional key is written; an absent draft is left out, never null.
    const std::string text = json::encode(workspace);
    EXPECT_EQ(topLevelKeys(text),
              (std::vector<std::string>{"applications", "categories", "codes", "contextLens", "contextualLensReviews",
                                        "formatVersion", "quotes", "reportFindings", "reportMemo", "reportSections",
                                        "studyFrame", "themes", "trustworthiness", "updatedAt"}));
    EXPECT_FALSE(contains(text, "null"));
}

TEST(TeskWorkspaceCoding, PopulatedWorkspaceRoundTripsWithSortedKeys) {
    const TeskWorkspace original = populatedWorkspace();
    const std::string text = json::encode(original);
    const auto decoded = json::decode<TeskWorkspace>(text);
    EXPECT_TRUE(decoded == original);
    EXPECT_EQ(mibrel::testing::unsortedKeysIn(text), "");
}

TEST(TeskWorkspaceCoding, WrongTypesAndUnknownStatusesFailTheDocument) {
    EXPECT_TRUE(contains(decodingFailure(R"({"codes":[{"name":"a"},{"name":5}]})"), "codes[1].name"));
    // A status is matched by its raw value only; the label is not one.
    EXPECT_FALSE(decodingFailure(R"({"codes":[{"status":"Accepted"}]})").empty());
}

TEST(TeskCodeCoding, EmptyCodeIsAFreshDraft) {
    const TeskCode code = json::decode<TeskWorkspace>(R"({"codes":[{}]})").codes[0];
    EXPECT_NE(code.id, Uuid());
    EXPECT_EQ(code.status, TeskCodeStatus::draft);
    EXPECT_EQ(code.name + code.definition + code.includeWhen + code.exampleQuote, "");
    EXPECT_NE(json::decode<TeskWorkspace>(R"({"codes":[{}]})").codes[0].id, code.id);
}

TEST(TeskRecordCoding, StrictRecordsRequireEveryKey) {
    EXPECT_EQ(optionalKeys(TeskCategory{.name = "n", .memo = "m", .codeIDs = {Uuid::random()}}),
              std::vector<std::string>{});
    const TeskCodeApplication application{.response = {Uuid::random(), "s", 1, 2}, .excerpt = "e"};
    EXPECT_EQ(optionalKeys(application), std::vector<std::string>{"excerpt"});
    EXPECT_EQ(optionalKeys(TeskReportSection::make(TeskReportSectionKind::corpus, "t", "b", "s")),
              std::vector<std::string>{});
    EXPECT_EQ(optionalKeys(TeskReportFinding{.themeID = Uuid::random()}), std::vector<std::string>{});
    EXPECT_EQ(optionalKeys(TeskMemberCheck{}), std::vector<std::string>{});

    const std::string failure = decodingFailure(R"({"categories":[{"codeIDs":[],"createdAt":"2024-01-01T00:00:00Z",)"
                                                R"("id":"6F9619FF-8B86-D011-B42D-00CF4FC964FF","name":"Place"}]})");
    EXPECT_TRUE(contains(failure, "“memo”")) << failure;
}

TEST(TeskQuoteCoding, RoleAndExemplarFlagAgree) {
    const std::string response = R"({"response":{"segmentID":"s","sourceID":"6F9619FF-8B86-D011-B42D-00CF4FC964FF"})";
    EXPECT_EQ(json::decode<TeskQuote>(response + R"(,"isExemplar":false})").role, TeskQuoteRole::supporting);

    const std::string both = json::encode(json::decode<TeskQuote>(response + R"(,"isExemplar":true,"role":"supporting"})"));
    EXPECT_TRUE(contains(both, R"("isExemplar": false)")) << both;
    EXPECT_TRUE(contains(both, R"("role": "supporting")")) << both;

    const auto neither = json::decode<TeskQuote>(response + "}");
    EXPECT_EQ(neither.role, TeskQuoteRole::exemplar);
    EXPECT_TRUE(contains(json::encode(neither), R"("isExemplar": true)"));
}

TEST(TeskContextualLensReviewCoding, OldAssumptionsKeyMigratesToCounterPatterns) {
    EXPECT_EQ(json::decode<TeskContextualLensReview>(R"({"assumptions":"old","counterPatterns":"new"})").counterPatterns,
              "new");
    const std::string text = json::encode(json::decode<TeskContextualLensReview>(R"({"assumptions":"x"})"));
    EXPECT_FALSE(contains(text, "assumptions"));
    EXPECT_TRUE(contains(text, R"("counterPatterns": "x")"));
}
