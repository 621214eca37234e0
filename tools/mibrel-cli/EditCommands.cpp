#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "MibrelMac/App/MibrelAuditHook.h"
#include "MibrelMac/State/MibrelWorkspaceState.h"
#include "Platform/Json/JsonFields.h"
#include "tools/mibrel-cli/CliCommand.h"

namespace mibrel::cli {
namespace {

using platform::json::DecodingError;
using platform::json::JsonDocument;
using platform::json::JsonObjectReader;

// An operation's arguments, by the names the state object's operations give them.
class Arguments {
public:
    explicit Arguments(const JsonObjectReader& reader) : m_reader(reader) {}

    std::string text(std::string_view key) const { return m_reader.required<std::string>(key); }
    std::string textOr(std::string_view key) const { return m_reader.value<std::string>(key, ""); }
    Uuid id(std::string_view key = "id") const { return m_reader.required<Uuid>(key); }
    std::optional<Uuid> optionalID(std::string_view key) const { return m_reader.optional<Uuid>(key); }
    std::vector<Uuid> ids(std::string_view key) const { return m_reader.value<std::vector<Uuid>>(key, {}); }
    bool flag(std::string_view key) const { return m_reader.required<bool>(key); }
    template <class T>
    T record(std::string_view key = "value") const {
        return m_reader.required<T>(key);
    }
    template <class T>
    std::optional<T> optional(std::string_view key) const {
        return m_reader.optional<T>(key);
    }

private:
    const JsonObjectReader& m_reader;
};

using Result = std::optional<std::string>;
using Operation = std::function<Result(MibrelWorkspaceState&, const Arguments&)>;

Result idResult(const std::optional<Uuid>& id) { return id ? Result(id->uuidString()) : std::nullopt; }

// Runs an operation that returns nothing.
template <class Run>
Operation plain(Run run) {
    return [run](MibrelWorkspaceState& s, const Arguments& a) -> Result {
        run(s, a);
        return std::nullopt;
    };
}

const std::map<std::string, Operation, std::less<>>& operations() {
    using S = MibrelWorkspaceState;
    using A = Arguments;
    static const std::map<std::string, Operation, std::less<>> table = {
        {"addCode", plain([](S& s, const A& a) { s.addCode(a.text("name"), a.textOr("definition")); })},
        {"updateCode", plain([](S& s, const A& a) { s.updateCode(a.record<TeskCode>()); })},
        {"deleteCode", plain([](S& s, const A& a) { s.deleteCode(a.id()); })},
        {"addCategory", plain([](S& s, const A& a) { s.addCategory(a.text("name"), a.textOr("memo"), a.ids("codeIDs")); })},
        {"updateCategory", plain([](S& s, const A& a) { s.updateCategory(a.record<TeskCategory>()); })},
        {"deleteCategory", plain([](S& s, const A& a) { s.deleteCategory(a.id()); })},
        {"addTheme", plain([](S& s, const A& a) { s.addTheme(a.text("name"), a.textOr("memo"), a.ids("codeIDs")); })},
        {"updateTheme", plain([](S& s, const A& a) { s.updateTheme(a.record<TeskTheme>()); })},
        {"deleteTheme", plain([](S& s, const A& a) { s.deleteTheme(a.id()); })},
        {"addApplication",
         [](S& s, const A& a) -> Result {
             return s.addApplication(a.record<TeskResponseRef>("response"), a.id("codeID"),
                                     a.optional<std::string>("excerpt"), a.textOr("memo"))
                 .uuidString();
         }},
        {"deleteApplication", plain([](S& s, const A& a) { s.deleteApplication(a.id()); })},
        {"addQuote",
         [](S& s, const A& a) -> Result {
             return idResult(s.addQuote(a.record<TeskResponseRef>("response"), a.text("text"), a.ids("codeIDs"),
                                        a.ids("themeIDs"), a.textOr("memo"), a.textOr("rationale"),
                                        a.optional<TeskQuoteRole>("role")));
         }},
        {"updateQuote", plain([](S& s, const A& a) { s.updateQuote(a.record<TeskQuote>()); })},
        {"deleteQuote", plain([](S& s, const A& a) { s.deleteQuote(a.id()); })},
        {"addContextualLensReview",
         [](S& s, const A& a) -> Result {
             return s.addContextualLensReview(a.optionalID("codeID"), a.optionalID("themeID")).uuidString();
         }},
        {"updateContextualLensReview",
         plain([](S& s, const A& a) { s.updateContextualLensReview(a.record<TeskContextualLensReview>()); })},
        {"deleteContextualLensReview", plain([](S& s, const A& a) { s.deleteContextualLensReview(a.id()); })},
        {"addMemberCheck", plain([](S& s, const A& a) { s.addMemberCheck(a.record<TeskMemberCheck>()); })},
        {"saveReportSection",
         [](S& s, const A& a) -> Result { return s.saveReportSection(a.record<TeskReportSection>()).uuidString(); }},
        {"updateReportSection", plain([](S& s, const A& a) { s.updateReportSection(a.record<TeskReportSection>()); })},
        {"removeReportSection", plain([](S& s, const A& a) { s.removeReportSection(a.id()); })},
        {"moveReportSection", plain([](S& s, const A& a) { s.moveReportSection(a.id(), a.flag("up")); })},
        {"stageThemeForReport", [](S& s, const A& a) -> Result { return idResult(s.stageThemeForReport(a.id())); }},
        {"updateReportFinding", plain([](S& s, const A& a) { s.updateReportFinding(a.record<TeskReportFinding>()); })},
        {"removeReportFinding", plain([](S& s, const A& a) { s.removeReportFinding(a.id()); })},
        {"moveReportFinding", plain([](S& s, const A& a) { s.moveReportFinding(a.id(), a.flag("up")); })},
        {"updateReportDraft", plain([](S& s, const A& a) { s.updateReportDraft(a.optional<Bytes>("value")); })},
        {"setAsideDamagedWorkspaceAndContinue", plain([](S& s, const A&) { s.setAsideDamagedWorkspaceAndContinue(); })},
        {"undo", plain([](S& s, const A&) { s.undo(); })},
        {"redo", plain([](S& s, const A&) { s.redo(); })},
    };
    return table;
}

std::string operationNames() {
    std::string names;
    for (const auto& [name, operation] : operations()) names += (names.empty() ? "" : ", ") + name;
    return names;
}

// Runs one operation; a wrong name or wrong arguments are usage errors.
Result runOperation(MibrelWorkspaceState& state, const std::string& name, const JsonObjectReader& arguments) {
    const auto found = operations().find(name);
    if (found == operations().end()) throw UsageError("There is no operation “" + name + "”. The operations are: " + operationNames() + ".");
    try {
        return found->second(state, Arguments(arguments));
    } catch (const DecodingError& error) {
        throw UsageError("The arguments of " + name + " are not right. " + error.what());
    }
}

struct EditOptions {
    std::string path;
    std::string operation;
    std::string argumentsJSON;
    std::string script;
};

// What a script prints after each line.
struct ScriptLineReport {
    std::optional<std::string> error;
    std::optional<std::string> lastError;
    std::optional<std::string> loadFailureMessage;
    bool ok = true;
    std::string redoTitle;
    std::optional<std::string> result;
    std::string undoTitle;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = ScriptLineReport;
        return std::tuple{optional("error", &T::error),         optional("lastError", &T::lastError),
                          optional("loadFailureMessage", &T::loadFailureMessage),
                          required("ok", &T::ok),               required("redoTitle", &T::redoTitle),
                          optional("result", &T::result),       required("undoTitle", &T::undoTitle)};
    }
};

// The project bound as the window binds it, with edits logged to its audit trail.
std::unique_ptr<MibrelWorkspaceState> bindWorkspace(const std::filesystem::path& projectURL) {
    openProject(projectURL);
    auto state = std::make_unique<MibrelWorkspaceState>();
    state->bind(projectURL);
    state->onAuditEvent = auditTrailHook(*state, projectURL);
    return state;
}

ScriptLineReport runScriptLine(MibrelWorkspaceState& state, const std::string& line) {
    ScriptLineReport report;
    try {
        const JsonDocument document = JsonDocument::parse(line);
        const JsonObjectReader object(document.root());
        const std::string name = object.required<std::string>("op");
        const auto args = object.find("args");
        const JsonDocument empty = JsonDocument::parse("{}");
        report.result = runOperation(state, name, JsonObjectReader(args ? *args : empty.root()));
    } catch (const std::exception& error) {
        report.ok = false;
        report.error = error.what();
    }
    report.lastError = state.lastError();
    if (report.lastError) report.ok = false;
    state.setLastError(std::nullopt); // each line reports its own problems
    report.loadFailureMessage = state.loadFailureMessage();
    report.undoTitle = state.undoTitle();
    report.redoTitle = state.redoTitle();
    return report;
}

void runScript(CliContext& context, const EditOptions& options) {
    auto state = bindWorkspace(absolutePath(options.path));
    std::ifstream file;
    if (options.script != "-") {
        file.open(options.script);
        if (!file) throw std::runtime_error("The script “" + options.script + "” could not be read.");
    }
    std::istream& input = options.script == "-" ? std::cin : file;
    for (std::string line; std::getline(input, line);) {
        if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
        context.out << platform::json::encodeCompact(runScriptLine(*state, line)) << '\n';
    }
}

void runSingle(CliContext& context, const EditOptions& options) {
    auto state = bindWorkspace(absolutePath(options.path));
    if (state->loadFailureMessage() && options.operation != "setAsideDamagedWorkspaceAndContinue") {
        throw std::runtime_error(*state->loadFailureMessage());
    }
    const std::string argumentsJSON = options.argumentsJSON.empty() ? "{}" : options.argumentsJSON;
    std::optional<JsonDocument> document;
    try {
        document = JsonDocument::parse(argumentsJSON);
    } catch (const DecodingError& error) {
        throw UsageError(std::string("The arguments are not JSON. ") + error.what());
    }
    const Result result = runOperation(*state, options.operation, JsonObjectReader(document->root()));
    if (state->lastError()) throw std::runtime_error(*state->lastError());
    if (result) context.out << *result << '\n';
}

void edit(CliContext& context, const EditOptions& options) {
    if (options.script.empty() == options.operation.empty()) {
        throw UsageError("Give either an operation or --script, not both.");
    }
    if (options.script.empty()) {
        runSingle(context, options);
    } else {
        runScript(context, options);
    }
}

} // namespace

void addEditCommands(CLI::App& app, CliContext& context) {
    auto options = std::make_shared<EditOptions>();
    CLI::App* command = addCommand(
        app, context, "edit",
        "Run workspace operations exactly as the window does: each one saves, can be undone within the run, and is "
        "logged to the audit trail. Operations: " +
            operationNames() + ".",
        [&context, options] { edit(context, *options); });
    command->add_option("path", options->path, "The project package")->required();
    command->add_option("operation", options->operation, "The operation's name, e.g. addCode");
    command->add_option("arguments", options->argumentsJSON,
                        "Its arguments as a JSON object, e.g. '{\"name\":\"Support\"}'; ids are \"id\", records \"value\"");
    command->add_option("--script", options->script,
                        "A file of JSON lines {\"op\":…,\"args\":{…}} (\"-\" for standard input); prints a JSON line "
                        "after each");
}

} // namespace mibrel::cli
