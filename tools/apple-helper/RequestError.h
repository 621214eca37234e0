#pragma once

#include <stdexcept>

namespace mibrel::applehelper {

// A request that cannot be carried out. what() goes to the user as it is, so it is a
// whole sentence in plain English.
class RequestError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace mibrel::applehelper
