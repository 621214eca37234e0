#pragma once

#include <cstddef>
#include <string>

namespace platform::compression {

// One archive entry brought out whole, or why not.
struct Unpacked {
    enum class Status {
        complete, // `bytes` holds the whole entry
        corrupt,  // the data is damaged or cut short
        tooLarge, // it would grow beyond the limit it was given
    };
    Status status = Status::corrupt;
    std::string bytes;

    bool isComplete() const { return status == Status::complete; }
};

// The most one entry of an archive of `archiveSize` bytes may unpack to: 200 times the
// archive, at least 64 MiB, never more than 1 GiB. Documents and workbooks stay far
// below it; an archive built to exhaust memory (a "zip bomb") does not.
std::size_t unpackLimit(std::size_t archiveSize);

} // namespace platform::compression
