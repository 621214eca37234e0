#include "Platform/Json/JsonFields.h"

#include <array>
#include <cmath>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/TestSupport.h"

namespace json = platform::json;
using json::DecodingError;
using Kind = json::DecodingError::Kind;

namespace fixtures {

enum class Tone { warm, cool, neutral };

constexpr std::array<std::pair<Tone, std::string_view>, 3> rawValueTable(std::type_identity<Tone>) {
    return {{{Tone::warm, "warm"}, {Tone::cool, "cool"}, {Tone::neutral, "neutral"}}};
}

struct Item {
    std::string name;
    std::int64_t weight = 1;

    static constexpr auto jsonFields() {
        return std::tuple{json::required("name", &Item::name), json::defaulted("weight", &Item::weight)};
    }
    bool operator==(const Item&) const = default;
};

struct Record {
    platform::Bytes attachment;
    platform::Date created;
    platform::Uuid id;
    std::vector<Item> items;
    std::optional<double> score;
    Tone tone = Tone::neutral;

    static std::int64_t itemCount(const Record& record) { return static_cast<std::int64_t>(record.items.size()); }
    static constexpr auto jsonFields() {
        return std::tuple{json::defaulted("attachment", &Record::attachment), json::required("created", &Record::created),
                          json::required("id", &Record::id), json::computed("itemCount", &itemCount),
                          json::required("items", &Record::items), json::optional("score", &Record::score),
                          json::defaulted("tone", &Record::tone)};
    }
    // Older files marked the tone with a flag; the hook carries it over.
    static void finishDecoding(Record& record, const json::JsonObjectReader& reader) {
        if (!reader.find("tone") && reader.value<bool>("warm", false)) record.tone = Tone::warm;
    }
    bool operator==(const Record&) const = default;
};

} // namespace fixtures

using fixtures::Item;
using fixtures::Record;
using fixtures::Tone;

namespace {

std::string recordJson(std::string_view items = R"([{"name": "a"}])", std::string_view extra = "") {
    return R"({"created": "2026-03-04T05:06:07Z", "id": "6F9619FF-8B86-D011-B42D-00CF4FC964FF", "items": )" +
           std::string(items) + std::string(extra) + "}";
}

template <class T>
DecodingError failureOf(std::string_view text) {
    try {
        (void)json::decode<T>(std::string(text));
    } catch (const DecodingError& error) {
        return error;
    }
    ADD_FAILURE() << "decoded without error: " << text;
    return DecodingError::syntax("no error");
}

void expectMentions(const DecodingError& error, std::string_view needle) {
    EXPECT_NE(std::string_view(error.what()).find(needle), std::string_view::npos) << error.what();
}

Record populatedRecord() {
    Record record;
    record.attachment = platform::Bytes(std::string("\x00\xFFrich", 6));
    record.created = *platform::parseISO8601("2026-03-04T05:06:07Z");
    record.id = platform::Uuid::random();
    record.items = {Item{"first", 3}, Item{"“second”", -7}};
    record.score = 0.1;
    record.tone = Tone::cool;
    return record;
}

} // namespace

TEST(JsonCoding, RoundTripsAsSortedPrettyText) {
    const Record record = populatedRecord();
    const std::string text = json::encode(record);
    EXPECT_EQ(mibrel::testing::unsortedKeysIn(text), "");
    EXPECT_EQ(text.rfind("{\n  \"attachment\": \"AP9yaWNo\",\n  \"created\": \"2026-03-04T05:06:07Z\",\n", 0), 0u)
        << text;
    EXPECT_NE(text.find("\n  \"itemCount\": 2,\n  \"items\": [\n    {\n      \"name\": \"first\",\n"), std::string::npos)
        << text;
    EXPECT_NE(text.find("\"" + record.id.uuidString() + "\""), std::string::npos);
    EXPECT_EQ(json::decode<Record>(text), record);
}

TEST(JsonCoding, AbsentOptionalIsLeftOutAndNullMeansAbsent) {
    Record record = populatedRecord();
    record.score.reset();
    EXPECT_EQ(json::encode(record).find("score"), std::string::npos);
    EXPECT_EQ(json::decode<Record>(json::encode(record)), record);
    EXPECT_FALSE(json::decode<Record>(recordJson()).score);
    EXPECT_FALSE(json::decode<Record>(recordJson("[]", R"(, "score": null)")).score);
}

