#include "apps/sdc/Csv.h"

#include "apps/sdc/Format.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace sdc {

namespace {

[[noreturn]] void fail(const std::string& path, const std::string& reason)
{
    throw std::runtime_error("cannot write the samples to " + path + ": " + reason);
}

void writeInto(const std::filesystem::path& file, const std::string& path, const std::vector<SDCResult>& samples)
{
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    if (!stream) {
        fail(path, std::generic_category().message(errno));
    }
    writeCsv(stream, samples);
    stream.close();
    if (!stream) {
        fail(path, "the disk may be full");
    }
}

std::filesystem::perms permissionsOfNewFiles()
{
    const mode_t mask = umask(0);
    umask(mask);
    return static_cast<std::filesystem::perms>(0666 & ~mask);
}

/// An empty file with a name of its own beside the target; gone in the end, unless it was renamed.
class TemporaryFile {
public:
    TemporaryFile(const std::filesystem::path& target, const std::string& path)
        : m_name(target.string() + ".XXXXXX")
    {
        const int file = mkstemp(m_name.data());
        if (file < 0) {
            fail(path, std::generic_category().message(errno));
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

} // namespace

void writeCsv(std::ostream& stream, const std::vector<SDCResult>& samples)
{
    stream << "frequency_kHz,level_dBm\r\n";
    for (const SDCResult& sample : samples) {
        stream << std::to_string(sample.frequency_kHz) << ',' << hundredths(sample.rssi) << "\r\n";
    }
}

/// What is no regular file, such as a device or a pipe, is written to; a regular file is replaced when the new one is whole.
void writeCsvFile(const std::string& path, const std::vector<SDCResult>& samples)
{
    std::error_code error;
    const std::filesystem::path target = std::filesystem::weakly_canonical(path, error); // a link's target, not the link
    if (error) {
        fail(path, error.message());
    }
    const std::filesystem::file_status status = std::filesystem::status(target, error);
    if (std::filesystem::is_directory(status)) {
        fail(path, "it is a folder");
    }
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
        writeInto(target, path, samples);
        return;
    }
    const TemporaryFile temporary(target, path);
    writeInto(temporary.name(), path, samples);
    std::filesystem::permissions(
        temporary.name(), std::filesystem::exists(status) ? status.permissions() : permissionsOfNewFiles(), error);
    std::filesystem::rename(temporary.name(), target, error);
    if (error) {
        fail(path, error.message());
    }
}

} // namespace sdc
