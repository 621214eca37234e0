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

// Decoding `text` as T must fail with `kind` and a message naming each of `parts`.
template <class T = Record>
void expectFailure(std::string_view text, Kind kind, std::initializer_list<std::string_view> parts = {}) {
    try {
        (void)json::decode<T>(std::string(text));
        ADD_FAILURE() << "decoded without error: " << text;
    } catch (const DecodingError& error) {
        EXPECT_EQ(error.kind(), kind) << error.what();
        for (const auto part : parts) {
            EXPECT_NE(std::string_view(error.what()).find(part), std::string_view::npos) << error.what();
        }
    }
}

Record populatedRecord() {
    return Record{platform::Bytes(std::string("\x00\xFFrich", 6)), *platform::parseISO8601("2026-03-04T05:06:07Z"),
                  platform::Uuid::random(), {Item{"first", 3}, Item{"“second”", -7}}, 0.1, Tone::cool};
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
    EXPECT_EQ(json::decode<Record>(text), record);
}

TEST(JsonCoding, NullMeansAbsentForOptionalAndDefaultedKeysOnly) {
    Record record = populatedRecord();
    record.score.reset();
    EXPECT_EQ(json::encode(record).find("score"), std::string::npos);
    EXPECT_EQ(json::decode<Record>(json::encode(record)), record);

    const auto nulls =
        json::decode<Record>(recordJson(R"([{"name": "a", "weight": null}])", R"(, "score": null, "tone": null)"));
    EXPECT_FALSE(nulls.score);
    EXPECT_EQ(nulls.items.at(0).weight, 1);
    EXPECT_EQ(nulls.tone, Tone::neutral);

    expectFailure(recordJson(R"([{"name": null}])"), Kind::typeMismatch, {"items[0].name"});
}

TEST(JsonCoding, MissingKeysWrongTypesAndUnknownRawValuesNameKeyAndPath) {
    expectFailure(recordJson(R"([{"name": "a"}, {"weight": 2}])"), Kind::missingKey, {"“name”", "items[1]"});
    expectFailure(recordJson("[]", R"(, "score": "high")"), Kind::typeMismatch, {"score"});
    expectFailure(recordJson(R"([{"name": "a", "weight": "2"}])"), Kind::typeMismatch, {"items[0].weight"});
    expectFailure(recordJson("[]", R"(, "attachment": "not base64")"), Kind::invalidValue, {"attachment"});
    // An unknown case is an error, not a reason to fall back to the default.
    expectFailure(recordJson("[]", R"(, "tone": "hot")"), Kind::invalidValue, {"hot", "tone"});
}

TEST(JsonCoding, NumbersMustFitTheirType) {
    EXPECT_EQ(json::decode<std::int64_t>("3.0"), 3);
    expectFailure<std::int64_t>("3.5", Kind::invalidValue);
    expectFailure<std::int64_t>("1e19", Kind::invalidValue);
    Record record = populatedRecord();
    record.score = std::nan("");
    EXPECT_THROW(json::encode(record), json::EncodingError);
}

TEST(JsonCoding, SyntaxErrorsGiveLineAndColumnAndInvalidUtf8IsOne) {
    expectFailure("{\n  \"a\": 1\n  \"b\": 2\n}", Kind::syntax, {"line 3, column 3"});
    expectFailure("{}\n\n x", Kind::syntax, {"line 3, column 2"});
    EXPECT_EQ(json::decode<std::string>("\"caf\xC3\xA9\""), "caf\xC3\xA9");
    // A broken sequence and an encoded surrogate.
    expectFailure<std::string>("\"caf\xC3\x28\"", Kind::syntax);
    expectFailure<std::string>("\"\xED\xA0\x80\"", Kind::syntax);
    // Deep nesting is parsed without recursion, so a hostile file is an error, not a crash.
    expectFailure<std::string>(std::string(1'000'000, '['), Kind::syntax);
}

// Unknown keys, and computed ones read back, are ignored rather than failing the record.
TEST(JsonCoding, FinishDecodingHookRunsAfterUnknownKeysAreSkipped) {
    const auto old =
        json::decode<Record>(recordJson(R"([{"extra": [1, {}], "name": "a"}])", R"(, "itemCount": "x", "warm": true)"));
    EXPECT_EQ(old.tone, Tone::warm);
    EXPECT_EQ(old.items, (std::vector<Item>{Item{"a", 1}}));
    EXPECT_EQ(json::decode<Record>(recordJson("[]", R"(, "tone": "cool", "warm": true)")).tone, Tone::cool);
}
