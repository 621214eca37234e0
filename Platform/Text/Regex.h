#pragma once

#include <memory>
#include <string>
#include <string_view>

// A compiled regular expression with ICU syntax (\d and \s are Unicode classes). One
// pattern may be shared by threads; each call makes its own matcher.
namespace platform::text {

class Regex {
public:
    // Throws std::invalid_argument for a pattern ICU refuses: patterns are our own constants.
    explicit Regex(std::string_view pattern);
    ~Regex();
    Regex(Regex&&) noexcept;
    Regex& operator=(Regex&&) noexcept;

    // True when the pattern matches somewhere in the text ("^" anchors it at the start).
    bool contains(std::string_view text) const;

    // Every match replaced by `replacement`, in which "$1" names a captured group.
    std::string replacingAll(std::string_view text, std::string_view replacement) const;

private:
    struct Compiled;
    std::unique_ptr<Compiled> m_compiled;
};

} // namespace platform::text
