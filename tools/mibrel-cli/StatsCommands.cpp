#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "MerivanteCore/Dataset/DatasetNumbers.h"
#include "MerivanteCore/Dataset/ImportedDataset.h"
#include "MerivanteCore/Statistics/DistributionCall.h"
#include "MerivanteCore/Statistics/GroupComparisonEngine.h"
#include "MerivanteCore/Statistics/LatentVariableSupport.h"
#include "MerivanteCore/Statistics/OmegaReliabilityAnalyzer.h"
#include "MerivanteCore/Statistics/ReliabilityAnalyzer.h"
#include "tools/mibrel-cli/CliCommand.h"

namespace mibrel::cli {
namespace {

using merivante::ImportedDataset;

struct DistOptions {
    std::string function;
    std::vector<std::string> arguments;
};

struct CompareOptions {
    std::string file;
    std::string outcome;
    std::string group;
    std::string missingRule = "rows with a missing outcome or group value are left out";
};

struct ItemOptions {
    std::string file;
    std::vector<std::string> items;
    std::string construct = "Scale";
    std::string rule = "listwise";
    std::string method = "mean";
    double minimumCompletion = 0.5;
};

// One number, in the shortest text that reads back as the same double ("nan" outside the domain).
void printDistribution(CliContext& context, const DistOptions& options) {
    std::vector<double> numbers;
    for (const std::string& argument : options.arguments) {
        const auto number = merivante::parseNumber(argument);
        if (!number) throw UsageError("'" + argument + "' is not a number.");
        numbers.push_back(*number);
    }
    const auto value = merivante::callDistribution(options.function, numbers);
    if (!value) {
        std::string known;
        for (const std::string& signature : merivante::distributionSignatures()) known += "\n  " + signature;
        throw UsageError("Unknown function or wrong number of arguments. The functions are:" + known);
    }
    context.out << merivante::shortestText(*value) << '\n';
}

void requireColumn(const ImportedDataset& dataset, const std::string& name) {
    for (const std::string& header : dataset.headers)
        if (header == name) return;
    throw UsageError("The dataset has no column named \u201c" + name + "\u201d.");
}

// What stopped an analysis, after its readiness has been printed for the full picture.
[[noreturn]] void failBlocked(CliContext& context, const merivante::AnalysisReadiness& readiness,
                              const std::string& fallback) {
    printJson(context.out, readiness);
    std::string reasons;
    for (const auto& issue : readiness.issues)
        if (issue.status == merivante::AnalysisReadinessStatus::blocked) reasons += (reasons.empty() ? "" : " ") + issue.message;
    throw std::runtime_error(reasons.empty() ? fallback : reasons);
}

void printComparison(CliContext& context, const CompareOptions& options) {
    const ImportedDataset dataset = importDataset(options.file);
    requireColumn(dataset, options.outcome);
    requireColumn(dataset, options.group);
    const auto groups = dataset.values(options.group);
    const auto outcomes = dataset.numericValues(options.outcome);
    namespace Engine = merivante::GroupComparisonEngine;
    const auto result = Engine::analyze(options.outcome, options.group, groups, outcomes, options.missingRule);
    if (!result)
        failBlocked(context, Engine::readiness(options.outcome, options.group, groups, outcomes),
                    "No omnibus test can be computed on these groups.");
    printJson(context.out, *result);
}

// Rows of answers, one cell per item, from the named columns.
merivante::ItemMatrix itemMatrix(const ImportedDataset& dataset, const std::vector<std::string>& items) {
    if (items.empty()) throw UsageError("--items needs at least one column name.");
    std::vector<std::vector<std::optional<double>>> columns;
    for (const std::string& item : items) {
        requireColumn(dataset, item);
        columns.push_back(dataset.numericValues(item));
    }
    merivante::ItemMatrix rows(static_cast<std::size_t>(dataset.rowCount()));
    for (std::size_t row = 0; row < rows.size(); ++row)
        for (const auto& column : columns) rows[row].push_back(column[row]);
    return rows;
}

merivante::ReliabilityMissingDataRule missingRule(const std::string& typed) {
    using enum merivante::ReliabilityMissingDataRule;
    if (typed == "listwise") return listwiseDeletion;
    if (typed == "available-item-mean") return availableItemMean;
    if (typed == "threshold") return excludeIfMissingMoreThanThreshold;
    throw UsageError("--rule must be listwise, available-item-mean or threshold.");
}

void printReliability(CliContext& context, const ItemOptions& options) {
    if (options.method != "mean" && options.method != "sum") throw UsageError("--method must be mean or sum.");
    if (!(options.minimumCompletion >= 0 && options.minimumCompletion <= 1))
        throw UsageError("--min-completion must be a share from 0 to 1.");
    const ImportedDataset dataset = importDataset(options.file);
    const auto matrix = itemMatrix(dataset, options.items);
    printJson(context.out, merivante::ReliabilityAnalyzer::analyze(
                               options.construct, options.items, matrix, missingRule(options.rule),
                               options.method == "sum" ? merivante::ScaleScoreMethod::sum
                                                       : merivante::ScaleScoreMethod::mean,
                               options.minimumCompletion));
}

void printOmega(CliContext& context, const ItemOptions& options) {
    const ImportedDataset dataset = importDataset(options.file);
    const auto rows = itemMatrix(dataset, options.items);
    std::vector<std::vector<std::optional<double>>> columns(options.items.size());
    for (const auto& row : rows)
        for (std::size_t item = 0; item < row.size(); ++item) columns[item].push_back(row[item]);
    const auto result = merivante::OmegaReliabilityAnalyzer::analyze(columns);
    if (!result) {
        const auto complete = merivante::ReliabilityAnalyzer::preparedRows(
            rows, merivante::ReliabilityMissingDataRule::listwiseDeletion, 1);
        failBlocked(context,
                    merivante::LatentVariableSupport::readiness("McDonald omega",
                                                                static_cast<std::int64_t>(options.items.size()),
                                                                dataset.rowCount(),
                                                                static_cast<std::int64_t>(complete.size())),
                    "The one-factor model gives no usable omega for these items.");
    }
    printJson(context.out, *result);
}

} // namespace

void addStatsCommands(CLI::App& app, CliContext& context) {
    CLI::App* stats = app.add_subcommand("stats", "Statistics on datasets and their distributions");
    stats->require_subcommand(1);

    auto dist = std::make_shared<DistOptions>();
    CLI::App* distCommand = addCommand(*stats, context, "dist", "Print one value of a distribution function",
                                       [&context, dist] { printDistribution(context, *dist); });
    distCommand->add_option("function", dist->function, "e.g. studentTPValue, studentizedRangeQuantile")->required();
    distCommand->add_option("arguments", dist->arguments, "The function's arguments in order")->allow_extra_args();

    auto compare = std::make_shared<CompareOptions>();
    CLI::App* compareCommand =
        addCommand(*stats, context, "compare", "Compare an outcome's means across groups and print the result as JSON",
                   [&context, compare] { printComparison(context, *compare); });
    compareCommand->add_option("dataset-file", compare->file, "The data file")->required();
    compareCommand->add_option("--outcome", compare->outcome, "The numeric outcome column")->required();
    compareCommand->add_option("--group", compare->group, "The grouping column")->required();
    compareCommand->add_option("--missing-rule", compare->missingRule, "How missing values were handled, for the record")
        ->capture_default_str();

    auto items = std::make_shared<ItemOptions>();
    CLI::App* reliability =
        addCommand(*stats, context, "reliability", "Cronbach's alpha with item diagnostics, as JSON",
                   [&context, items] { printReliability(context, *items); });
    reliability->add_option("dataset-file", items->file, "The data file")->required();
    reliability->add_option("--items", items->items, "The item columns, separated by commas")
        ->required()
        ->delimiter(',');
    reliability->add_option("--construct", items->construct, "The construct's name")->capture_default_str();
    reliability->add_option("--rule", items->rule, "listwise, available-item-mean or threshold")->capture_default_str();
    reliability->add_option("--method", items->method, "Scale scores as the mean or the sum")->capture_default_str();
    reliability->add_option("--min-completion", items->minimumCompletion, "Share of items a kept case answers")
        ->capture_default_str();

    auto omegaItems = std::make_shared<ItemOptions>();
    CLI::App* omega = addCommand(*stats, context, "omega", "McDonald's omega from a one-factor model, as JSON",
                                 [&context, omegaItems] { printOmega(context, *omegaItems); });
    omega->add_option("dataset-file", omegaItems->file, "The data file")->required();
    omega->add_option("--items", omegaItems->items, "The item columns, separated by commas")->required()->delimiter(',');
}

} // namespace mibrel::cli
