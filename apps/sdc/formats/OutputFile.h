#pragma once

#include <functional>
#include <ostream>
#include <string>

namespace sdc {

/// Lets @p write write a file, in binary. A regular file, or one that does not exist, appears or is replaced only when it is
/// whole, and keeps its permissions; a link's target is meant, not the link. Nothing that ends the program leaves half a
/// file or a second one. Whatever else a name leads to, such as a device, a pipe, or what the program was given as
/// /dev/stdout or /dev/fd/63, is written to and never replaced, and waited for no longer than the user wants to. "-" is
/// standard output.
/// @throws std::runtime_error that names the file and the reason; whatever @p write throws, the file then stays as it was
void writeFile(const std::string& path, const std::function<void(std::ostream& stream)>& write);

} // namespace sdc
