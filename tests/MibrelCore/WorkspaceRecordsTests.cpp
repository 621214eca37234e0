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
template <class T>
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

// The sample's keys that may be left out (or set to null) and still decode; "key=null"
// marks a null that is accepted.
template <class T>
std::vector<std::string> lenientKeys(const T& sample) {
    const std::string text = json::encode(sample);
    std::vector<std::string> lenient;
    for (const std::string& key : topLevelKeys(text)) {
        for (const bool asNull : {false, true}) {
            rapidjson::Document document;
            document.Parse(text.c_str());
            if (asNull) {
                document[key.c_str()].SetNull();
            } else {
                document.RemoveMember(key.c_str());
            }
            rapidjson::StringBuffer buffer;
            rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
            document.Accept(writer);
            if (decodingFailure<T>(buffer.GetString()).empty()) lenient.push_back(key + (asNull ? "=null" : ""));
        }
    }
    return lenient;
}

// Every record and every optional value present, with whole-second dates so the
// text form loses nothing.
TeskWorkspace populatedWorkspace() {
    const platform::ScopedClockOverride clock([] { return at("2024-03-05T09:30:00Z"); });
    const Uuid source = Uuid::random();
    const TeskResponseRef whole{source, "seg-1", std::nullopt, std::nullopt};
    const TeskResponseRef part{source, "seg-2", 4, 19};

    TeskWorkspace workspace;
    workspace.studyFrame = {"question", "purpose", "methodology", "stance", "first read"};
    workspace.contextLens = {"setting", "population", "culture", "institution", "positionality", "consequences"};
    const TeskCode code{.name = "Belonging", .definition = "d", .fullDescription = "f", .includeWhen = "i",
                        .excludeWhen = "e", .borderlineCases = "b", .exampleQuote = "q", .contextNotes = "n",
                        .status = TeskCodeStatus::accepted, .includeInContextualLens = true};
    const TeskCategory category{.name = "Place", .memo = "why", .codeIDs = {code.id}};
    const TeskTheme theme{.name = "Home", .memo = "m", .interpretiveClaim = "claim", .codeIDs = {code.id},
                          .categoryIDs = {category.id}, .contextLens = "lens", .counterEvidence = "counter"};
    workspace.codes = {code};
    workspace.categories = {category};
    workspace.themes = {theme};
    workspace.contextualLensReviews = {
        TeskContextualLensReview{.themeID = theme.id, .context = "c2", .updatedAt = at("2024-03-06T10:00:00Z")},
        TeskContextualLensReview{.codeID = code.id, .context = "c", .voice = "v", .powerPosition = "p",
                                 .representation = "r", .counterPatterns = "cp", .consequences = "cs",
                                 .analyticAction = "a"}};
    workspace.applications = {TeskCodeApplication{.response = part, .codeID = code.id, .excerpt = "passage", .memo = "m"},
                              TeskCodeApplication{.response = whole, .codeID = code.id}};
    workspace.quotes = {TeskQuote{.response = part, .text = "t", .codeIDs = {code.id}, .themeIDs = {theme.id},
                                  .memo = "m", .rationale = "r", .role = TeskQuoteRole::counterExample},
                        TeskQuote{.response = whole, .text = "u"}};
    workspace.reportFindings = {TeskReportFinding{.themeID = theme.id, .titleOverride = "T", .claimOverride = "C",
                                                  .writerNote = "N", .includeExemplarQuotes = false,
                                                  .includeCounterExamples = false}};
    workspace.reportSections = {TeskReportSection::make(TeskReportSectionKind::findings, "", "body", "sig", false)};
    workspace.trustworthiness = {"reflexivity", "limitations", "negative", "audit",
                                 {TeskMemberCheck{.date = "May 2024", .finding = "f", .outcome = "o", .feedback = "fb"}}};
    workspace.reportMemo = "report memo";
    workspace.reportDraftRTFData = Bytes(std::string("{\\rtf1 caf\xC3\xA9}") + '\0' + '\xFF');
    workspace.updatedAt = at("2024-03-07T11:00:00Z");
    return workspace;
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
    const auto nulls = json::decode<TeskWorkspace>(
        R"({"codes":null,"formatVersion":null,"reportDraftRTFData":null,"reportMemo":null,"studyFrame":null,)"
        R"("trustworthiness":null,"updatedAt":null})");
    EXPECT_EQ(nulls, workspace);

    // Every non-optional key is written; an absent draft is left out, never null.
    const std::string text = json::encode(workspace);
    EXPECT_EQ(topLevelKeys(text),
              (std::vector<std::string>{"applications", "categories", "codes", "contextLens", "contextualLensReviews",
                                        "formatVersion", "quotes", "reportFindings", "reportMemo", "reportSections",
                                        "studyFrame", "themes", "trustworthiness", "updatedAt"}));
    EXPECT_FALSE(contains(text, "null"));
    EXPECT_TRUE(json::decode<TeskWorkspace>(text) == workspace);
}

