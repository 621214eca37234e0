#include <gtest/gtest.h>

#include <rapidjson/document.h>

#include <cmath>
#include <cstdlib>
#include <optional>

#include "MerivanteCore/Import/SPSSReader.h"
#include "MerivanteCore/Import/StataReader.h"
#include "Platform/Files/FileSystem.h"
#include "Platform/Text/Text.h"
#include "Platform/Text/TextDecoding.h"

// Files written by R haven and pandas, compared with what the writing script put in them
// (tests/fixtures/datasets/make-stat-fixtures.sh writes both).
namespace {

using merivante::TabularImport;

const std::string kFolder = std::string(MIBREL_DATASET_FIXTURES) + "/stat/";

// How the reader is known to see the writer's text.
enum class TextAs {
    written,
    // No encoding record: the file's UTF-8 is read as windows-1252 where that decodes.
    windows1252First,
    // Release 117 text in Latin 1, read as UTF-8 with repair.
    latin1AsUTF8,
};

struct Fixture {
    std::string file;
    TextAs text = TextAs::written;
    bool plainSav = false;
    // A strL the reader cannot follow: 117 keys are read as 2 + 6 bytes and never match
    // (the cell is empty); 118 and 119 keys as 12 bytes, which shifts the rest of the data,
    // so only the first row up to that column is compared.
    std::optional<std::string> unreadableStrL;
    bool shiftsAfterStrL = false;
};

// The Latin 1 bytes of text written in UTF-8 (characters up to U+00FF only).
std::string latin1Bytes(const std::string& utf8) {
    std::string bytes;
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const auto lead = static_cast<unsigned char>(utf8[i]);
        if ((lead == 0xC2 || lead == 0xC3) && i + 1 < utf8.size()) {
            bytes += static_cast<char>(((lead & 0x03) << 6) | (static_cast<unsigned char>(utf8[++i]) & 0x3F));
        } else {
            bytes += utf8[i];
        }
    }
    return bytes;
}

std::string transformed(const std::string& text, TextAs as) {
    switch (as) {
    case TextAs::written: return text;
    case TextAs::windows1252First:
        if (auto decoded = platform::text::decodeStrict(text, "windows-1252")) return *decoded;
        return text;
    case TextAs::latin1AsUTF8: return platform::text::repairedUTF8(latin1Bytes(text));
    }
    return text;
}

rapidjson::Document expectedOf(const std::string& file) {
    rapidjson::Document document;
    document.Parse(platform::files::readFile(kFolder + file + ".expected.json").c_str());
    EXPECT_FALSE(document.HasParseError()) << file;
    return document;
}

// The reader's columns for each written variable: a long SPSS string comes in pieces.
std::vector<std::vector<std::size_t>> columnsByVariable(const rapidjson::Value& variables,
                                                        const std::vector<std::string>& names) {
    std::vector<std::vector<std::size_t>> columns;
    std::size_t at = 0;
    for (rapidjson::SizeType v = 0; v < variables.Size(); ++v) {
        const std::string name = variables[v]["name"].GetString();
        const std::string next = v + 1 < variables.Size() ? variables[v + 1]["name"].GetString() : "";
        EXPECT_LT(at, names.size());
        if (at >= names.size()) break;
        EXPECT_EQ(names[at], name);
        auto& pieces = columns.emplace_back(std::vector<std::size_t>{at++});
        while (at < names.size() && names[at] != next) pieces.push_back(at++);
    }
    return columns;
}

void expectCell(const rapidjson::Value& expected, const std::string& actual, const Fixture& fixture,
                bool isStata, const std::string& where) {
    if (expected.IsNull()) {
        // A plain system file keeps system-missing as the lowest double; that is not compared.
        if (!fixture.plainSav) {
            EXPECT_EQ(actual, "") << where;
        }
    } else if (expected.IsNumber()) {
        char* end = nullptr;
        const double value = std::strtod(actual.c_str(), &end);
        EXPECT_TRUE(!actual.empty() && *end == '\0') << where << ": " << actual;
        EXPECT_NEAR(value, expected.GetDouble(), std::fabs(expected.GetDouble()) * 1e-7) << where;
    } else if (expected.IsString()) {
        // Stata text is trimmed at both ends, SPSS text loses its padding at the end.
        std::string text = transformed(expected.GetString(), fixture.text);
        if (isStata) text = platform::text::trimmedOfBlanks(text);
        else text.erase(text.find_last_not_of(' ') + 1);
        EXPECT_EQ(actual, text) << where;
    } else if (isStata) {
        // Stata keeps dates as their stored number.
        EXPECT_EQ(std::strtod(actual.c_str(), nullptr), expected["stored"].GetDouble()) << where;
    } else {
        EXPECT_EQ(actual, expected["date"].GetString()) << where;
    }
}

