#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Compression/RawInflate.h"
#include "Platform/Compression/ZipCentralDirectory.h"
#include "Platform/Compression/ZipLocalEntries.h"
#include "tests/support/ZipBuilder.h"

namespace platform::compression {
namespace {

using mibrel::testing::rawDeflate;
using mibrel::testing::rawDeflateRepeated;
using mibrel::testing::zipArchive;
using mibrel::testing::ZipBuilderEntry;
using mibrel::testing::ZipLayout;
using Status = Unpacked::Status;

constexpr std::size_t kMebibyte = std::size_t{1} << 20;

std::string interviewText(std::size_t paragraphs) {
    std::string text;
    for (std::size_t n = 0; n < paragraphs; ++n) {
        text += "<w:p><w:r><w:t>Turn " + std::to_string(n) + ": we stayed for the school.</w:t></w:r></w:p>";
    }
    return text;
}

TEST(InflateWholeTest, AStreamComesOutWholeWhateverItsDeclaredSize) {
    const std::string text = interviewText(20'000); // inflates to many times its packed size
    const std::string packed = rawDeflate(text);
    ASSERT_GT(text.size(), packed.size() * 10);
    for (const std::uint64_t hint : {std::uint64_t{0}, std::uint64_t{text.size()}, std::uint64_t{10},
                                     std::uint64_t{0xFFFFFFFFu}}) {
        const Unpacked unpacked = inflateWhole(packed, 64 * kMebibyte, hint);
        EXPECT_EQ(unpacked.status, Status::complete) << hint;
        EXPECT_TRUE(unpacked.bytes == text) << hint;
    }
    // Exactly at the limit still fits; one byte less does not.
    EXPECT_EQ(inflateWhole(packed, text.size()).status, Status::complete);
    EXPECT_EQ(inflateWhole(packed, text.size() - 1).status, Status::tooLarge);
}

TEST(InflateWholeTest, DamagedEmptyOrCutStreamsAreCorrupt) {
    const std::string packed = rawDeflate(interviewText(500));
    EXPECT_EQ(inflateWhole("", kMebibyte).status, Status::corrupt);
    EXPECT_EQ(inflateWhole(std::string(200, '\xFF'), kMebibyte).status, Status::corrupt);
    for (const std::size_t length : {std::size_t{1}, packed.size() / 2, packed.size() - 1}) {
        const Unpacked cut = inflateWhole(packed.substr(0, length), kMebibyte);
        EXPECT_EQ(cut.status, Status::corrupt) << length;
        EXPECT_TRUE(cut.bytes.empty());
    }
}

// A small stream built to unpack to far more than its limit is stopped there.
TEST(InflateWholeTest, AZipBombStopsAtTheLimit) {
    const std::string bomb = rawDeflateRepeated(std::string(kMebibyte, 'a'), 100);
    ASSERT_LT(bomb.size(), 200'000u);
    const std::size_t limit = unpackLimit(bomb.size());
    EXPECT_EQ(limit, 64 * kMebibyte);
    EXPECT_EQ(inflateWhole(bomb, limit).status, Status::tooLarge);
    EXPECT_EQ(inflateWhole(bomb, 128 * kMebibyte).bytes.size(), 100 * kMebibyte);
}

// Unpacking on a second thread hands over the same bytes, in order, and says how it ended
// only after every piece before the end or the fault was taken.
TEST(InflateAlongsideTest, PiecesArriveInOrderAndAFaultComesAfterThem) {
    const std::string text = interviewText(100'000);
    const std::string packed = rawDeflate(text);
    std::string joined;
    std::size_t pieces = 0;
    const auto take = [&](std::string_view piece) {
        joined += piece;
        ++pieces;
    };
    EXPECT_EQ(inflateAlongside(packed, 64 * kMebibyte, take), Status::complete);
    EXPECT_TRUE(joined == text);
    EXPECT_GT(pieces, 1u);

    joined.clear();
    EXPECT_EQ(inflateAlongside(packed.substr(0, packed.size() / 2), 64 * kMebibyte, take), Status::corrupt);
    EXPECT_TRUE(text.starts_with(joined));
    EXPECT_EQ(inflateAlongside(packed, text.size() / 3, take), Status::tooLarge);
    EXPECT_EQ(inflateAlongside("", kMebibyte, take), Status::corrupt);
}

TEST(InflateAlongsideTest, AReaderThatStopsEndsTheUnpackingToo) {
    const std::string packed = rawDeflateRepeated(std::string(kMebibyte, 'a'), 50);
    std::size_t pieces = 0;
    EXPECT_THROW(inflateAlongside(packed, 64 * kMebibyte,
                                  [&](std::string_view) {
                                      if (++pieces == 2) throw std::runtime_error("stop");
                                  }),
                 std::runtime_error);
    EXPECT_EQ(pieces, 2u);
}

TEST(UnpackLimitTest, IsTwoHundredTimesTheArchiveBetweenItsBounds) {
    EXPECT_EQ(unpackLimit(0), 64 * kMebibyte);
    EXPECT_EQ(unpackLimit(kMebibyte), 200 * kMebibyte);
    EXPECT_EQ(unpackLimit(100 * kMebibyte), 1024 * kMebibyte);
    EXPECT_EQ(unpackLimit(std::size_t{1} << 62), 1024 * kMebibyte);
}

class ZipWalkTest : public ::testing::TestWithParam<ZipLayout> {};

// Whichever way a writer laid the archive out, every entry is found with its own bytes,
// also behind entries whose sizes follow their data.
TEST_P(ZipWalkTest, EveryEntryIsFoundWithItsBytes) {
    const std::vector<ZipBuilderEntry> entries{{"[Content_Types].xml", "<Types/>", 8},
                                               {"word/media/image.png", std::string(3000, '\x89'), 0},
                                               {"word/styles.xml", interviewText(40), 8},
                                               {"word/document.xml", interviewText(300), 8}};
    const std::string zip = zipArchive(entries, GetParam());
    for (const auto& wanted : entries) {
        const auto entry = findLocalEntry(zip, wanted.name);
        ASSERT_TRUE(entry) << wanted.name;
        EXPECT_EQ(entry->method, wanted.method);
        EXPECT_EQ(entry->uncompressedSize, wanted.data.size());
        const std::string data = wanted.method == 8 ? inflateWhole(entry->data, kMebibyte).bytes : std::string(entry->data);
        EXPECT_EQ(data, wanted.data) << wanted.name;
    }
    EXPECT_FALSE(findLocalEntry(zip, "word/DOCUMENT.xml"));
}

INSTANTIATE_TEST_SUITE_P(Layouts, ZipWalkTest,
                         ::testing::Values(ZipLayout::sizesInHeaders, ZipLayout::dataDescriptors,
                                           ZipLayout::unsignedDataDescriptors, ZipLayout::zip64,
                                           ZipLayout::zip64DataDescriptors));

TEST(ZipWalkTest, StreamedEntriesNeedTheirCentralDirectory) {
    const std::vector<ZipBuilderEntry> entries{{"first.xml", "<a/>", 8}, {"second.xml", "<b/>", 8}};
    // Sizes in the headers: the walk needs nothing else.
    EXPECT_TRUE(findLocalEntry(zipArchive(entries, ZipLayout::sizesInHeaders, false), "second.xml"));
    // Streamed, a file cut before its directory has nothing to say the sizes.
    const std::string streamed = zipArchive(entries, ZipLayout::dataDescriptors);
    EXPECT_TRUE(findLocalEntry(streamed, "second.xml"));
    EXPECT_FALSE(findLocalEntry(zipArchive(entries, ZipLayout::dataDescriptors, false), "second.xml"));
    for (std::size_t length = 0; length < streamed.size(); ++length) {
        const auto entry = findLocalEntry(streamed.substr(0, length), "second.xml");
        if (entry) EXPECT_EQ(inflateWhole(entry->data, kMebibyte).bytes, "<b/>") << length;
    }
    // An entry the directory does not list ends the walk.
    std::string unlisted = streamed;
    unlisted.replace(unlisted.rfind("first.xml"), 9, "other.xml");
    EXPECT_FALSE(findLocalEntry(unlisted, "second.xml"));
}

TEST(ZipCentralDirectoryTest, IsFoundBehindACommentAndThroughZip64Records) {
    const std::vector<ZipBuilderEntry> entries{{"a.txt", "first", 0}, {"b.txt", std::string(5000, 'b'), 8}};
    for (const auto layout : {ZipLayout::sizesInHeaders, ZipLayout::zip64}) {
        std::string zip = zipArchive(entries, layout);
        zip[zip.size() - 2] = 7; // the comment's length
        zip += "comment";
        const auto directory = ZipCentralDirectory::read(zip);
        ASSERT_TRUE(directory);
        const auto* b = directory->find("b.txt");
        ASSERT_NE(b, nullptr);
        EXPECT_EQ(b->method, 8);
        EXPECT_EQ(b->uncompressedSize, 5000u);
        EXPECT_EQ(zip.substr(b->localHeaderOffset, 4), std::string("PK\x03\x04", 4));
        EXPECT_EQ(directory->find("c.txt"), nullptr);
    }
    EXPECT_FALSE(ZipCentralDirectory::read("PK\x05\x06 too short"));
    EXPECT_FALSE(ZipCentralDirectory::read(zipArchive(entries, ZipLayout::sizesInHeaders, false)));
}

} // namespace
} // namespace platform::compression
