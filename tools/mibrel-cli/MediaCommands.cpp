#include <charconv>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <tuple>

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "MibrelCore/Import/TeskMediaImport.h"
#include "MibrelMac/Helper/MibrelAppleHelperSidecar.h"
#include "MibrelMac/Media/MibrelMediaAsset.h"
#include "Platform/Files/FileSystem.h"
#include "tools/mibrel-cli/BoundProject.h"
#include "tools/mibrel-cli/CliCommand.h"

namespace mibrel::cli {
namespace {

struct TranscriptionReport {
    TeskSource source;
    TeskTranscript transcript;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TranscriptionReport;
        return std::tuple{required("source", &T::source), required("transcript", &T::transcript)};
    }
};

struct MediaOptions {
    std::string project;
    std::string file;
    std::optional<std::string> kind;
    bool approveSpeech = false;
    std::string sourceID;
    bool force = false;
    std::string op;
    std::optional<std::string> args;
};

// Runs the event loop until the copies and transcriptions have come back.
void waitUntilIdle(const MibrelSourcesState& sources) {
    const auto busy = [&] { return sources.mediaImportsInFlight() > 0 || !sources.transcribing().empty(); };
    if (!busy()) return;
    QEventLoop loop;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if (!busy()) loop.quit();
    });
    poll.start(20);
    loop.exec();
}

TeskMediaKind kindOf(const MediaOptions& options) {
    if (options.kind) return *options.kind == "video" ? TeskMediaKind::video : TeskMediaKind::audio;
    const auto kind = TeskMediaImport::mediaKind(platform::files::lowercasedExtension(options.file));
    if (!kind) throw UsageError("Mibrel cannot tell whether this is audio or video; pass --kind audio or --kind video.");
    return *kind;
}

void printOutcome(CliContext& context, BoundProject& project, const Uuid& sourceID) {
    const TeskSource* source = project.sources.source(sourceID);
    if (!source) throw std::runtime_error(project.lastError().value_or("The source is gone."));
    printJson(context.out, TranscriptionReport{*source, project.sources.transcript(sourceID)});
    if (project.sources.lastError()) throw std::runtime_error(*project.sources.lastError());
}

void importMedia(CliContext& context, const MediaOptions& options) {
    ensureEventLoop();
    const TeskMediaKind kind = kindOf(options);
    const auto file = absolutePath(options.file);
    if (!std::filesystem::is_regular_file(file)) throw std::runtime_error("The media file for this source could not be found.");
    BoundProject project(openedProject(options.project));
    project.sources.importMedia(file, kind);
    waitUntilIdle(project.sources);
    if (project.sources.lastError()) throw std::runtime_error(*project.sources.lastError());
    const Uuid sourceID = *project.sources.selectedSourceID();
    if (options.approveSpeech && project.sources.pendingSpeechIntro()) {
        project.sources.confirmSpeechIntro();
        waitUntilIdle(project.sources);
    }
    printOutcome(context, project, sourceID);
}

void transcribe(CliContext& context, const MediaOptions& options) {
    ensureEventLoop();
    BoundProject project(openedProject(options.project));
    const auto sourceID = Uuid::parse(options.sourceID);
    const TeskSource* source = sourceID ? project.sources.source(*sourceID) : nullptr;
    if (!source) throw UsageError("No source has the id " + options.sourceID + ".");
    if (!source->mediaFilename) throw UsageError("This source has no recording to transcribe.");
    project.sources.transcribeConfirmed(*sourceID, options.force);
    waitUntilIdle(project.sources);
    printOutcome(context, project, *sourceID);
}

void callHelper(CliContext& context, const MediaOptions& options) {
    rapidjson::Document args(rapidjson::kObjectType);
    if (options.args) {
        args.Parse(options.args->c_str());
        if (args.HasParseError() || !args.IsObject()) throw UsageError("The arguments must be one JSON object.");
    }
    const auto result = MibrelAppleHelperSidecar::shared().call(options.op, args);
    if (!result) {
        context.out << "null\n";
        return;
    }
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    result->Accept(writer);
    context.out << buffer.GetString() << '\n';
}

void printDuration(CliContext& context, const std::string& file) {
    const auto seconds = media::mediaDurationSeconds(absolutePath(file));
    if (!seconds) throw std::runtime_error("Mibrel could not read the duration of this file.");
    char text[32];
    const auto end = std::to_chars(std::begin(text), std::end(text), *seconds).ptr;
    context.out << std::string(text, end) << '\n';
}

} // namespace

void addMediaCommands(CLI::App& app, CLI::App& importCommand, CliContext& context) {
    auto options = std::make_shared<MediaOptions>();
    CLI::App* media = addCommand(importCommand, context, "media",
                                 "Import a recording, wait for the copy and its transcription; prints source and transcript",
                                 [&context, options] { importMedia(context, *options); });
    media->add_option("project", options->project, "The project package")->required();
    media->add_option("file", options->file, "The recording (.m4a .mp3 .wav .aac .caf .mov .mp4 .m4v .mpeg .mpg)")
        ->required();
    media->add_option("--kind", options->kind, "audio or video (default: by the file's ending)")
        ->check(CLI::IsMember({"audio", "video"}));
    media->add_flag("--approve-speech", options->approveSpeech,
                    "Approve on-device speech recognition, as the window's first-use question does");

    CLI::App* run = addCommand(app, context, "transcribe", "Transcribe a recording's source again; prints source and transcript",
                               [&context, options] { transcribe(context, *options); });
    run->add_option("project", options->project, "The project package")->required();
    run->add_option("sourceID", options->sourceID, "The source's id")->required();
    run->add_flag("--force", options->force, "Prepare the audio afresh instead of reusing it");

    CLI::App* helper = app.add_subcommand("helper", "Talk to the on-device helper program");
    helper->require_subcommand(1);
    CLI::App* call = addCommand(*helper, context, "call", "Send one request and print its result as JSON",
                                [&context, options] { callHelper(context, *options); });
    call->add_option("op", options->op, "speech.transcribe, ai.status or ai.generate")->required();
    call->add_option("args", options->args, "The arguments as one JSON object (default: {})");

    CLI::App* mediaInfo = app.add_subcommand("media", "Inspect recordings");
    mediaInfo->require_subcommand(1);
    CLI::App* duration = addCommand(*mediaInfo, context, "duration", "Print a recording's length in seconds",
                                    [&context, options] { printDuration(context, options->file); });
    duration->add_option("file", options->file, "The recording")->required();
}

} // namespace mibrel::cli
