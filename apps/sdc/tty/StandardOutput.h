#pragma once

#include "apps/sdc/options/ExitStatus.h"

#include <functional>
#include <ostream>

namespace sdc {

/// Lets a command write to standard output and sees that all arrives. A reader that has had enough, such as `head`, ends the
/// command without a word.
/// @return what the command returns; EXIT_INTERNAL when the reader went away before the end
/// @throws std::runtime_error when it cannot be written
ExitStatus toStandardOutput(const std::function<ExitStatus(std::ostream& output)>& write);

} // namespace sdc
