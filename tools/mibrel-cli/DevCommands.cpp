#include <memory>
#include <string>

#include "tools/generator/MibrelProjectGenerator.h"
#include "tools/mibrel-cli/CliCommand.h"

namespace mibrel::cli {
namespace {

struct GenerateOptions {
    std::string path;
    dev::GeneratedProjectSize size;
};

void generate(CliContext& context, const GenerateOptions& options) {
    const auto& size = options.size;
    for (const std::int64_t count : {size.sources, size.segments, size.codes, size.applications, size.quotes, size.themes,
                                     size.auditEvents}) {
        if (count < 0) throw UsageError("Counts must not be negative.");
    }
    const auto location = absolutePath(options.path);
    dev::writeProject(dev::generateProject(size), location);
    context.out << location.string() << '\n';
}

} // namespace

void addDevCommands(CLI::App& app, CliContext& context) {
    CLI::App* dev = app.add_subcommand("dev", "Tools for developers: generated projects for benchmarks and trials");
    dev->require_subcommand(1);
    auto options = std::make_shared<GenerateOptions>();
    auto& size = options->size;
    CLI::App* command = addCommand(*dev, context, "generate",
                                   "Write a generated project (the same seed always gives the same project)",
                                   [&context, options] { generate(context, *options); });
    command->add_option("path", options->path, "Where to create the package; must not exist")->required();
    command->add_option("--sources", size.sources, "Sources (default 40)");
    command->add_option("--segments", size.segments, "Segments per source (default 50)");
    command->add_option("--codes", size.codes, "Codes (default 60)");
    command->add_option("--applications", size.applications, "Code applications (default 1000)");
    command->add_option("--quotes", size.quotes, "Quotes (default 100)");
    command->add_option("--themes", size.themes, "Themes, each staged as a finding (default 8)");
    command->add_option("--audit-events", size.auditEvents, "Audit events (default 200)");
    command->add_option("--seed", size.seed, "Seed (default 1)");
}

} // namespace mibrel::cli
