#pragma once

#include <functional>
#include <ostream>
#include <string>

namespace sdc {

/// Lets @p write write a file, in binary. A regular file, or one that does not exist, appears or is replaced only when it is
/// whole, and keeps its mode; a link's target is meant, not the link; what is no regular file, such as a device or a pipe,
/// is written to. "-" is standard output, which is flushed.
/// @throws std::runtime_error that names the file and the reason; whatever @p write throws, the file then stays as it was
void writeFile(const std::string& path, const std::function<void(std::ostream& stream)>& write);

} // namespace sdc
