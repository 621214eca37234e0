#include <atomic>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "MibrelMac/Helper/MibrelAppleHelperSidecar.h"
#include "MibrelMac/Helper/MibrelResourcePaths.h"
#include "MibrelMac/Media/MibrelAudioDecoder.h"
#include "MibrelMac/State/MibrelTranscriptionRun.h"

namespace mibrel::bench {
namespace {

namespace fs = std::filesystem;

constexpr int kRate = 16000;
constexpr double kSeconds = 300;

// Five minutes of the fixture's sentence, each followed by a second of silence, as a
// 16 kHz WAV in the temporary folder.
const fs::path& fiveMinuteRecording() {
    static const fs::path file = [] {
        std::vector<std::int16_t> sentence;
        media::decodeMonoPcm16(fs::path(MIBREL_MEDIA_FIXTURES) / "speech.wav", kRate,
                               [&](std::span<const std::int16_t> block) { sentence.insert(sentence.end(), block.begin(), block.end()); });
        std::vector<std::int16_t> samples;
        while (samples.size() < static_cast<std::size_t>(kSeconds * kRate)) {
            samples.insert(samples.end(), sentence.begin(), sentence.end());
            samples.insert(samples.end(), kRate, 0);
        }
        samples.resize(static_cast<std::size_t>(kSeconds * kRate));
        const fs::path path = fs::temp_directory_path() / "mibrel-bench-five-minutes.wav";
        std::ofstream out(path, std::ios::binary);
        const auto put = [&out](std::uint32_t value, int size) {
            for (int i = 0; i < size; ++i) out.put(static_cast<char>((value >> (8 * i)) & 0xFF));
        };
        const auto bytes = static_cast<std::uint32_t>(samples.size() * 2);
        out << "RIFF";
        put(36 + bytes, 4);
        out << "WAVEfmt ";
        put(16, 4), put(1, 2), put(1, 2), put(kRate, 4), put(kRate * 2, 4), put(2, 2), put(16, 2);
        out << "data";
        put(bytes, 4);
        out.write(reinterpret_cast<const char*>(samples.data()), bytes);
        return path;
    }();
    return file;
}

MibrelAppleHelperSidecar& helper() {
    static MibrelAppleHelperSidecar client(&MibrelResourcePaths::appleHelperExecutable);
    return client;
}

// Seconds of work per second of audio, as the counter the figures are read from.
template <class Run>
void measureRealTimeFactor(benchmark::State& state, Run run) {
    helper().call("ai.status", rapidjson::Document(rapidjson::kObjectType)); // start the helper first
    for (auto _ : state) {
        const auto started = std::chrono::steady_clock::now();
        benchmark::DoNotOptimize(run());
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - started;
        state.counters["realTimeFactor"] = elapsed.count() / kSeconds;
    }
}

// The helper alone, the whole file in one request.
void BM_HelperWholeFile(benchmark::State& state) {
    measureRealTimeFactor(state, [] { return helper().transcribe(fiveMinuteRecording(), "en-US"); });
}

// What a researcher waits for: 12-second chunks exported and sent one after another.
void BM_TranscriptionInChunks(benchmark::State& state) {
    const std::atomic<bool> running{false};
    measureRealTimeFactor(state, [&] {
        return MibrelTranscription::transcribeCompleteMedia(fiveMinuteRecording(), helper(), running, nullptr);
    });
}

BENCHMARK(BM_HelperWholeFile)->Unit(benchmark::kSecond)->Iterations(1)->UseRealTime();
BENCHMARK(BM_TranscriptionInChunks)->Unit(benchmark::kSecond)->Iterations(1)->UseRealTime();

} // namespace
} // namespace mibrel::bench
