#include "apps/sdc/formats/Writing.h"

#include "apps/sdc/tty/Interrupt.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <sys/stat.h>

namespace sdc {

namespace {

bool isRegular(int descriptor)
{
    struct stat status {};
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

/// Whether a descriptor takes bytes, or would say why not.
bool isReady(int descriptor, int patience_ms)
{
    pollfd watched{.fd = descriptor, .events = POLLOUT, .revents = 0};
    return poll(&watched, 1, patience_ms) > 0;
}

} // namespace

/// A pipe that is ready takes so many bytes at once, even where it is not ours to be set to refuse what it would wait with.
Written writeSome(int descriptor, std::string_view& text)
{
    const std::size_t most = isRegular(descriptor) ? text.size() : PIPE_BUF;
    while (!text.empty()) {
        if (!isReady(descriptor, 0)) {
            return Written::someForNow;
        }
        errno = 0;
        const ssize_t count = write(descriptor, text.data(), std::min(text.size(), most));
        if (count < 0 && errno == EAGAIN) {
            return Written::someForNow;
        }
        if (count < 0 && errno != EINTR) {
            return Written::failed;
        }
        text.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    return Written::all;
}

bool writeAll(int descriptor, std::string_view& text)
{
    constexpr int pause_ms = 20;
    Written written = writeSome(descriptor, text);
    while (written == Written::someForNow && !isLeaveWanted()) {
        isReady(descriptor, pause_ms);
        written = writeSome(descriptor, text);
    }
    errno = written == Written::someForNow ? EINTR : errno;
    return written == Written::all;
}

} // namespace sdc
