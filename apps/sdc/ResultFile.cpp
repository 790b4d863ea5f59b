#include "apps/sdc/ResultFile.h"

#include "apps/sdc/results/ResultJson.h"
#include "support/Text.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <system_error>

namespace sdc {

namespace {

std::string readAll(std::istream& stream, const std::string& file)
{
    constexpr std::size_t largest_MiB = 64;
    try {
        return support::readToEnd(stream, largest_MiB);
    } catch (const std::runtime_error& error) {
        throw ResultError(file + ": " + error.what());
    }
}

} // namespace

ScanResult readResult(const std::string& file)
{
    if (file == "-") {
        return parseResult(readAll(std::cin, "standard input"), "standard input");
    }
    const std::string name = support::shown(file);
    if (std::filesystem::is_directory(file)) {
        throw ResultError(name + ": is a folder; a file that 'sdc scan --json' wrote is needed");
    }
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        throw ResultError(name + ": cannot be read: " + std::generic_category().message(errno));
    }
    return parseResult(readAll(stream, name), name);
}

} // namespace sdc
