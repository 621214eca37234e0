#include "tools/generator/MibrelProjectGenerator.h"

#include <array>
#include <cmath>
#include <random>
#include <string>

#include "MibrelCore/Audit/TeskAuditTrail.h"
#include "MibrelCore/Storage/TeskProjectArchive.h"
#include "MibrelCore/Storage/TeskSourceStore.h"
#include "MibrelCore/Storage/TeskWorkspaceStore.h"
#include "Platform/Files/BatchedDurability.h"
#include "Platform/Files/FileSystem.h"
#include "Platform/Json/JsonFile.h"

namespace mibrel::dev {
namespace {

using Random = std::mt19937_64;

std::size_t pick(Random& random, std::size_t count) { return static_cast<std::size_t>(random() % count); }

// Common words first, then invented ones, drawn with a long tail as real talk has:
// a few words very often, most rarely.
class Vocabulary {
public:
    explicit Vocabulary(Random& random) {
        static const std::array<const char*, 40> common{
            "the", "and", "I", "we", "kids", "school", "teaching", "year", "pay", "mentor", "principal", "time",
            "really", "because", "stayed", "left", "support", "class", "students", "felt", "they", "it's", "don't",
            "well-being", "workload", "colleagues", "district", "hours", "planning", "family", "town", "leaving",
            "trust", "never", "first", "room", "home", "money", "tired", "Interview"};
        static const std::array<const char*, 16> syllables{"ka", "lo", "mi", "ter", "an", "so", "vel", "ri",
                                                           "pa", "den", "ul", "zo", "fen", "ar", "is", "mor"};
        m_words.assign(common.begin(), common.end());
        for (int n = 0; n < 3000; ++n) {
            std::string word;
            for (std::size_t parts = 2 + pick(random, 3); parts > 0; --parts) word += syllables[pick(random, syllables.size())];
            m_words.push_back(word);
        }
    }

    std::string sentence(Random& random, std::size_t words) const {
        std::string text;
        for (std::size_t i = 0; i < words; ++i) {
            if (i > 0) text += ' ';
            text += m_words[zipfIndex(random)];
        }
        return text + ".";
    }

private:
    std::size_t zipfIndex(Random& random) const {
        const double u = std::uniform_real_distribution<double>(0.0, 1.0)(random);
        return static_cast<std::size_t>(std::pow(u, 3.0) * static_cast<double>(m_words.size() - 1));
    }

