#pragma once

#include <string>
#include <thread>

namespace os_extension::thread_utilities {

/// Names an operating-system thread, for debuggers and process listings. Defined by the host.
///
/// A name longer than the operating system takes (15 characters on Linux) is cut, never refused. Throws std::system_error
/// when the thread cannot be named, for example because it is not joinable.
void setName(std::thread& thread, const std::string& name);

} // namespace os_extension::thread_utilities
