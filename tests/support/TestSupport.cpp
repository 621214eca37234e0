#include "tests/support/TestSupport.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <vector>

#include <rapidjson/document.h>

namespace mibrel::testing {
namespace fs = std::filesystem;

TemporaryDirectory::TemporaryDirectory() {
    std::string pattern = (fs::temp_directory_path() / "mibrel-test-XXXXXX").string();
    if (!::mkdtemp(pattern.data())) throw std::runtime_error("mkdtemp failed");
    m_path = pattern;
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
}

void writeText(const fs::path& path, std::string_view text) {
    if (path.has_parent_path()) fs::create_directories(path.parent_path());
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    if (!stream) throw std::runtime_error("could not write " + path.string());
}

std::string readText(const fs::path& path) {
    std::ifstream stream(path, std::ios::binary);
    if (!stream) throw std::runtime_error("could not read " + path.string());
    std::ostringstream contents;
    contents << stream.rdbuf();
    return contents.str();
}

namespace {

std::string firstUnsorted(const rapidjson::Value& value, const std::string& path) {
    if (value.IsArray()) {
        for (rapidjson::SizeType i = 0; i < value.Size(); ++i) {
            auto found = firstUnsorted(value[i], path + "[" + std::to_string(i) + "]");
            if (!found.empty()) return found;
        }
    } else if (value.IsObject()) {
        std::string previous;
        bool first = true;
        for (auto it = value.MemberBegin(); it != value.MemberEnd(); ++it) {
            std::string key(it->name.GetString(), it->name.GetStringLength());
            if (!first && !(previous < key)) return path + ": \"" + key + "\" after \"" + previous + "\"";
            auto found = firstUnsorted(it->value, path + "." + key);
            if (!found.empty()) return found;
            previous = std::move(key);
            first = false;
        }
    }
    return {};
}

} // namespace

std::string unsortedKeysIn(std::string_view jsonText) {
    rapidjson::Document document;
    document.Parse(jsonText.data(), jsonText.size());
    if (document.HasParseError()) return "not JSON";
    return firstUnsorted(document, "");
}

std::string folderListing(const fs::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    std::string listing;
    for (const auto& name : names) listing += (listing.empty() ? "" : " ") + name;
    return listing;
}

} // namespace mibrel::testing