TEST(TeskWorkspaceCoding, PopulatedWorkspaceRoundTripsWithSortedKeys) {
    const TeskWorkspace original = populatedWorkspace();
    const std::string text = json::encode(original);
    const auto decoded = json::decode<TeskWorkspace>(text);
    EXPECT_TRUE(decoded == original);
    EXPECT_EQ(json::encode(decoded), text);
    EXPECT_EQ(mibrel::testing::unsortedKeysIn(text), "");
    EXPECT_FALSE(contains(text, "null"));
}

TEST(TeskWorkspaceCoding, UnknownKeysAreIgnoredButWrongTypesAndValuesFail) {
    EXPECT_NO_THROW(json::decode<TeskWorkspace>(R"({"future":{"x":1},"codes":[{"name":"a","extra":[]}]})"));
    EXPECT_TRUE(contains(decodingFailure<TeskWorkspace>(R"({"codes":[{"name":"a"},{"name":5}]})"), "codes[1].name"));
    EXPECT_FALSE(decodingFailure<TeskWorkspace>(R"({"reportMemo":false})").empty());
    // A status is matched by its raw value only; the label is not one.
    EXPECT_FALSE(decodingFailure<TeskWorkspace>(R"({"codes":[{"status":"Accepted"}]})").empty());
    EXPECT_FALSE(decodingFailure<TeskWorkspace>(R"({"reportDraftRTFData":"not base64!"})").empty());
}

TEST(TeskCodeCoding, EmptyCodeIsAFreshDraft) {
    const auto workspace = json::decode<TeskWorkspace>(R"({"codes":[{}]})");
    ASSERT_EQ(workspace.codes.size(), 1u);
    const TeskCode& code = workspace.codes[0];
    EXPECT_NE(code.id, Uuid());
    EXPECT_EQ(code.status, TeskCodeStatus::draft);
    EXPECT_EQ(code.name + code.definition + code.includeWhen + code.exampleQuote, "");
    EXPECT_NE(json::decode<TeskWorkspace>(R"({"codes":[{}]})").codes[0].id, code.id);
}

TEST(TeskRecordCoding, StrictRecordsRequireEveryKey) {
    const Uuid theme = Uuid::random();
    EXPECT_EQ(lenientKeys(TeskCategory{.name = "n", .memo = "m", .codeIDs = {Uuid::random()}}),
              std::vector<std::string>{});
    const TeskCodeApplication application{.response = {Uuid::random(), "s", 1, 2}, .excerpt = "e"};
    EXPECT_EQ(lenientKeys(application), (std::vector<std::string>{"excerpt", "excerpt=null"}));
    EXPECT_EQ(lenientKeys(TeskReportSection::make(TeskReportSectionKind::corpus, "t", "b", "s")),
              std::vector<std::string>{});
    EXPECT_EQ(lenientKeys(TeskReportFinding{.themeID = theme}), std::vector<std::string>{});
    EXPECT_EQ(lenientKeys(TeskMemberCheck{}), std::vector<std::string>{});

    const std::string failure = decodingFailure<TeskWorkspace>(
        R"({"categories":[{"codeIDs":[],"createdAt":"2024-01-01T00:00:00Z",)"
        R"("id":"6F9619FF-8B86-D011-B42D-00CF4FC964FF","name":"Place"}]})");
    EXPECT_TRUE(contains(failure, "“memo”")) << failure;
}