void expectLabels(const rapidjson::Value& variable, const TabularImport& result, const std::string& name,
                  TextAs as) {
    const auto label = result.variableLabels.find(name);
    if (variable["label"].IsString() && variable["label"].GetStringLength() > 0) {
        ASSERT_NE(label, result.variableLabels.end()) << name;
        EXPECT_EQ(label->second, transformed(variable["label"].GetString(), as));
    } else {
        EXPECT_EQ(label, result.variableLabels.end()) << name;
    }
    std::map<std::string, std::string> expected;
    for (const auto& pair : variable["valueLabels"].GetObject()) {
        expected[pair.name.GetString()] = transformed(pair.value.GetString(), as);
    }
    const auto found = result.valueLabels.find(name);
    const auto actual = found == result.valueLabels.end() ? std::map<std::string, std::string>() : found->second;
    EXPECT_EQ(actual, expected) << name;
}

void expectMatches(const Fixture& fixture, const TabularImport& result, bool isStata) {
    const rapidjson::Document expected = expectedOf(fixture.file);
    const auto& variables = expected["variables"];
    const auto columns = columnsByVariable(variables, result.variableNames);
    const auto& rows = expected["rows"];
    ASSERT_EQ(result.rows.size(), rows.Size());
    for (rapidjson::SizeType v = 0; v < columns.size(); ++v) {
        const std::string name = variables[v]["name"].GetString();
        expectLabels(variables[v], result, name, fixture.text);
        if (fixture.unreadableStrL == name && fixture.shiftsAfterStrL) break;
        for (rapidjson::SizeType r = 0; r < rows.Size(); ++r) {
            std::string cell;
            for (const std::size_t column : columns[v]) cell += result.rows[r][column];
            const std::string where = fixture.file + " row " + std::to_string(r + 1) + " " + name;
            if (fixture.unreadableStrL == name) {
                EXPECT_EQ(cell, "") << where;
            } else {
                expectCell(rows[r][v], cell, fixture, isStata, where);
            }
            if (fixture.shiftsAfterStrL && r == 0) break;
        }
    }
}

} // namespace

TEST(StatFixtureTests, SystemFilesFromHavenReadAsWritten) {
    const std::vector<Fixture> fixtures{
        {"haven-bytecode.sav", TextAs::windows1252First},
        {"haven-uncompressed.sav", TextAs::windows1252First, true},
        {"haven-bytecode-big-endian.sav", TextAs::windows1252First},
        {"haven-uncompressed-big-endian.sav", TextAs::windows1252First, true},
    };
    for (const Fixture& fixture : fixtures) {
        SCOPED_TRACE(fixture.file);
        const auto result = merivante::SPSSReader::read(platform::files::readFile(kFolder + fixture.file));
        ASSERT_TRUE(result);
        expectMatches(fixture, *result, false);
    }
    EXPECT_FALSE(merivante::SPSSReader::read(platform::files::readFile(kFolder + "haven-zlib.zsav")))
        << "zlib-compressed files are another format";
}

TEST(StatFixtureTests, StataFilesFromHavenAndPandasReadAsWritten) {
    const std::vector<Fixture> fixtures{
        {"haven-stata13-117.dta", TextAs::written, false, "essay"},
        {"haven-stata14-118.dta", TextAs::written, false, "essay", true},
        {"haven-stata15-119.dta"},
        {"pandas-117-lsf.dta", TextAs::latin1AsUTF8, false, "notes"},
        {"pandas-117-msf.dta", TextAs::latin1AsUTF8},
        {"pandas-118-lsf.dta", TextAs::written, false, "notes", true},
        {"pandas-118-msf.dta"},
        {"pandas-119-lsf.dta", TextAs::written, false, "notes", true},
        {"pandas-119-msf.dta"},
    };
    for (const Fixture& fixture : fixtures) {
        SCOPED_TRACE(fixture.file);
        const auto result = merivante::StataReader::read(platform::files::readFile(kFolder + fixture.file));
        ASSERT_TRUE(result);
        expectMatches(fixture, *result, true);
    }
}
