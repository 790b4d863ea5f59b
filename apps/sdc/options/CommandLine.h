#pragma once

#include "apps/sdc/options/ExitStatus.h"

#include <functional>
#include <stdexcept>

namespace sdc {

/// Arguments that cannot be acted upon. what() says what was wrong and what would be right.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What the arguments ask for. Call it once.
using Command = std::function<ExitStatus()>;

/// Reads the arguments.
/// @throws UsageError
Command readCommandLine(int count, const char* const* arguments);

} // namespace sdc
