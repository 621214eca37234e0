// apple-helper: answers the application's requests, one JSON line each, on stdin/stdout.
#include <iostream>
#include <memory>

#include "MibrelMac/Media/MibrelAudioDecoder.h"
#include "tools/apple-helper/HelperOperations.h"
#include "tools/apple-helper/PocketSphinxRecognizer.h"
#include "tools/apple-helper/ResponseChannel.h"

using namespace mibrel::applehelper;

int main() {
    const auto channel = ResponseChannel::takeOverStandardStreams();
    if (!channel) return 2;
    silenceLibraryLogging();

    SpeechTranscriber transcriber(mibrel::media::decodeMonoPcm16, [] {
        const auto model = PocketSphinxModel::englishIn(PocketSphinxModel::configuredFolder());
        return std::make_unique<PocketSphinxRecognizer>(model);
    });
    const LanguageModelClient assistant(LanguageModelSettings::fromEnvironment());
    HelperServer server;
    addHelperOperations(server, transcriber, assistant);

    std::ios::sync_with_stdio(false);
    const bool delivered = server.serve(std::cin, [&](std::string_view line) { return channel->send(line); });
    return delivered ? 0 : 1;
}
