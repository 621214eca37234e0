#include "tools/apple-helper/SpeechTranscriber.h"

#include <algorithm>
#include <cctype>
#include <new>
#include <string>
#include <system_error>

#include "tools/apple-helper/JsonText.h"
#include "tools/apple-helper/RequestError.h"

namespace mibrel::applehelper {
namespace fs = std::filesystem;
namespace {

bool isEnglishUS(std::string_view locale) {
    std::string normal(locale);
    std::replace(normal.begin(), normal.end(), '_', '-');
    std::transform(normal.begin(), normal.end(), normal.begin(), [](unsigned char c) { return std::tolower(c); });
    return normal == "en-us";
}

[[noreturn]] void unreadable(const std::string& reason) {
    const bool closed = !reason.empty() && (reason.back() == '.' || reason.back() == '!');
    throw RequestError("The audio file could not be read: " + reason + (closed ? "" : "."));
}

fs::path checkedPath(std::string_view path) {
    if (path.empty()) throw RequestError("The audio file path is empty.");
    if (path.find('\0') != std::string_view::npos) throw RequestError("The audio file path is not valid.");
    fs::path file(path);
    if (!file.is_absolute()) throw RequestError("The audio file path must be absolute: " + shortened(path, 300) + ".");
    std::error_code error;
    const auto status = fs::status(file, error);
    if (!fs::exists(status)) unreadable(file.string() + " does not exist");
    if (fs::is_directory(status)) unreadable(file.string() + " is a folder");
    return file;
}

} // namespace

SpeechTranscriber::SpeechTranscriber(Decoder decode, RecognizerFactory makeRecognizer, int maxMinutes)
    : m_decode(std::move(decode)), m_makeRecognizer(std::move(makeRecognizer)), m_maxMinutes(maxMinutes) {}

std::vector<RecognizedWord> SpeechTranscriber::transcribe(std::string_view path, std::string_view locale) {
    if (!isEnglishUS(locale)) {
        throw RequestError("Speech recognition is available in US English (en-US) only, not \"" +
                           shortened(locale, 40) + "\".");
    }
    const fs::path file = checkedPath(path);
    const std::vector<std::int16_t> samples = samplesOf(file);
    auto words = recognizer().recognize(samples);
    if (words.empty()) throw RequestError("No speech was recognized in this recording.");
    return words;
}

std::vector<std::int16_t> SpeechTranscriber::samplesOf(const fs::path& file) const {
    const std::size_t maxSamples = static_cast<std::size_t>(m_maxMinutes) * 60 * SpeechRecognizer::sampleRate;
    std::vector<std::int16_t> samples;
    bool tooLong = false;
    // Past the limit samples are dropped rather than thrown out of the decoder's
    // callback, which need not expect exceptions.
    const auto keep = [&](std::span<const std::int16_t> block) {
        if (tooLong || samples.size() + block.size() > maxSamples) tooLong = true;
        else samples.insert(samples.end(), block.begin(), block.end());
    };
    try {
        m_decode(file, SpeechRecognizer::sampleRate, keep);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        unreadable(error.what());
    }
    if (tooLong) {
        throw RequestError("The recording is longer than the " + std::to_string(m_maxMinutes) +
                           "-minute limit; transcribe it in shorter parts.");
    }
    return samples;
}

SpeechRecognizer& SpeechTranscriber::recognizer() {
    // A failed load is not remembered: the model may be installed before the next try.
    if (!m_recognizer) m_recognizer = m_makeRecognizer();
    return *m_recognizer;
}

} // namespace mibrel::applehelper
