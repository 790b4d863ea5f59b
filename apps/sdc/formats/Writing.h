#pragma once

#include <cstdint>
#include <string_view>

namespace sdc {

enum class Written : std::uint8_t { all, someForNow, failed };

/// Writes what a file descriptor takes without a wait, and cuts that off from the text.
/// @return failed: errno tells the reason
Written writeSome(int descriptor, std::string_view& text);

/// Writes all of a text, and waits where a reader is slow, but no longer than the user wants to: then errno is EINTR.
/// @return whether all is written; otherwise errno tells the reason, and the text what is left
bool writeAll(int descriptor, std::string_view& text);

} // namespace sdc
