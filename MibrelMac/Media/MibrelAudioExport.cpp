#include "MibrelMac/Media/MibrelAudioExport.h"

#include <cmath>
#include <new>
#include <utility>

#include "MibrelMac/Media/M4AWriter.h"
#include "MibrelMac/Media/MediaInput.h"
#include "MibrelMac/Media/TemporaryOutputFile.h"

namespace mibrel::media {

namespace {

using Status = MibrelAudioExportResult::Status;
using detail::MediaInput;
using detail::MediaInputError;

const char* const nothingToExport =
    "There is nothing to export: the time range starts at or beyond the end of the recording's sound.";

MibrelAudioExportResult failed(std::string message) { return {Status::failed, std::move(message)}; }

bool isValidRange(const MibrelAudioExportRequest& request) {
    const double start = request.start.value_or(0.0);
    if (!std::isfinite(start) || start < 0) {
        return false;
    }
    return !request.duration || (std::isfinite(*request.duration) && *request.duration > 0);
}

MibrelAudioExportResult outcomeOf(const MediaInputError& error) {
    if (error.kind() != MediaInputError::Kind::cannotDecode) {
        return {Status::unavailable, std::nullopt};
    }
    std::string message = error.what();
    if (!error.detail().empty()) {
        message += " (" + error.detail() + ")";
    }
    return failed(std::move(message));
}

void writeSlice(const MibrelAudioExportRequest& request, MediaInput& input) {
    detail::TemporaryOutputFile output(request.destination);
    // Opened on the first kept frame, which says what the sound really is (a stream's
    // header can understate its rate). Declared after `output`, so it closes the file first.
    std::optional<detail::M4AWriter> writer;
    input.decodeRange(request.start.value_or(0.0), request.duration, [&](const AVFrame& frame, int offset, int count) {
        if (!writer) {
            writer.emplace(output.path(), frame.ch_layout.nb_channels, frame.sample_rate);
        }
        writer->write(frame, offset, count);
    });
    if (!writer) {
        throw MibrelMediaLayerError(nothingToExport);
    }
    writer->finish();
    output.commit();
}

} // namespace

MibrelAudioExportResult exportAudioM4A(const MibrelAudioExportRequest& request) {
    try {
        if (!isValidRange(request)) {
            return failed("The time range to export is not valid.");
        }
        MediaInput input(request.source);
        input.openAudio(request.audioTrack);
        const auto duration = input.durationSeconds();
        if (duration && request.start && *request.start >= *duration) {
            return failed(nothingToExport);
        }
        writeSlice(request, input);
        return {Status::completed, std::nullopt};
    } catch (const MediaInputError& error) {
        return outcomeOf(error);
    } catch (const std::bad_alloc&) {
        return failed("There was not enough memory to export the recording.");
    } catch (const std::exception& error) {
        return failed(error.what());
    } catch (...) {
        return failed("The export failed for an unknown reason.");
    }
}

} // namespace mibrel::media
