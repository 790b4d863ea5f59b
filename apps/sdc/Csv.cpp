#include "apps/sdc/Csv.h"

#include "apps/sdc/Format.h"

#include <cerrno>
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

} // namespace

void writeCsv(std::ostream& stream, const std::vector<SDCResult>& samples)
{
    stream << "frequency_kHz,level_dBm\r\n";
    for (const SDCResult& sample : samples) {
        stream << std::to_string(sample.frequency_kHz) << ',' << hundredths(sample.rssi) << "\r\n";
    }
}

void writeCsvFile(const std::string& path, const std::vector<SDCResult>& samples)
{
    const std::string temporary = path + ".part";
    std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
    if (!file) {
        fail(path, std::generic_category().message(errno));
    }
    writeCsv(file, samples);
    file.close();
    if (!file) {
        fail(path, "the disk may be full");
    }
    std::error_code error;
    std::filesystem::rename(temporary, path, error);
    if (error) {
        fail(path, error.message());
    }
}

} // namespace sdc