    std::vector<std::string> m_words;
};

Date dayOf(std::int64_t index) { return Date(std::chrono::seconds(1'767'225'600 + index * 61)); } // from 2026-01-01

void addSources(GeneratedProject& project, const GeneratedProjectSize& size, const Vocabulary& words, Random& random) {
    for (std::int64_t s = 0; s < size.sources; ++s) {
        TeskSource source;
        source.id = randomUuid(random);
        source.label = "Interview " + std::to_string(s + 1);
        source.date = source.createdAt = dayOf(s);
        if (s % 3 == 0) source.tags = {"interview", "year " + std::to_string(1 + s % 4)};
        TeskTranscript& transcript = project.transcripts[source.id];
        for (std::int64_t g = 0; g < size.segments; ++g) {
            TranscriptSegment segment;
            segment.id = "segment-" + std::to_string(g);
            segment.text = (g % 2 == 0 ? "Interviewer: " : "Participant: ") + words.sentence(random, 8 + pick(random, 30));
            transcript.segments.push_back(std::move(segment));
        }
        project.sources.push_back(std::move(source));
    }
}

TeskResponseRef randomSegment(const GeneratedProject& project, Random& random) {
    const TeskSource& source = project.sources[pick(random, project.sources.size())];
    const auto& segments = project.transcripts.at(source.id).segments;
    return {source.id, segments[pick(random, segments.size())].id, std::nullopt, std::nullopt};
}

void addCodebook(GeneratedProject& project, const GeneratedProjectSize& size, const Vocabulary& words, Random& random) {
    TeskWorkspace& workspace = project.workspace;
    for (std::int64_t c = 0; c < size.codes; ++c) {
        TeskCode code{.id = randomUuid(random), .name = "Code " + std::to_string(c + 1), .definition = words.sentence(random, 12)};
        if (c % 2 == 0) code.includeWhen = words.sentence(random, 10);
        code.status = static_cast<TeskCodeStatus>(c % 3);
        code.createdAt = dayOf(c);
        workspace.codes.append(std::move(code));
    }
    for (std::int64_t t = 0; t < size.themes && !workspace.codes.isEmpty(); ++t) {
        TeskTheme theme{.id = randomUuid(random), .name = "Theme " + std::to_string(t + 1), .memo = words.sentence(random, 15)};
        if (t % 2 == 0) theme.interpretiveClaim = words.sentence(random, 20);
        for (int k = 0; k < 5; ++k) theme.codeIDs.push_back(workspace.codes[pick(random, workspace.codes.size())].id);
        theme.createdAt = dayOf(t);
        workspace.themes.append(std::move(theme));
    }
}

void addEvidence(GeneratedProject& project, const GeneratedProjectSize& size, const Vocabulary& words, Random& random) {
    TeskWorkspace& workspace = project.workspace;
    if (project.sources.empty() || size.segments <= 0 || workspace.codes.isEmpty()) return;
    for (std::int64_t a = 0; a < size.applications; ++a) {
        TeskCodeApplication application{randomUuid(random), randomSegment(project, random),
                                        workspace.codes[pick(random, workspace.codes.size())].id, std::nullopt, "", dayOf(a)};
        if (a % 4 == 0) application.excerpt = words.sentence(random, 8);
        workspace.applications.append(std::move(application));
    }
    for (std::int64_t q = 0; q < size.quotes; ++q) {
        TeskQuote quote{.id = randomUuid(random), .response = randomSegment(project, random), .text = words.sentence(random, 25)};
        quote.codeIDs = {workspace.codes[pick(random, workspace.codes.size())].id};
        if (!workspace.themes.isEmpty()) quote.themeIDs = {workspace.themes[pick(random, workspace.themes.size())].id};
        quote.role = static_cast<TeskQuoteRole>(q % 3);
        quote.createdAt = dayOf(q);
        workspace.quotes.append(std::move(quote));
    }
    for (const TeskTheme& theme : workspace.themes) workspace.reportFindings.append(TeskReportFinding{.id = randomUuid(random), .themeID = theme.id});
}

} // namespace

Uuid randomUuid(std::mt19937_64& random) {
    std::array<std::uint8_t, 16> bytes{};
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
    bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0F) | 0x40);
    bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3F) | 0x80);
    return Uuid(bytes);
}

GeneratedProject generateProject(const GeneratedProjectSize& size) {
    Random random(size.seed);
    const Vocabulary words(random);
    GeneratedProject project;
    addSources(project, size, words, random);
    addCodebook(project, size, words, random);
    addEvidence(project, size, words, random);
    project.workspace.studyFrame.researchQuestion = "How do early-career teachers account for staying or leaving?";
    project.workspace.updatedAt = dayOf(0);
    static const std::array<const char*, 4> events{"code_created", "application_added", "quote_added", "theme_created"};
    for (std::int64_t e = 0; e < size.auditEvents; ++e) {
        project.auditEvents.push_back({randomUuid(random), dayOf(e), events[static_cast<std::size_t>(e) % events.size()],
                                       "Code " + std::to_string(1 + e % std::max<std::int64_t>(size.codes, 1))});
    }
    return project;
}

void writeProject(const GeneratedProject& project, const std::filesystem::path& location) {
    TeskProjectArchive::createEmpty(location, "Generated study", false);
    {
        platform::files::BatchedDurability batch(location);
        for (const TeskSource& source : project.sources) {
            TeskSourceStore::saveSource(source, location);
            TeskSourceStore::saveTranscript(project.transcripts.at(source.id), source.id, location);
        }
        batch.flush();
    }
    TeskSourceStore::saveIndex(project.sources, location);
    TeskWorkspaceStore::save(project.workspace, location);
    const auto audit = TeskAuditTrail::auditURL(location);
    platform::files::createDirectories(audit.parent_path());
    platform::json::writeJsonFile(audit, project.auditEvents);
}

} // namespace mibrel::dev
