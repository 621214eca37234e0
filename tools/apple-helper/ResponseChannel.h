#pragma once

#include <optional>
#include <string_view>

namespace mibrel::applehelper {

// The one way answers reach the application. Taking it over points standard output at
// /dev/null, so a library that prints cannot slip a line between two answers and shift
// every later one; standard error goes there too, since nobody reads that pipe and a
// full pipe would stall the helper.
class ResponseChannel {
public:
    // Nothing when the standard streams cannot be rearranged.
    static std::optional<ResponseChannel> takeOverStandardStreams();

    // Writes the line and its line end at once; false when the reader is gone.
    bool send(std::string_view line) const;

private:
    explicit ResponseChannel(int descriptor) : m_descriptor(descriptor) {}

    int m_descriptor;
};

// Turns off what PocketSphinx and FFmpeg would otherwise log.
void silenceLibraryLogging();

} // namespace mibrel::applehelper
