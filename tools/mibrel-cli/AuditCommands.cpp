#include <memory>
#include <string>

#include "MibrelCore/Audit/TeskAuditTrail.h"
#include "Platform/Text/Text.h"
#include "tools/mibrel-cli/CliCommand.h"

namespace mibrel::cli {
namespace {

struct AppendArguments {
    std::string path;
    std::string event;
    std::string detail;
};

void appendEvent(CliContext& context, const AppendArguments& arguments) {
    if (platform::text::isBlank(arguments.event)) throw UsageError("The event name must not be empty.");
    const auto projectURL = absolutePath(arguments.path);
    openProject(projectURL);
    printJson(context.out, TeskAuditTrail::append(arguments.event, arguments.detail, projectURL));
}

} // namespace

void addAuditCommands(CLI::App& app, CliContext& context) {
    CLI::App* audit = app.add_subcommand("audit", "Read and add to the project's audit trail");
    audit->require_subcommand(1);

    auto showPath = std::make_shared<std::string>();
    CLI::App* show = addCommand(*audit, context, "show", "Print the audit trail, oldest event first, as JSON",
                                [&context, showPath] {
                                    const auto projectURL = absolutePath(*showPath);
                                    openProject(projectURL);
                                    printJson(context.out, TeskAuditTrail::load(projectURL));
                                });
    show->add_option("path", *showPath, "The project package")->required();

    auto arguments = std::make_shared<AppendArguments>();
    CLI::App* append = addCommand(*audit, context, "append", "Record one event and print it as JSON",
                                  [&context, arguments] { appendEvent(context, *arguments); });
    append->add_option("path", arguments->path, "The project package")->required();
    append->add_option("event", arguments->event, "The event's name, e.g. code_created")->required();
    append->add_option("detail", arguments->detail, "A short subject; may be empty")->required();
}

} // namespace mibrel::cli
