#include "apps/sdc/results/OutputFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <system_error>

namespace sdc {

namespace {

namespace fs = std::filesystem;
using Write = std::function<void(std::ostream& stream)>;

[[noreturn]] void fail(const std::string& path, const std::string& reason)
{
    throw std::runtime_error("cannot write to " + path + ": " + reason);
}

/// The reason that the system gave last, where it gave one.
std::string systemReason()
{
    return errno == 0 ? "the disk may be full" : std::generic_category().message(errno);
}

void writeStandardOutput(const Write& write)
{
    errno = 0;
    write(std::cout);
    if (!std::cout.flush()) {
        fail("standard output", systemReason());
    }
}

void writeInto(const std::string& file, const std::string& path, const Write& write)
{
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    if (!stream) {
        fail(path, systemReason());
    }
    errno = 0;
    write(stream);
    stream.close();
    if (!stream) {
        fail(path, systemReason());
    }
}

fs::perms permissionsOfNewFiles()
{
    const mode_t mask = umask(0);
    umask(mask);
    return static_cast<fs::perms>(0666 & ~mask);
}

/// An empty file with a name of its own beside the target; gone in the end, unless it was renamed.
class TemporaryFile {
public:
    TemporaryFile(const fs::path& target, const std::string& path)
        : m_name(target.string() + ".XXXXXX")
    {
        const int file = mkstemp(m_name.data());
        if (file < 0) {
            fail(path, systemReason());
        }
        close(file);
    }
    ~TemporaryFile() { unlink(m_name.c_str()); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::string& name() const { return m_name; }

private:
    std::string m_name;
};

/// Where a chain of links leads to, whether something is there or not.
fs::path targetOf(const std::string& path)
{
    constexpr int mostLinks = 40; // as the system has it
    std::error_code error;
    fs::path target = path;
    for (int links = 0; fs::is_symlink(fs::symlink_status(target, error)); ++links) {
        if (links == mostLinks) {
            fail(path, std::generic_category().message(ELOOP));
        }
        target = target.parent_path() / fs::read_symlink(target); // an absolute link replaces the folder
    }
    return target;
}

void replace(const fs::path& target, const fs::file_status& status, const std::string& path, const Write& write)
{
    std::error_code error;
    const bool isThere = fs::exists(status);
    if (isThere && access(target.c_str(), W_OK) != 0) {
        fail(path, systemReason());
    }
    const fs::perms permissions = isThere ? status.permissions() : permissionsOfNewFiles();
    const TemporaryFile temporary(target, path);
    writeInto(temporary.name(), path, write);
    fs::permissions(temporary.name(), permissions, error);
    if (!error) {
        fs::rename(temporary.name(), target, error);
    }
    if (error) {
        fail(path, error.message());
    }
}

} // namespace

void writeFile(const std::string& path, const Write& write)
{
    if (path == "-") {
        writeStandardOutput(write);
        return;
    }
    const fs::path target = targetOf(path);
    std::error_code error;
    const fs::file_status status = fs::status(target, error);
    if (!fs::status_known(status)) {
        fail(path, error.message());
    }
    if (fs::is_directory(status)) {
        fail(path, "it is a folder");
    }
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        writeInto(target, path, write);
        return;
    }
    replace(target, status, path, write);
}

} // namespace sdc
