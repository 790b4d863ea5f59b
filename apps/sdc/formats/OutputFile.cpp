#include "apps/sdc/formats/OutputFile.h"

#include "support/Descriptor.h"
#include "support/Text.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <ext/stdio_filebuf.h>

#include <cerrno>
#include <charconv>
#include <iostream>
#include <random>
#include <stdexcept>
#include <system_error>

namespace sdc {

namespace {

namespace fs = std::filesystem;
using support::Descriptor;
using Write = std::function<void(std::ostream& stream)>;

[[noreturn]] void fail(const std::string& path, const std::string& reason)
{
    throw std::runtime_error("cannot write to " + support::shown(path) + ": " + reason);
}

/// The reason that the system gave last, where it gave one.
std::string systemReason()
{
    return errno == 0 ? "the disk may be full" : std::generic_category().message(errno);
}

/// What a call of the system returned, where it did not fail.
int checked(int result, const std::string& path)
{
    if (result < 0) {
        fail(path, systemReason());
    }
    return result;
}

/// Where a chain of links leads to, whether something is there or not.
struct Target {
    fs::path path;
    fs::file_status status;
    bool isSystems; ///< a link of the system stands for a file that some program has opened

    bool isReplaced() const { return !isSystems && (!fs::exists(status) || fs::is_regular_file(status)); }
    fs::path folder() const { return path.has_parent_path() ? path.parent_path() : "."; }
};

bool isInProc(const fs::path& link)
{
    struct statfs system {};
    return statfs(link.parent_path().c_str(), &system) == 0 && system.f_type == PROC_SUPER_MAGIC;
}

Target targetOf(const std::string& path)
{
    constexpr int mostLinks = 40; // as the system has it
    std::error_code error;
    Target target{path, fs::status(path, error), false};
    if (!fs::status_known(target.status)) {
        fail(path, error.message());
    }
    for (int links = 0; fs::is_symlink(fs::symlink_status(target.path, error)) && !target.isSystems; ++links) {
        if (links == mostLinks) {
            fail(path, std::generic_category().message(ELOOP));
        }
        target.isSystems = isInProc(target.path);
        if (!target.isSystems) {
            target.path = target.path.parent_path() / fs::read_symlink(target.path); // an absolute link replaces the folder
        }
    }
    return target;
}

/// Of what such a link stands for, the descriptor when it is one of this program.
std::optional<int> ownDescriptor(const Target& target)
{
    std::error_code error;
    const std::string name = target.path.filename();
    int number = -1;
    const bool isNumber = std::from_chars(name.data(), name.data() + name.size(), number).ec == std::errc{};
    const bool isOwn = target.isSystems && fs::canonical(target.folder(), error) == fs::canonical("/proc/self/fd", error);
    return isNumber && isOwn ? std::optional(number) : std::nullopt;
}

/// Whether a descriptor is open for writing. Says in errno why not.
bool isForWriting(int descriptor)
{
    const int flags = fcntl(descriptor, F_GETFL);
    const bool isReadOnly = flags >= 0 && (flags & O_ACCMODE) == O_RDONLY;
    errno = isReadOnly ? EBADF : errno;
    return flags >= 0 && !isReadOnly;
}

/// Why it cannot be written; empty where nothing is known against it.
std::string obstacle(const Target& target)
{
    if (fs::is_directory(target.status)) {
        return "it is a folder";
    }
    if (const auto own = ownDescriptor(target)) {
        return isForWriting(*own) ? "" : systemReason();
    }
    const bool isClosed = fs::exists(target.status) && access(target.path.c_str(), W_OK) != 0;
    const bool isFolderClosed = target.isReplaced() && access((target.folder() / ".").c_str(), W_OK | X_OK) != 0;
    return isClosed || isFolderClosed ? systemReason() : "";
}

void writeStandardOutput(const Write& write)
{
    errno = 0;
    write(std::cout);
    if (!std::cout.flush()) {
        fail("standard output", systemReason());
    }
}

/// @param file  a descriptor, which is closed
void writeInto(int file, const std::string& path, const Write& write)
{
    __gnu_cxx::stdio_filebuf<char> buffer(file, std::ios::out | std::ios::binary);
    if (!buffer.is_open()) {
        fail(path, systemReason());
    }
    std::ostream stream(&buffer);
    errno = 0;
    write(stream);
    if (!stream.flush() || buffer.close() == nullptr) {
        fail(path, systemReason());
    }
}

/// What is there is written to: through our own descriptor, whose place in the file is shared, or behind what stands in it.
int openExisting(const Target& target, const std::string& path)
{
    if (const auto own = ownDescriptor(target)) {
        return checked(fcntl(*own, F_DUPFD_CLOEXEC, 0), path);
    }
    const int append = fs::is_regular_file(target.status) ? O_APPEND : 0;
    return checked(open(target.path.c_str(), O_WRONLY | O_CLOEXEC | append), path);
}

std::string randomName()
{
    std::random_device random;
    std::string name = ".sdc-";
    for (int digit = 0; digit < 12; ++digit) {
        name += static_cast<char>('a' + random() % 26);
    }
    return name;
}

/// An empty file with a name of its own beside the target; gone in the end, unless it took the target's place.
class TemporaryFile {
public:
    TemporaryFile(const Target& target, mode_t mode, const std::string& path)
        : m_folder(checked(open(target.folder().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC), path))
        , m_file(checked(openat(m_folder.number(), m_name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode), path))
    {
    }
    ~TemporaryFile() { unlinkat(m_folder.number(), m_name.c_str(), 0); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    Descriptor& file() { return m_file; }
    int takePlaceOf(const fs::path& target) const
    {
        return renameat(m_folder.number(), m_name.c_str(), m_folder.number(), target.filename().c_str());
    }

private:
    std::string m_name = randomName();
    Descriptor m_folder;
    Descriptor m_file;
};

void replace(const Target& target, const std::string& path, const Write& write)
{
    const bool isThere = fs::exists(target.status);
    TemporaryFile temporary(target, isThere ? 0600 : 0666, path);
    if (isThere) {
        const fs::perms permissions = target.status.permissions() & fs::perms::all; // none that lends the owner's rights
        checked(fchmod(temporary.file().number(), static_cast<mode_t>(permissions)), path);
    }
    writeInto(temporary.file().release(), path, write);
    checked(temporary.takePlaceOf(target.path), path);
}

} // namespace

void writeFile(const std::string& path, const Write& write)
{
    if (path == "-") {
        writeStandardOutput(write);
        return;
    }
    checkWritable(path);
    const Target target = targetOf(path);
    if (target.isReplaced()) {
        replace(target, path, write);
    } else {
        writeInto(openExisting(target, path), path, write);
    }
}

void checkWritable(const std::string& path)
{
    const std::string reason = path == "-" ? "" : obstacle(targetOf(path));
    if (!reason.empty()) {
        fail(path, reason);
    }
}

std::optional<fs::path> regularFile(const std::string& path)
{
    std::error_code error;
    const Target target = targetOf(path);
    const bool isRegular = target.isReplaced() || fs::is_regular_file(target.status);
    return path != "-" && isRegular ? std::optional(fs::weakly_canonical(fs::absolute(target.path), error)) : std::nullopt;
}

} // namespace sdc
