#include "bench/LargeProjectGenerator.h"

#include "tools/generator/MibrelProjectGenerator.h"

#include <array>
#include <random>
#include <string>
#include <vector>

namespace mibrel::bench {
namespace {

using dev::randomUuid;

std::string sentence(std::mt19937_64& random, std::size_t words) {
    static const std::array<const char*, 12> vocabulary{"teachers", "workload", "mentor",  "stayed",
                                                        "principal", "students", "salary", "evenings",
                                                        "support",  "planning", "left",    "colleagues"};
    std::string text;
    for (std::size_t i = 0; i < words; ++i) {
        if (i > 0) text += ' ';
        text += vocabulary[random() % vocabulary.size()];
    }
    return text;
}

TeskResponseRef randomRef(std::mt19937_64& random, const std::vector<Uuid>& sources, std::size_t segmentsPerSource) {
    return TeskResponseRef{sources[random() % sources.size()], "segment-" + std::to_string(random() % segmentsPerSource),
                           std::nullopt, std::nullopt};
}

} // namespace

TeskWorkspace makeLargeWorkspace(const LargeProjectSize& size, unsigned seed) {
    std::mt19937_64 random(seed);
    const Date moment = platform::now();
    std::vector<Uuid> sources;
    for (std::size_t i = 0; i < size.sources; ++i) sources.push_back(randomUuid(random));

    TeskWorkspace workspace;
    auto& codes = workspace.codes;
    for (std::size_t i = 0; i < size.codes; ++i) {
        TeskCode code{.id = randomUuid(random), .name = "Code " + std::to_string(i), .definition = sentence(random, 20)};
        code.createdAt = moment;
        codes.append(std::move(code));
    }
    auto& applications = workspace.applications;
    for (std::size_t i = 0; i < size.applications; ++i) {
        std::optional<std::string> excerpt;
        if (i % 2 == 0) excerpt = sentence(random, 8);
        applications.append(TeskCodeApplication{randomUuid(random), randomRef(random, sources, size.segmentsPerSource),
                                                   codes[random() % codes.size()].id, std::move(excerpt), "", moment});
    }
    auto& quotes = workspace.quotes;
    for (std::size_t i = 0; i < size.quotes; ++i) {
        TeskQuote quote{.id = randomUuid(random), .response = randomRef(random, sources, size.segmentsPerSource),
                        .text = sentence(random, 35), .codeIDs = {codes[random() % codes.size()].id}};
        quote.createdAt = moment;
        quotes.append(std::move(quote));
    }
    return workspace;
}

} // namespace mibrel::bench
