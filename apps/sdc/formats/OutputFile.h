#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <ostream>
#include <string>

namespace sdc {

/// Lets @p write write a file, in binary. A regular file, or one that does not exist, appears or is replaced only when it is
/// whole, and keeps its permissions; a link's target is meant, not the link. Whatever else a name leads to, such as a
/// device, a pipe, or what the program was given as /dev/stdout or /dev/fd/63, is written to and never replaced. "-" is
/// standard output, which is flushed.
/// @throws std::runtime_error that names the file and the reason; whatever @p write throws, the file then stays as it was
void writeFile(const std::string& path, const std::function<void(std::ostream& stream)>& write);

/// Finds out whether a file can be written, as far as that can be known before.
/// @throws std::runtime_error as writeFile
void checkWritable(const std::string& path);

/// The one name of the regular file that @p path leads to or makes; nothing of a device or a pipe.
std::optional<std::filesystem::path> regularFile(const std::string& path);

} // namespace sdc
