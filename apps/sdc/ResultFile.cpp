#include "apps/sdc/ResultFile.h"

#include "apps/sdc/results/ResultJson.h"

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
    constexpr std::size_t largest_MiB = 512;
    constexpr std::streamsize chunk = 1 << 16;
    std::string text;
    while (stream && text.size() <= largest_MiB << 20U) {
        const std::size_t before = text.size();
        text.resize(before + chunk);
        stream.read(text.data() + before, chunk);
        text.resize(before + static_cast<std::size_t>(stream.gcount()));
    }
    if (stream.bad()) {
        throw ResultError(file + ": cannot be read");
    }
    if (text.size() > largest_MiB << 20U) {
        throw ResultError(
            file + ": is larger than " + std::to_string(largest_MiB) + " MiB; must be a result of 'sdc scan --json'");
    }
    return text;
}

} // namespace

ScanResult readResult(const std::string& file)
{
    if (file == "-") {
        return parseResult(readAll(std::cin, "standard input"), "standard input");
    }
    if (std::filesystem::is_directory(file)) {
        throw ResultError(file + ": is a folder; a file that 'sdc scan --json' wrote is needed");
    }
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        throw ResultError(file + ": cannot be read: " + std::generic_category().message(errno));
    }
    return parseResult(readAll(stream, file), file);
}

} // namespace sdc
