#include "Platform/Files/FileSystem.h"

#include <algorithm>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/TestSupport.h"

namespace files = platform::files;
namespace fs = std::filesystem;
using mibrel::testing::folderListing;
using mibrel::testing::readText;
using mibrel::testing::TemporaryDirectory;
using mibrel::testing::writeText;

namespace {

std::string messageOf(const auto& action) {
    try {
        action();
    } catch (const files::FileError& error) {
        return error.what();
    }
    ADD_FAILURE() << "no FileError";
    return {};
}

} // namespace

TEST(FileSystemWrite, CreatesThenReplacesLeavingNoTemporaryFile) {
    TemporaryDirectory folder;
    const fs::path target = folder / "workspace.json";
    files::writeFileAtomically(target, "first");
    EXPECT_EQ(readText(target), "first");
    files::writeFileAtomically(target, std::string("sec\0ond", 7));
    EXPECT_EQ(files::readFile(target), std::string("sec\0ond", 7));
    EXPECT_EQ(folderListing(folder.path()), "workspace.json");
}

TEST(FileSystemWrite, FailsOverADirectoryOrMissingFolderLeavingNoTrace) {
    TemporaryDirectory folder;
    const fs::path target = folder / "project";
    writeText(target / "inside.txt", "kept");
    const std::string message = messageOf([&] { files::writeFileAtomically(target, "data"); });
    EXPECT_NE(message.find("project"), std::string::npos) << message;
    EXPECT_TRUE(fs::is_directory(target));
    EXPECT_EQ(readText(target / "inside.txt"), "kept");
    EXPECT_EQ(folderListing(folder.path()), "project");
    EXPECT_EQ(folderListing(target), "inside.txt");
    EXPECT_THROW(files::writeFileAtomically(folder / "missing" / "file.txt", "x"), files::FileError);
    EXPECT_EQ(folderListing(folder.path()), "project");
}

TEST(FileSystemRead, ErrorsNameTheFile) {
    TemporaryDirectory folder;
    const std::string missing = messageOf([&] { files::readFile(folder / "absent.json"); });
    EXPECT_NE(missing.find("absent.json"), std::string::npos) << missing;
    fs::create_directory(folder / "somewhere.mvibrl");
    const std::string directory = messageOf([&] { files::readFile(folder / "somewhere.mvibrl"); });
    EXPECT_NE(directory.find("somewhere.mvibrl"), std::string::npos) << directory;
}

TEST(FileSystemFolders, ListingSkipsHiddenEntriesAndFlagsFolders) {
    TemporaryDirectory folder;
    writeText(folder / "a.txt", "a");
    writeText(folder / ".hidden", "h");
    writeText(folder / "sub" / "b.txt", "b");
    fs::create_directory(folder / ".hiddenFolder");
    auto entries = files::listDirectory(folder.path());
    std::sort(entries.begin(), entries.end(), [](const auto& l, const auto& r) { return l.name < r.name; });
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].name, "a.txt");
    EXPECT_FALSE(entries[0].isDirectory);
    EXPECT_EQ(entries[1].name, "sub");
    EXPECT_TRUE(entries[1].isDirectory);
}

TEST(FileSystemFolders, CreateAndRemoveItems) {
    TemporaryDirectory folder;
    files::createDirectories(folder / "a" / "b");
    files::createDirectories(folder / "a" / "b");
    EXPECT_TRUE(files::isDirectory(folder / "a" / "b"));
    writeText(folder / "file", "contents");
    EXPECT_THROW(files::createDirectories(folder / "file"), files::FileError);
    EXPECT_THROW(files::createDirectories(folder / "file" / "below"), files::FileError);
    EXPECT_EQ(readText(folder / "file"), "contents");
    files::removeItem(folder / "nothing-here");
    files::removeItem(folder / "a");
    EXPECT_FALSE(files::itemExists(folder / "a"));
}

TEST(FileSystemFolders, ItemExistsCountsADanglingLink) {
    TemporaryDirectory folder;
    fs::create_symlink(folder / "gone", folder / "link");
    EXPECT_TRUE(files::itemExists(folder / "link"));
    EXPECT_FALSE(files::itemExists(folder / "gone"));
}

TEST(FileSystemPaths, LastComponentIgnoresATrailingSlash) {
    EXPECT_EQ(files::lastPathComponent("/a/b.mvibrl/"), "b.mvibrl");
    EXPECT_EQ(files::lastPathComponent("/a/b.mvibrl"), "b.mvibrl");
    EXPECT_EQ(files::lastPathComponent("a//"), "a");
}
