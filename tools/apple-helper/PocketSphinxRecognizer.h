#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "tools/apple-helper/SpeechRecognizer.h"

struct ps_decoder_s;

namespace mibrel::applehelper {

// The files of a PocketSphinx model: acoustic model folder, language model, dictionary.
struct PocketSphinxModel {
    std::filesystem::path acousticModel;
    std::filesystem::path languageModel;
    std::filesystem::path dictionary;

    // The US English model laid out as Debian's pocketsphinx-en-us installs it.
    static PocketSphinxModel englishIn(const std::filesystem::path& folder);
    // MIBREL_SPEECH_MODEL_DIR when set, otherwise Debian's folder.
    static std::filesystem::path configuredFolder();
};

class PocketSphinxRecognizer final : public SpeechRecognizer {
public:
    // Loads the model, which takes a few seconds; throws RequestError when it is
    // missing or cannot be loaded.
    explicit PocketSphinxRecognizer(const PocketSphinxModel& model);
    ~PocketSphinxRecognizer() override;
    PocketSphinxRecognizer(const PocketSphinxRecognizer&) = delete;
    PocketSphinxRecognizer& operator=(const PocketSphinxRecognizer&) = delete;

    std::vector<RecognizedWord> recognize(std::span<const std::int16_t> samples) override;

private:
    ps_decoder_s* m_decoder = nullptr;
    std::vector<float> m_initialMean;
};

// The word a PocketSphinx segment stands for: nothing for silence and noise
// ("<sil>", "[NOISE]", "++BREATH++"), and "read" for a pronunciation variant "read(2)".
std::optional<std::string> spokenWord(std::string_view token);

} // namespace mibrel::applehelper
