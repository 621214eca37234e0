#include <memory>
#include <string>
#include <vector>

#include "MerivanteCore/Dataset/DatasetNumbers.h"
#include "MerivanteCore/Statistics/DistributionCall.h"
#include "tools/mibrel-cli/CliCommand.h"

namespace mibrel::cli {
namespace {

struct DistOptions {
    std::string function;
    std::vector<std::string> arguments;
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

} // namespace

void addStatsCommands(CLI::App& app, CliContext& context) {
    CLI::App* stats = app.add_subcommand("stats", "Statistics on datasets and their distributions");
    stats->require_subcommand(1);

    auto dist = std::make_shared<DistOptions>();
    CLI::App* distCommand = addCommand(*stats, context, "dist", "Print one value of a distribution function",
                                       [&context, dist] { printDistribution(context, *dist); });
    distCommand->add_option("function", dist->function, "e.g. studentTPValue, studentizedRangeQuantile")->required();
    distCommand->add_option("arguments", dist->arguments, "The function's arguments in order")->allow_extra_args();
}

} // namespace mibrel::cli
