#include "tools/apple-helper/PocketSphinxRecognizer.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <system_error>
#include <type_traits>

#include <pocketsphinx.h>
#include <sphinxbase/cmn.h>
#include <sphinxbase/err.h>
#include <sphinxbase/feat.h>

#include "tools/apple-helper/RequestError.h"

namespace mibrel::applehelper {
namespace fs = std::filesystem;
namespace {

constexpr double framesPerSecond = 100.0;
// Fed block by block as live audio would be: handed the whole recording as one block
// (full_utt), this model recognises noticeably fewer words.
constexpr std::size_t samplesPerBlock = 2048;

void requirePresent(const fs::path& path, bool folder) {
    std::error_code error;
    const auto status = fs::status(path, error);
    if (folder ? fs::is_directory(status) : fs::is_regular_file(status)) return;
    throw RequestError("The speech recognition model is not installed: " + path.string() +
                       " is missing. Install the package pocketsphinx-en-us, or set MIBREL_SPEECH_MODEL_DIR "
                       "to the folder that holds the model.");
}

// PocketSphinx ends the whole process on some missing model files instead of
// reporting them, so they are checked first.
void requireComplete(const PocketSphinxModel& model) {
    requirePresent(model.acousticModel, true);
    for (const char* name : {"mdef", "means", "variances", "transition_matrices", "noisedict"}) {
        requirePresent(model.acousticModel / name, false);
    }
    requirePresent(model.languageModel, false);
    requirePresent(model.dictionary, false);
}

RecognizedWord timedWord(std::string text, int firstFrame, int lastFrame, int recordingFrames) {
    const int start = std::clamp(firstFrame, 0, recordingFrames);
    const int end = std::clamp(lastFrame + 1, start, recordingFrames);
    return RecognizedWord{.text = std::move(text),
                          .start = start / framesPerSecond,
                          .duration = (end - start) / framesPerSecond};
}

static_assert(std::is_same_v<mfcc_t, float>, "the saved cepstral mean is kept as floats");

// Null for a model without cepstral mean normalisation.
cmn_t* cepstralMean(ps_decoder_t* decoder) {
    return ps_get_feat(decoder)->cmn_struct;
}

} // namespace

PocketSphinxModel PocketSphinxModel::englishIn(const fs::path& folder) {
    return PocketSphinxModel{.acousticModel = folder / "en-us",
                             .languageModel = folder / "en-us.lm.bin",
                             .dictionary = folder / "cmudict-en-us.dict"};
}

fs::path PocketSphinxModel::configuredFolder() {
    const char* folder = std::getenv("MIBREL_SPEECH_MODEL_DIR");
    if (folder && *folder) return folder;
    return "/usr/share/pocketsphinx/model/en-us";
}

PocketSphinxRecognizer::PocketSphinxRecognizer(const PocketSphinxModel& model) {
    requireComplete(model);
    err_set_logfp(nullptr);
    // Silence is kept: removing it shifts every later word's time. One search pass with
    // at most 3,000 active states a frame runs in about a quarter of real time here, where
    // the full search took three quarters, and recognised these voices no worse.
    cmd_ln_t* config = cmd_ln_init(nullptr, ps_args(), TRUE, "-hmm", model.acousticModel.c_str(), "-lm",
                                   model.languageModel.c_str(), "-dict", model.dictionary.c_str(), "-logfn",
                                   "/dev/null", "-remove_silence", "no", "-fwdflat", "no", "-bestpath", "no",
                                   "-maxhmmpf", "3000", nullptr);
    if (!config) throw RequestError("The speech recognition model could not be configured.");
    m_decoder = ps_init(config);
    cmd_ln_free_r(config); // the decoder keeps its own reference
    if (!m_decoder) {
        throw RequestError("The speech recognition model in " + model.acousticModel.parent_path().string() +
                           " could not be loaded; it may be damaged.");
    }
    if (const cmn_t* mean = cepstralMean(m_decoder)) {
        m_initialMean.assign(mean->cmn_mean, mean->cmn_mean + mean->veclen);
    }
}

PocketSphinxRecognizer::~PocketSphinxRecognizer() {
    ps_free(m_decoder);
}

std::vector<RecognizedWord> PocketSphinxRecognizer::recognize(std::span<const std::int16_t> samples) {
    if (samples.empty()) return {};
    // Each recording starts afresh: frames counted from zero, and the running cepstral
    // mean of the last one forgotten, which would otherwise change what is heard here.
    ps_start_stream(m_decoder);
    if (cmn_t* mean = cepstralMean(m_decoder)) cmn_live_set(mean, m_initialMean.data());
    if (ps_start_utt(m_decoder) < 0) throw RequestError("The speech recognizer could not start.");
    for (std::size_t offset = 0; offset < samples.size(); offset += samplesPerBlock) {
        const std::size_t count = std::min(samplesPerBlock, samples.size() - offset);
        if (ps_process_raw(m_decoder, samples.data() + offset, count, FALSE, FALSE) < 0) {
            ps_end_utt(m_decoder);
            throw RequestError("The speech recognizer failed on this recording.");
        }
    }
    if (ps_end_utt(m_decoder) < 0) throw RequestError("The speech recognizer failed on this recording.");

    const int frames = static_cast<int>(static_cast<double>(samples.size()) / sampleRate * framesPerSecond);
    std::vector<RecognizedWord> words;
    // ps_seg_next frees the iterator when it reaches the end.
    for (ps_seg_t* segment = ps_seg_iter(m_decoder); segment; segment = ps_seg_next(segment)) {
        const char* token = ps_seg_word(segment);
        auto word = token ? spokenWord(token) : std::nullopt;
        if (!word) continue;
        int firstFrame = 0, lastFrame = 0;
        ps_seg_frames(segment, &firstFrame, &lastFrame);
        words.push_back(timedWord(std::move(*word), firstFrame, lastFrame, frames));
    }
    return words;
}

std::optional<std::string> spokenWord(std::string_view token) {
    if (token.empty()) return std::nullopt;
    const char first = token.front(), last = token.back();
    if (first == '<' || first == '[' || last == '>' || last == ']' || token.starts_with("++")) return std::nullopt;
    // "read(2)": the second pronunciation in the dictionary.
    const auto open = token.rfind('(');
    if (last == ')' && open != std::string_view::npos) {
        const auto digits = token.substr(open + 1, token.size() - open - 2);
        const auto isDigit = [](unsigned char c) { return std::isdigit(c) != 0; };
        if (!digits.empty() && std::all_of(digits.begin(), digits.end(), isDigit)) token = token.substr(0, open);
    }
    if (token.empty()) return std::nullopt;
    return std::string(token);
}

} // namespace mibrel::applehelper
