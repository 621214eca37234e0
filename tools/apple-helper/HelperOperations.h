#pragma once

#include "tools/apple-helper/HelperServer.h"
#include "tools/apple-helper/LanguageModelClient.h"
#include "tools/apple-helper/SpeechTranscriber.h"

namespace mibrel::applehelper {

// Adds "speech.transcribe", "ai.status" and "ai.generate": reading their arguments and
// shaping their results. Both services must outlive the server.
void addHelperOperations(HelperServer& server, SpeechTranscriber& transcriber, const LanguageModelClient& assistant);

} // namespace mibrel::applehelper