TEST(TeskQuoteCoding, RoleAndExemplarFlagAgree) {
    const std::string response = R"("response":{"segmentID":"s","sourceID":"6F9619FF-8B86-D011-B42D-00CF4FC964FF"})";
    EXPECT_EQ(json::decode<TeskQuote>("{" + response + R"(,"isExemplar":false})").role, TeskQuoteRole::supporting);

    const auto both = json::decode<TeskQuote>("{" + response + R"(,"isExemplar":true,"role":"supporting"})");
    EXPECT_EQ(both.role, TeskQuoteRole::supporting);
    const std::string reencoded = json::encode(both);
    EXPECT_TRUE(contains(reencoded, R"("isExemplar": false)")) << reencoded;
    EXPECT_TRUE(contains(reencoded, R"("role": "supporting")")) << reencoded;

    const auto neither = json::decode<TeskQuote>("{" + response + "}");
    EXPECT_EQ(neither.role, TeskQuoteRole::exemplar);
    EXPECT_TRUE(contains(json::encode(neither), R"("isExemplar": true)"));
    EXPECT_EQ(json::decode<TeskQuote>("{" + response + R"(,"isExemplar":null})").role, TeskQuoteRole::exemplar);

    EXPECT_FALSE(decodingFailure<TeskQuote>("{" + response + R"(,"role":"hero"})").empty());
    EXPECT_FALSE(decodingFailure<TeskQuote>(R"({"text":"no response"})").empty());
}

TEST(TeskContextualLensReviewCoding, OldAssumptionsKeyMigratesToCounterPatterns) {
    EXPECT_EQ(json::decode<TeskContextualLensReview>(R"({"assumptions":"x"})").counterPatterns, "x");
    const auto both = json::decode<TeskContextualLensReview>(R"({"assumptions":"old","counterPatterns":"new"})");
    EXPECT_EQ(both.counterPatterns, "new");
    const std::string text = json::encode(json::decode<TeskContextualLensReview>(R"({"assumptions":"x"})"));
    EXPECT_FALSE(contains(text, "assumptions"));
    EXPECT_TRUE(contains(text, R"("counterPatterns": "x")"));
}

TEST(TeskResponseRef, KeyIgnoresOffsetsButEqualityDoesNot) {
    const Uuid source = *Uuid::parse("6f9619ff-8b86-d011-b42d-00cf4fc964ff");
    const TeskResponseRef whole{source, "seg-3", std::nullopt, std::nullopt};
    const TeskResponseRef part{source, "seg-3", 2, std::nullopt};
    EXPECT_EQ(whole.key(), "6F9619FF-8B86-D011-B42D-00CF4FC964FF|seg-3");
    EXPECT_EQ(part.key(), whole.key());
    EXPECT_NE(part, whole);
    EXPECT_NE(part, (TeskResponseRef{source, "seg-3", 3, std::nullopt}));
}

TEST(TeskEnumerations, LabelsOrderAndDefaultTitles) {
    std::vector<std::string_view> labels;
    for (const auto status : platform::allCases<TeskCodeStatus>()) labels.push_back(label(status));
    EXPECT_EQ(labels, (std::vector<std::string_view>{"Draft", "Review", "Accepted"}));

    std::vector<std::string_view> titles;
    for (const auto kind : platform::allCases<TeskReportSectionKind>()) titles.push_back(defaultTitle(kind));
    EXPECT_EQ(titles, (std::vector<std::string_view>{"Study Frame", "Contextual Lens", "Corpus", "Codebook Appendix",
                                                     "Findings", "Trustworthiness"}));

    EXPECT_EQ(TeskReportSection::make(TeskReportSectionKind::codebook, "", "b", "s").title, "Codebook Appendix");
    EXPECT_EQ(TeskReportSection::make(TeskReportSectionKind::codebook, "Mine", "b", "s").title, "Mine");
}
