#include <algorithm>
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
#include "tools/mibrel-cli/BoundProject.h"
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
template <class State>
using Operation = std::function<Result(State&, const Arguments&)>;
template <class State>
using OperationTable = std::map<std::string, Operation<State>, std::less<>>;

using EditTargets = BoundProject;

Result idResult(const std::optional<Uuid>& id) { return id ? Result(id->uuidString()) : std::nullopt; }

// Runs an operation that returns nothing.
template <class State, class Run>
Operation<State> plain(Run run) {
    return [run](State& s, const Arguments& a) -> Result {
        run(s, a);
        return std::nullopt;
    };
}

const OperationTable<MibrelWorkspaceState>& workspaceOperations() {
    using S = MibrelWorkspaceState;
    using A = Arguments;
    static const OperationTable<S> table = {
        {"addCode", plain<S>([](S& s, const A& a) { s.addCode(a.text("name"), a.textOr("definition")); })},
        {"updateCode", plain<S>([](S& s, const A& a) { s.updateCode(a.record<TeskCode>()); })},
        {"deleteCode", plain<S>([](S& s, const A& a) { s.deleteCode(a.id()); })},
        {"addCategory", plain<S>([](S& s, const A& a) { s.addCategory(a.text("name"), a.textOr("memo"), a.ids("codeIDs")); })},
        {"updateCategory", plain<S>([](S& s, const A& a) { s.updateCategory(a.record<TeskCategory>()); })},
        {"deleteCategory", plain<S>([](S& s, const A& a) { s.deleteCategory(a.id()); })},
        {"addTheme", plain<S>([](S& s, const A& a) { s.addTheme(a.text("name"), a.textOr("memo"), a.ids("codeIDs")); })},
        {"updateTheme", plain<S>([](S& s, const A& a) { s.updateTheme(a.record<TeskTheme>()); })},
        {"deleteTheme", plain<S>([](S& s, const A& a) { s.deleteTheme(a.id()); })},
        {"addApplication",
         [](S& s, const A& a) -> Result {
             return s.addApplication(a.record<TeskResponseRef>("response"), a.id("codeID"),
                                     a.optional<std::string>("excerpt"), a.textOr("memo"))
                 .uuidString();
         }},
        {"deleteApplication", plain<S>([](S& s, const A& a) { s.deleteApplication(a.id()); })},
        {"addQuote",
         [](S& s, const A& a) -> Result {
             return idResult(s.addQuote(a.record<TeskResponseRef>("response"), a.text("text"), a.ids("codeIDs"),
                                        a.ids("themeIDs"), a.textOr("memo"), a.textOr("rationale"),
                                        a.optional<TeskQuoteRole>("role")));
         }},
        {"updateQuote", plain<S>([](S& s, const A& a) { s.updateQuote(a.record<TeskQuote>()); })},
        {"deleteQuote", plain<S>([](S& s, const A& a) { s.deleteQuote(a.id()); })},
        {"addContextualLensReview",
         [](S& s, const A& a) -> Result {
             return s.addContextualLensReview(a.optionalID("codeID"), a.optionalID("themeID")).uuidString();
         }},
        {"updateContextualLensReview",
         plain<S>([](S& s, const A& a) { s.updateContextualLensReview(a.record<TeskContextualLensReview>()); })},
        {"deleteContextualLensReview", plain<S>([](S& s, const A& a) { s.deleteContextualLensReview(a.id()); })},
        {"addMemberCheck", plain<S>([](S& s, const A& a) { s.addMemberCheck(a.record<TeskMemberCheck>()); })},
        {"saveReportSection",
         [](S& s, const A& a) -> Result { return s.saveReportSection(a.record<TeskReportSection>()).uuidString(); }},
        {"updateReportSection", plain<S>([](S& s, const A& a) { s.updateReportSection(a.record<TeskReportSection>()); })},
        {"removeReportSection", plain<S>([](S& s, const A& a) { s.removeReportSection(a.id()); })},
        {"moveReportSection", plain<S>([](S& s, const A& a) { s.moveReportSection(a.id(), a.flag("up")); })},
        {"stageThemeForReport", [](S& s, const A& a) -> Result { return idResult(s.stageThemeForReport(a.id())); }},
        {"updateReportFinding", plain<S>([](S& s, const A& a) { s.updateReportFinding(a.record<TeskReportFinding>()); })},
        {"removeReportFinding", plain<S>([](S& s, const A& a) { s.removeReportFinding(a.id()); })},
        {"moveReportFinding", plain<S>([](S& s, const A& a) { s.moveReportFinding(a.id(), a.flag("up")); })},
        {"updateReportDraft", plain<S>([](S& s, const A& a) { s.updateReportDraft(a.optional<Bytes>("value")); })},
        {"setAsideDamagedWorkspaceAndContinue", plain<S>([](S& s, const A&) { s.setAsideDamagedWorkspaceAndContinue(); })},
        {"undo", plain<S>([](S& s, const A&) { s.undo(); })},
        {"redo", plain<S>([](S& s, const A&) { s.redo(); })},
    };
    return table;
}

