#pragma once

#include <stdexcept>
#include <string>

namespace soak {

/// Something did not hold that must hold. what() tells what.
class SoakFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

inline void require(bool holds, const std::string& otherwise)
{
    if (!holds) {
        throw SoakFailure(otherwise);
    }
}

} // namespace soak
