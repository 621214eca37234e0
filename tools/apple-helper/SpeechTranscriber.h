#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "tools/apple-helper/SpeechRecognizer.h"

namespace mibrel::applehelper {

// Turns a recording into words: decodes it, and hands the samples to a recogniser
// that is created on first use and kept, since loading a model takes seconds.
class SpeechTranscriber {
public:
    using SampleConsumer = std::function<void(std::span<const std::int16_t>)>;
    // Decodes a file to mono 16-bit samples at the given rate; throws with a readable reason.
    using Decoder = std::function<void(const std::filesystem::path&, int sampleRate, const SampleConsumer&)>;
    using RecognizerFactory = std::function<std::unique_ptr<SpeechRecognizer>()>;

    static constexpr int defaultMaxMinutes = 15;

    SpeechTranscriber(Decoder decode, RecognizerFactory makeRecognizer, int maxMinutes = defaultMaxMinutes);

    // The recognised words, never none: throws RequestError for a bad path or locale,
    // an unreadable file, a recording too long, or one in which no speech was found.
    std::vector<RecognizedWord> transcribe(std::string_view path, std::string_view locale);

private:
    std::vector<std::int16_t> samplesOf(const std::filesystem::path& file) const;
    SpeechRecognizer& recognizer();

    Decoder m_decode;
    RecognizerFactory m_makeRecognizer;
    int m_maxMinutes;
    std::unique_ptr<SpeechRecognizer> m_recognizer;
};

} // namespace mibrel::applehelper