const OperationTable<MibrelSourcesState>& sourcesOperations() {
    using S = MibrelSourcesState;
    using A = Arguments;
    static const OperationTable<S> table = {
        {"importTranscript",
         [](S& s, const A& a) -> Result {
             s.importTranscript(std::filesystem::absolute(a.text("path")));
             return s.lastError() ? std::nullopt : idResult(s.selectedSourceID());
         }},
        {"updateSource", plain<S>([](S& s, const A& a) { s.updateSource(a.record<TeskSource>()); })},
        {"updateTranscript",
         plain<S>([](S& s, const A& a) { s.updateTranscript(a.record<TeskTranscript>(), a.id("sourceID")); })},
        {"deleteSource", plain<S>([](S& s, const A& a) { s.deleteSource(a.id()); })},
        {"updateTranscriptSegmentText", plain<S>([](S& s, const A& a) {
             s.updateTranscriptSegmentText(a.id("sourceID"), a.text("segmentID"), a.text("text"));
         })},
        {"splitTranscriptSegment", plain<S>([](S& s, const A& a) {
             s.splitTranscriptSegment(a.id("sourceID"), a.text("segmentID"), a.textOr("firstText"), a.textOr("secondText"));
         })},
        {"mergeTranscriptSegmentWithNext",
         plain<S>([](S& s, const A& a) { s.mergeTranscriptSegmentWithNext(a.id("sourceID"), a.text("segmentID")); })},
        {"markTranscriptReviewed", plain<S>([](S& s, const A& a) { s.markTranscriptReviewed(a.id("sourceID")); })},
        {"addMediaNote", plain<S>([](S& s, const A& a) {
             s.addMediaNote(a.id("sourceID"), a.record<double>("timestamp"), a.text("text"));
         })},
        {"updateMediaNote",
         plain<S>([](S& s, const A& a) { s.updateMediaNote(a.id("sourceID"), a.id("noteID"), a.text("text")); })},
        {"deleteMediaNote", plain<S>([](S& s, const A& a) { s.deleteMediaNote(a.id("sourceID"), a.id("noteID")); })},
    };
    return table;
}

std::string operationNames() {
    std::vector<std::string> names;
    for (const auto& entry : workspaceOperations()) names.push_back(entry.first);
    for (const auto& entry : sourcesOperations()) names.push_back(entry.first);
    std::sort(names.begin(), names.end());
    std::string joined;
    for (const auto& name : names) joined += (joined.empty() ? "" : ", ") + name;
    return joined;
}

template <class State>
std::optional<Result> runIn(const OperationTable<State>& table, State& state, const std::string& name,
                            const Arguments& arguments) {
    const auto found = table.find(name);
    if (found == table.end()) return std::nullopt;
    return found->second(state, arguments);
}

// Runs one operation; a wrong name or wrong arguments are usage errors.
Result runOperation(EditTargets& targets, const std::string& name, const JsonObjectReader& reader) {
    const Arguments arguments(reader);
    try {
        if (auto result = runIn(workspaceOperations(), targets.workspace, name, arguments)) return *result;
        if (auto result = runIn(sourcesOperations(), targets.sources, name, arguments)) return *result;
    } catch (const DecodingError& error) {
        throw UsageError("The arguments of " + name + " are not right. " + error.what());
    }
    throw UsageError("There is no operation “" + name + "”. The operations are: " + operationNames() + ".");
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
std::unique_ptr<EditTargets> bindProject(const std::string& typed) {
    const auto projectURL = openedProject(typed);
    auto targets = std::make_unique<EditTargets>(projectURL);
    targets->workspace.onAuditEvent = auditTrailHook(targets->workspace, projectURL);
    return targets;
}

ScriptLineReport runScriptLine(EditTargets& targets, const std::string& line) {
    MibrelWorkspaceState& state = targets.workspace;
    ScriptLineReport report;
    try {
        const JsonDocument document = JsonDocument::parse(line);
        const JsonObjectReader object(document.root());
        const std::string name = object.required<std::string>("op");
        const auto args = object.find("args");
        const JsonDocument empty = JsonDocument::parse("{}");
        report.result = runOperation(targets, name, JsonObjectReader(args ? *args : empty.root()));
    } catch (const std::exception& error) {
        report.ok = false;
        report.error = error.what();
    }
    report.lastError = targets.lastError();
    if (report.lastError) report.ok = false;
    targets.clearLastError(); // each line reports its own problems
    report.loadFailureMessage = state.loadFailureMessage();
    report.undoTitle = state.undoTitle();
    report.redoTitle = state.redoTitle();
    return report;
}

void runScript(CliContext& context, const EditOptions& options) {
    auto targets = bindProject(options.path);
    std::ifstream file;
    if (options.script != "-") {
        file.open(options.script);
        if (!file) throw std::runtime_error("The script “" + options.script + "” could not be read.");
    }
    std::istream& input = options.script == "-" ? std::cin : file;
    for (std::string line; std::getline(input, line);) {
        if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
        context.out << platform::json::encodeCompact(runScriptLine(*targets, line)) << '\n';
    }
}

void runSingle(CliContext& context, const EditOptions& options) {
    auto targets = bindProject(options.path);
    const auto& loadFailure = targets->workspace.loadFailureMessage();
    if (loadFailure && options.operation != "setAsideDamagedWorkspaceAndContinue") throw std::runtime_error(*loadFailure);
    const std::string argumentsJSON = options.argumentsJSON.empty() ? "{}" : options.argumentsJSON;
    std::optional<JsonDocument> document;
    try {
        document = JsonDocument::parse(argumentsJSON);
    } catch (const DecodingError& error) {
        throw UsageError(std::string("The arguments are not JSON. ") + error.what());
    }
    const Result result = runOperation(*targets, options.operation, JsonObjectReader(document->root()));
    if (const auto error = targets->lastError()) throw std::runtime_error(*error);
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
        "Run workspace and source operations exactly as the window does: each one saves; workspace edits can be "
        "undone within the run and are logged to the audit trail. Operations: " +
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
