#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace platform::json {

// Writes pretty-printed JSON (two-space indent) token by token. Callers write an
// object's keys in ascending byte order, which is what makes every file's keys
// sorted; JsonObjectWriter is the usual way to do that.
class JsonWriter {
public:
    // Pretty: two-space indent, a line per member. Compact: one line, for line-based output.
    enum class Layout { pretty, compact };

    // Keeps the whole text in memory, for text() and take().
    explicit JsonWriter(Layout layout = Layout::pretty);
    // Hands the text over in chunks of about a megabyte as it grows, so a large
    // document never sits in memory whole; finish() hands over the rest.
    explicit JsonWriter(std::function<void(std::string_view)> sink);
    ~JsonWriter();
    JsonWriter(const JsonWriter&) = delete;
    JsonWriter& operator=(const JsonWriter&) = delete;

    void startObject();
    void endObject();
    void startArray();
    void endArray();
    void key(std::string_view key);
    void string(std::string_view value);
    // A string known to need no escaping (digits, letters, '-', ':'), such as an id or a date.
    void plainString(std::string_view value);
    void integer(std::int64_t value);
    // Throws EncodingError for NaN and infinities, which JSON cannot hold.
    void number(double value);
    void boolean(bool value);
    void null();

    // Passes what is left to the sink.
    void finish();

    // The text written so far; valid until the writer changes or goes.
    std::string_view text() const;
    // The finished text, moved out; the writer is spent afterwards.
    std::string take();

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace platform::json
