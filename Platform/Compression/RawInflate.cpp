#include "Platform/Compression/RawInflate.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <limits>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include <zlib.h>

namespace platform::compression {
namespace {

constexpr std::size_t kSmallestBuffer = 64 * 1024;
// DEFLATE cannot expand its input by much more than 1032 to 1: a larger declared size is a lie.
constexpr std::uint64_t kLargestExpansion = 1032;
// zlib counts in `uInt`; larger inputs and outputs go through in slices.
constexpr std::size_t kLargestSlice = std::numeric_limits<uInt>::max();
// Pieces handed across threads: large enough to keep locking rare, few enough to bound memory.
constexpr std::size_t kPieceSize = 1 << 20;
constexpr std::size_t kPiecesInFlight = 8;

std::size_t firstBufferSize(std::size_t inputSize, std::size_t limit, std::uint64_t sizeHint) {
    const std::uint64_t possible = std::uint64_t{inputSize} * kLargestExpansion + kSmallestBuffer;
    const std::uint64_t wanted = sizeHint > 0 ? std::min(sizeHint, possible) : std::uint64_t{inputSize} * 4;
    // One byte beyond the limit tells a stream that reaches it from one that passes it.
    const std::uint64_t ceiling = std::uint64_t{limit} + 1;
    return static_cast<std::size_t>(std::min(ceiling, std::max<std::uint64_t>(wanted, kSmallestBuffer)));
}

// Pieces from the inflating thread to the reading one, in order, a few at a time.
class PieceQueue {
public:
    void push(std::string piece) {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [&] { return m_pieces.size() < kPiecesInFlight || m_abandoned; });
        if (m_abandoned) return;
        m_pieces.push_back(std::move(piece));
        m_changed.notify_all();
    }

    void close(Unpacked::Status status) {
        std::lock_guard lock(m_mutex);
        m_status = status;
        m_closed = true;
        m_changed.notify_all();
    }

    // Absent once the queue is closed and drained.
    std::optional<std::string> pop() {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [&] { return !m_pieces.empty() || m_closed; });
        if (m_pieces.empty()) return std::nullopt;
        std::string piece = std::move(m_pieces.front());
        m_pieces.pop_front();
        m_changed.notify_all();
        return piece;
    }

    // The reader stopped early (its `take` threw): the inflating thread must not wait for it.
    void abandon() {
        std::lock_guard lock(m_mutex);
        m_abandoned = true;
        m_changed.notify_all();
    }

    bool abandoned() {
        std::lock_guard lock(m_mutex);
        return m_abandoned;
    }

    Unpacked::Status status() {
        std::lock_guard lock(m_mutex);
        return m_status;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::string> m_pieces;
    Unpacked::Status m_status = Unpacked::Status::corrupt;
    bool m_closed = false;
    bool m_abandoned = false;
};

void inflatePieces(PieceQueue& queue, std::string_view input, std::size_t limit) {
    RawInflater inflater(input);
    std::size_t total = 0;
    while (inflater.state() == RawInflater::State::running && !queue.abandoned()) {
        std::string piece(kPieceSize, '\0');
        piece.resize(inflater.fill(piece.data(), piece.size()));
        total += piece.size();
        if (total > limit) return queue.close(Unpacked::Status::tooLarge);
        if (!piece.empty()) queue.push(std::move(piece));
    }
    queue.close(inflater.state() == RawInflater::State::ended ? Unpacked::Status::complete : Unpacked::Status::corrupt);
}

// Nothing may escape the thread: a failure to allocate a piece ends the stream as unreadable.
void inflateInto(PieceQueue& queue, std::string_view input, std::size_t limit) {
    try {
        inflatePieces(queue, input, limit);
    } catch (...) {
        queue.close(Unpacked::Status::corrupt);
    }
}

} // namespace

struct RawInflater::Stream {
    z_stream z{};
    std::string_view input;
    std::size_t consumed = 0; // of the input, handed to zlib so far
};

RawInflater::RawInflater(std::string_view input) : m_stream(std::make_unique<Stream>()) {
    m_stream->input = input;
    if (input.empty() || inflateInit2(&m_stream->z, -MAX_WBITS) != Z_OK) {
        m_stream.reset();
        m_state = State::corrupt;
    }
}

RawInflater::~RawInflater() {
    if (m_stream) inflateEnd(&m_stream->z);
}

std::size_t RawInflater::fill(char* out, std::size_t room) {
    if (m_state != State::running) return 0;
    z_stream& z = m_stream->z;
    const std::string_view input = m_stream->input;
    std::size_t written = 0;
    while (written < room) {
        if (z.avail_in == 0 && m_stream->consumed < input.size()) {
            const std::size_t slice = std::min(input.size() - m_stream->consumed, kLargestSlice);
            z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(input.data() + m_stream->consumed));
            z.avail_in = static_cast<uInt>(slice);
            m_stream->consumed += slice;
        }
        const std::size_t slice = std::min(room - written, kLargestSlice);
        z.next_out = reinterpret_cast<Bytef*>(out + written);
        z.avail_out = static_cast<uInt>(slice);
        const int status = inflate(&z, Z_NO_FLUSH);
        written += slice - z.avail_out;
        if (status == Z_STREAM_END) {
            m_state = State::ended;
            break;
        }
        const bool starved = z.avail_in == 0 && m_stream->consumed == input.size();
        if ((status == Z_BUF_ERROR && starved) || (status != Z_OK && status != Z_BUF_ERROR)) {
            m_state = State::corrupt;
            break;
        }
    }
    return written;
}

Unpacked inflateWhole(std::string_view input, std::size_t limit, std::uint64_t sizeHint) {
    limit = std::min(limit, std::numeric_limits<std::size_t>::max() - 1); // room for the byte beyond it
    RawInflater inflater(input);
    std::string output(firstBufferSize(input.size(), limit, sizeHint), '\0');
    std::size_t written = 0;
    while (inflater.state() == RawInflater::State::running) {
        if (written == output.size()) {
            if (written > limit) return {Unpacked::Status::tooLarge, {}};
            output.resize(std::min(output.size() * 2, limit + 1));
        }
        written += inflater.fill(output.data() + written, output.size() - written);
    }
    if (inflater.state() == RawInflater::State::corrupt) return {};
    if (written > limit) return {Unpacked::Status::tooLarge, {}};
    output.resize(written);
    return {Unpacked::Status::complete, std::move(output)};
}

Unpacked::Status inflateAlongside(std::string_view input, std::size_t limit,
                                  const std::function<void(std::string_view)>& take) {
    PieceQueue queue;
    std::thread inflating([&] { inflateInto(queue, input, limit); });
    try {
        while (const auto piece = queue.pop()) take(*piece);
    } catch (...) {
        queue.abandon();
        inflating.join();
        throw;
    }
    inflating.join();
    return queue.status();
}

} // namespace platform::compression
