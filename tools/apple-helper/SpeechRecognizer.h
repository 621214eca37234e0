#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace mibrel::applehelper {

struct RecognizedWord {
    std::string text;
    double start = 0;    // seconds from the start of the recording
    double duration = 0; // seconds
};

// A speech recognition engine. The protocol only sees this, so another engine can
// take PocketSphinx's place without the application noticing.
class SpeechRecognizer {
public:
    static constexpr int sampleRate = 16000;

    virtual ~SpeechRecognizer() = default;

    // The spoken words of 16-bit mono samples at `sampleRate`, in order, without
    // silence or noise markers; empty when nothing was recognised.
    virtual std::vector<RecognizedWord> recognize(std::span<const std::int16_t> samples) = 0;
};

} // namespace mibrel::applehelper