TEST(JsonCoding, NullKeepsDefaultsButFailsRequiredKeys) {
    const auto record = json::decode<Record>(recordJson(R"([{"name": "a", "weight": null}])", R"(, "tone": null)"));
    EXPECT_EQ(record.items.at(0).weight, 1);
    EXPECT_EQ(record.tone, Tone::neutral);

    const auto error = failureOf<Record>(recordJson(R"([{"name": null}])"));
    EXPECT_EQ(error.kind(), Kind::typeMismatch);
    expectMentions(error, "items[0].name");
    EXPECT_EQ(failureOf<Record>(recordJson("null")).kind(), Kind::typeMismatch);
}

TEST(JsonCoding, MissingRequiredKeyNamesKeyAndPath) {
    const auto nested = failureOf<Record>(recordJson(R"([{"name": "a"}, {"weight": 2}])"));
    EXPECT_EQ(nested.kind(), Kind::missingKey);
    expectMentions(nested, "“name”");
    expectMentions(nested, "items[1]");

    const auto top = failureOf<Record>(R"({"created": "2026-03-04T05:06:07Z", "items": []})");
    EXPECT_EQ(top.kind(), Kind::missingKey);
    expectMentions(top, "“id”");
}

TEST(JsonCoding, WrongTypesAndUnknownRawValuesFail) {
    EXPECT_EQ(failureOf<Record>(recordJson("[]", R"(, "score": "high")")).kind(), Kind::typeMismatch);
    EXPECT_EQ(failureOf<Record>(recordJson("[]", R"(, "tone": 1)")).kind(), Kind::typeMismatch);
    expectMentions(failureOf<Record>(recordJson(R"([{"name": "a", "weight": "2"}])")), "items[0].weight");
    expectMentions(failureOf<Record>(recordJson("[]", R"(, "attachment": "not base64")")), "attachment");
    expectMentions(failureOf<Record>(R"({"created": "2026-03-04", "id": "x", "items": []})"), "created");

    // An unknown case is an error, not a reason to fall back to the default.
    const auto tone = failureOf<Record>(recordJson("[]", R"(, "tone": "hot")"));
    EXPECT_EQ(tone.kind(), Kind::invalidValue);
    expectMentions(tone, "hot");
    expectMentions(tone, "tone");
}

TEST(JsonCoding, UnknownKeysAndComputedValuesAreIgnored) {
    const auto record = json::decode<Record>(recordJson(R"([{"extra": [1, {}], "name": "a"}])", R"(, "itemCount": "x")"));
    EXPECT_EQ(record.items, (std::vector<Item>{Item{"a", 1}}));
}

TEST(JsonCoding, IntegersAcceptOnlyWholeNumbers) {
    EXPECT_EQ(json::decode<std::int64_t>("3.0"), 3);
    EXPECT_EQ(failureOf<std::int64_t>("3.5").kind(), Kind::invalidValue);
    EXPECT_EQ(failureOf<std::int64_t>("1e19").kind(), Kind::invalidValue);
    EXPECT_EQ(failureOf<std::int64_t>("\"3\"").kind(), Kind::typeMismatch);
}

TEST(JsonCoding, NonFiniteNumbersCannotBeEncoded) {
    Record record = populatedRecord();
    record.score = std::nan("");
    EXPECT_THROW(json::encode(record), json::EncodingError);
}

TEST(JsonCoding, SyntaxErrorsGiveLineAndColumn) {
    const auto missingComma = failureOf<Record>("{\n  \"a\": 1\n  \"b\": 2\n}");
    EXPECT_EQ(missingComma.kind(), Kind::syntax);
    expectMentions(missingComma, "line 3, column 3");
    expectMentions(failureOf<Record>("{\n  \"a\": [1,\n\n    @]}"), "line 4, column 5");
    expectMentions(failureOf<Record>("{}\n\n x"), "line 3, column 2");
}

TEST(JsonCoding, InvalidUtf8IsRejected) {
    EXPECT_EQ(json::decode<std::string>("\"caf\xC3\xA9\""), "caf\xC3\xA9");
    // A broken sequence, a byte that never occurs, and an encoded surrogate.
    for (const char* text : {"\"caf\xC3\x28\"", "\"\xFF\"", "\"\xED\xA0\x80\""}) {
        EXPECT_EQ(failureOf<std::string>(text).kind(), Kind::syntax);
    }
}

TEST(JsonCoding, FinishDecodingHookRuns) {
    EXPECT_EQ(json::decode<Record>(recordJson("[]", R"(, "warm": true)")).tone, Tone::warm);
    EXPECT_EQ(json::decode<Record>(recordJson("[]", R"(, "tone": "cool", "warm": true)")).tone, Tone::cool);
}
