#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "MibrelCore/Analysis/TeskAnalysisEngine.h"
#include "MibrelCore/Analysis/TeskCodeReadiness.h"
#include "MibrelCore/Report/TeskReportComposer.h"
#include "tools/mibrel-cli/BoundProject.h"
#include "tools/mibrel-cli/CliCommand.h"

namespace mibrel::cli {
namespace {

namespace engine = TeskAnalysisEngine;

struct AnalyzeOptions {
    std::string project;
    std::string operation;
    std::string scope = "corpus";
    std::int64_t minCount = 1;
    std::optional<std::int64_t> limit;
    std::string source;
    std::string code;
};

Uuid parseID(const std::string& text, const std::string& what) {
    const auto id = Uuid::parse(text);
    if (!id) throw UsageError("“" + text + "” is not a " + what + " id (a UUID).");
    return *id;
}

engine::WordFrequencyScope parseScope(const std::string& scope) {
    if (scope == "corpus") return engine::CorpusScope{};
    if (scope.starts_with("code:")) return engine::CodeScope{parseID(scope.substr(5), "code")};
    if (scope.starts_with("theme:")) return engine::ThemeScope{parseID(scope.substr(6), "theme")};
    throw UsageError("The scope “" + scope + "” is none of corpus, code:<id>, theme:<id>.");
}

std::int64_t nonNegative(std::int64_t value, const char* option) {
    if (value < 0) throw UsageError(std::string(option) + " must not be negative.");
    return value;
}

using Operation = std::function<std::string(const TeskAnalysisCorpus&, const AnalyzeOptions&)>;

template <class Compute>
Operation json(Compute compute) {
    return [compute](const TeskAnalysisCorpus& corpus, const AnalyzeOptions& options) {
        return platform::json::encode(compute(corpus, options));
    };
}

const std::map<std::string, Operation, std::less<>>& operations() {
    using C = TeskAnalysisCorpus;
    using O = AnalyzeOptions;
    static const std::map<std::string, Operation, std::less<>> table = {
        {"corpusOverview", json([](const C& c, const O&) { return engine::corpusOverview(c); })},
        {"codeFrequency", json([](const C& c, const O&) { return engine::codeFrequency(c); })},
        {"codeSourceMatrix", json([](const C& c, const O&) { return engine::codeSourceMatrix(c); })},
        {"codeCooccurrence", json([](const C& c, const O&) { return engine::codeCooccurrence(c); })},
        {"wordFrequency", json([](const C& c, const O& o) {
             return engine::wordFrequency(c, parseScope(o.scope), o.minCount, nonNegative(o.limit.value_or(40), "--limit"));
         })},
        {"themeCoverage", json([](const C& c, const O&) { return engine::themeCoverage(c); })},
        {"codingStripes", json([](const C& c, const O& o) {
             if (o.source.empty()) throw UsageError("codingStripes needs --source <id>.");
             return engine::codingStripes(c, parseID(o.source, "source"));
         })},
        {"representativeQuotes", json([](const C& c, const O& o) {
             return engine::representativeQuotes(c, nonNegative(o.limit.value_or(5), "--limit"));
         })},
        {"rigorChecks", json([](const C& c, const O&) { return engine::rigorChecks(c); })},
        {"codeReadiness",
         [](const C& c, const O& o) {
             if (o.code.empty()) return platform::json::encode(TeskCodeReadinessEngine::readiness(c.workspace));
             const Uuid id = parseID(o.code, "code");
             for (const TeskCode& code : c.workspace.codes) {
                 if (code.id == id) return platform::json::encode(TeskCodeReadinessEngine::readiness(code, c.workspace));
             }
             throw std::runtime_error("This project has no code with the id " + id.uuidString() + ".");
         }},
        {"findingReadiness", json([](const C& c, const O&) { return TeskReportComposer::readiness(c); })},
    };
    return table;
}

std::string operationNames() {
    std::string names;
    for (const auto& entry : operations()) names += (names.empty() ? "" : ", ") + entry.first;
    return names;
}

void analyze(CliContext& context, const AnalyzeOptions& options) {
    const auto found = operations().find(options.operation);
    if (found == operations().end()) {
        throw UsageError("There is no analysis “" + options.operation + "”. The analyses are: " + operationNames() + ".");
    }
    const BoundProject project(openedProject(options.project));
    context.out << found->second(project.corpus(), options) << '\n';
}

struct ReportOptions {
    std::string project;
    std::string kind;
    std::optional<std::string> title;
    std::int64_t maxQuotes = 4;
};

// The project's title unless one is given; blank falls back on the composer's own.
std::string reportTitle(const ReportOptions& options, const std::filesystem::path& projectURL) {
    return options.title ? *options.title : openProject(projectURL).title;
}

void printReport(CliContext& context, const ReportOptions& options, const std::string& mode) {
    const auto projectURL = openedProject(options.project);
    const BoundProject project(projectURL);
    if (mode == "section") {
        const auto kind = platform::fromRawValue<TeskReportSectionKind>(options.kind);
        if (!kind) throw UsageError("“" + options.kind + "” is no section kind (studyFrame, contextLens, corpus, codebook, findings, trustworthiness).");
        context.out << TeskReportComposer::sectionBody(*kind, project.corpus()) << '\n';
    } else if (mode == "saved") {
        context.out << TeskReportComposer::composeSavedSections(project.corpus(), reportTitle(options, projectURL));
    } else {
        context.out << TeskReportComposer::compose(project.corpus(), reportTitle(options, projectURL),
                                                   nonNegative(options.maxQuotes, "--max-quotes"));
    }
}

// `report <project> section|saved|full …`: the project comes first, as the issue of the
// three reports is the same project.
void addReportCommands(CLI::App& app, CliContext& context) {
    auto options = std::make_shared<ReportOptions>();
    CLI::App* report = app.add_subcommand("report", "Print report text as the Report tool makes it (Markdown lines)");
    report->add_option("project", options->project, "The project package")->required();
    report->require_subcommand(1);
    CLI::App* section = addCommand(*report, context, "section", "One section's body as it would be saved now",
                                   [&context, options] { printReport(context, *options, "section"); });
    section->add_option("kind", options->kind, "studyFrame, contextLens, corpus, codebook, findings or trustworthiness")
        ->required();
    CLI::App* saved = addCommand(*report, context, "saved", "The report assembled from the saved sections",
                                 [&context, options] { printReport(context, *options, "saved"); });
    CLI::App* full = addCommand(*report, context, "full", "The whole report, made from the project as it is now",
                                [&context, options] { printReport(context, *options, "full"); });
    for (CLI::App* command : {saved, full}) {
        command->add_option("--title", options->title, "The report's title (default: the project's)");
    }
    full->add_option("--max-quotes", options->maxQuotes, "Quotes shown per finding (default 4)");
}

} // namespace

void addAnalyzeCommands(CLI::App& app, CliContext& context) {
    auto options = std::make_shared<AnalyzeOptions>();
    CLI::App* analyze = addCommand(app, context, "analyze",
                                   "Print analysis rows as JSON, the numbers every tool shows. Analyses: " +
                                       operationNames() + ".",
                                   [&context, options] { cli::analyze(context, *options); });
    analyze->add_option("project", options->project, "The project package")->required();
    analyze->add_option("operation", options->operation, "The analysis, e.g. codeFrequency")->required();
    analyze->add_option("--scope", options->scope, "wordFrequency: corpus (default), code:<id> or theme:<id>");
    analyze->add_option("--min-count", options->minCount, "wordFrequency: the least count shown (default 1)");
    analyze->add_option("--limit", options->limit, "wordFrequency (default 40), representativeQuotes (default 5)");
    analyze->add_option("--source", options->source, "codingStripes: the source's id");
    analyze->add_option("--code", options->code, "codeReadiness: one code's id (default: every code)");
    addReportCommands(app, context);
}

} // namespace mibrel::cli
