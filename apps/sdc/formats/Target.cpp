#include "apps/sdc/formats/Target.h"

#include "apps/sdc/tty/Interrupt.h"
#include "support/Text.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <chrono>
#include <system_error>
#include <thread>

namespace sdc {

namespace {

namespace fs = std::filesystem;

bool isInProc(const fs::path& link)
{
    struct statfs system {};
    return statfs(link.parent_path().c_str(), &system) == 0 && system.f_type == PROC_SUPER_MAGIC;
}

/// Whether a descriptor is open for writing. Says in errno why not.
bool isForWriting(int descriptor)
{
    const int flags = fcntl(descriptor, F_GETFL);
    const bool isReadOnly = flags >= 0 && (flags & O_ACCMODE) == O_RDONLY;
    errno = isReadOnly ? EBADF : errno;
    return flags >= 0 && !isReadOnly;
}

std::string reasonOf(int error)
{
    switch (error) {
    case 0: return "the disk may be full";
    case EINTR: return "nobody reads it";
    case EISDIR: return "it is a folder";
    default: return std::generic_category().message(error);
    }
}

} // namespace

Target::Target(const std::string& name)
    : m_name(name)
    , m_path(name)
{
    constexpr int mostLinks = 40; // as the system has it
    if (name == "-") {
        m_status = fs::file_status(fs::file_type::unknown);
        m_isSystems = true;
        return;
    }
    std::error_code error;
    m_status = fs::status(name, error);
    if (!fs::status_known(m_status)) {
        errno = error.value();
        fail();
    }
    for (int links = 0; fs::is_symlink(fs::symlink_status(m_path, error)) && !m_isSystems; ++links) {
        if (links == mostLinks) {
            errno = ELOOP;
            fail();
        }
        m_isSystems = isInProc(m_path);
        if (!m_isSystems) {
            m_path = m_path.parent_path() / fs::read_symlink(m_path); // an absolute link replaces the folder
        }
    }
}

std::string Target::shownName() const
{
    return m_name == "-" ? "standard output" : support::shown(m_name);
}

void Target::fail() const
{
    const std::string what = "cannot write to " + shownName() + ": " + reasonOf(errno);
    if (errno == EPIPE) {
        throw ReaderGone(what);
    }
    throw std::runtime_error(what);
}

/// The descriptor of this program that the name stands for, when it is one.
std::optional<int> Target::ownDescriptor() const
{
    if (m_name == "-") {
        return STDOUT_FILENO;
    }
    std::error_code error;
    const std::string name = m_path.filename();
    int number = -1;
    const bool isNumber = std::from_chars(name.data(), name.data() + name.size(), number).ec == std::errc{};
    const bool isOwn = m_isSystems && fs::canonical(folder(), error) == fs::canonical("/proc/self/fd", error);
    return isNumber && isOwn ? std::optional(number) : std::nullopt;
}

std::optional<FileIdentity> Target::identity() const
{
    struct stat found {};
    const auto own = ownDescriptor();
    if ((own ? fstat(*own, &found) : stat(m_path.c_str(), &found)) == 0) {
        return S_ISCHR(found.st_mode) || S_ISBLK(found.st_mode)
            ? std::nullopt
            : std::optional(FileIdentity{found.st_dev, found.st_ino, ""});
    }
    return stat(folder().c_str(), &found) == 0 ? std::optional(FileIdentity{found.st_dev, found.st_ino, fileName()})
                                               : std::nullopt;
}

/// Returns whether something is known against it, and says in errno what.
bool Target::hasObstacle() const
{
    errno = EISDIR;
    if (fs::is_directory(m_status)) {
        return true;
    }
    if (const auto own = ownDescriptor()) {
        return !isForWriting(*own);
    }
    return (isThere() && access(m_path.c_str(), W_OK) != 0)
        || (isFile() && access((folder() / ".").c_str(), W_OK | X_OK) != 0);
}

/// Of standard output nothing is known before: whatever stands in its way shows in the end.
void Target::check() const
{
    if (m_name != "-" && hasObstacle()) {
        fail();
    }
}

/// Our own descriptor shares its place in the file with whoever else has it.
support::Descriptor Target::open() const
{
    constexpr std::chrono::milliseconds pause{20};
    constexpr mode_t mode = 0666;
    const auto own = ownDescriptor();
    const int append = !isThere() || fs::is_regular_file(m_status) ? O_APPEND | O_CREAT : 0;
    const int flags = O_WRONLY | O_CLOEXEC | O_NONBLOCK | append;
    for (;;) {
        const int file = own ? fcntl(*own, F_DUPFD_CLOEXEC, 0) : ::open(m_path.c_str(), flags, mode);
        if (file >= 0) {
            return support::Descriptor(file);
        }
        if (errno != ENXIO || !fs::is_fifo(m_status)) {
            fail();
        }
        if (isInterrupted()) {
            errno = EINTR;
            fail();
        }
        std::this_thread::sleep_for(pause);
    }
}

} // namespace sdc
