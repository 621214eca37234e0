#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

// An immutable block of binary data. Copies share the buffer, so a record holding a
// large document (a rich-text draft) stays cheap to copy.
class Bytes {
public:
    Bytes() = default;
    explicit Bytes(std::string data) : m_data(std::make_shared<const std::string>(std::move(data))) {}

    std::string_view view() const { return m_data ? std::string_view(*m_data) : std::string_view(); }
    std::size_t size() const { return m_data ? m_data->size() : 0; }
    bool empty() const { return size() == 0; }

    std::string base64Encoded() const;
    // Standard alphabet with padding; whitespace or any other character makes it absent.
    static std::optional<Bytes> fromBase64(std::string_view text);

    friend bool operator==(const Bytes& lhs, const Bytes& rhs) { return lhs.view() == rhs.view(); }

private:
    std::shared_ptr<const std::string> m_data;
};

} // namespace platform
