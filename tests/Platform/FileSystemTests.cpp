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
    EXPECT_EQ(folderListing(target), "inside.txt");
    EXPECT_THROW(files::writeFileAtomically(folder / "missing" / "file.txt", "x"), files::FileError);
    EXPECT_EQ(folderListing(folder.path()), "project");
    // Nor can a folder be made where a file is.
    EXPECT_THROW(files::createDirectories(target / "inside.txt"), files::FileError);
    EXPECT_EQ(readText(target / "inside.txt"), "kept");
}

TEST(FileSystemRead, ErrorsNameTheFile) {
    TemporaryDirectory folder;
    fs::create_directory(folder / "somewhere.mvibrl");
    for (const char* name : {"absent.json", "somewhere.mvibrl"}) {
        const std::string message = messageOf([&] { files::readFile(folder / name); });
        EXPECT_NE(message.find(name), std::string::npos) << message;
    }
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
    EXPECT_EQ(entries[0].name + (entries[0].isDirectory ? "/" : ""), "a.txt");
    EXPECT_EQ(entries[1].name + (entries[1].isDirectory ? "/" : ""), "sub/");
}

TEST(FileSystemPaths, DanglingLinkExistsAndTrailingSlashIsIgnored) {
    TemporaryDirectory folder;
    fs::create_symlink(folder / "gone", folder / "link");
    EXPECT_TRUE(files::itemExists(folder / "link"));
    EXPECT_FALSE(files::itemExists(folder / "gone"));
    EXPECT_EQ(files::lastPathComponent("/a/b.mvibrl/"), "b.mvibrl");
    EXPECT_EQ(files::lastPathComponent("a//"), "a");
}
