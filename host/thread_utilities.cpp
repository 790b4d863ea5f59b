#include "Platform/Host/thread_utilities.h"

#include "host/HostObserver.h"

#include <pthread.h>

#include <cstddef>
#include <system_error>

namespace os_extension::thread_utilities {

void setName(std::thread& thread, const std::string& name)
{
    constexpr std::size_t longestName = 15; // Linux: 16 bytes with the end
    host::tellHostObserver("thread.name " + name);
    if (!thread.joinable()) {
        throw std::system_error(std::make_error_code(std::errc::invalid_argument), "cannot name a thread that does not run");
    }
    const int error = pthread_setname_np(thread.native_handle(), name.substr(0, longestName).c_str());
    if (error != 0) {
        throw std::system_error(error, std::generic_category(), "cannot name thread " + name);
    }
}

} // namespace os_extension::thread_utilities
