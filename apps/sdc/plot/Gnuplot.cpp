#include "apps/sdc/plot/Gnuplot.h"

#include "support/Text.h"

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <system_error>

namespace sdc {

namespace {

[[noreturn]] void fail(int error)
{
    throw std::runtime_error("cannot run gnuplot: " + std::generic_category().message(error));
}

struct Closing {
    void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};

/// A file without a name, which is gone when it is closed. Programs that are started find it under path().
class ScratchFile {
public:
    explicit ScratchFile(const std::string& text = "")
        : m_file(std::tmpfile())
    {
        if (!m_file || std::fwrite(text.data(), 1, text.size(), m_file.get()) != text.size()
            || std::fflush(m_file.get()) != 0) {
            fail(errno);
        }
    }

    std::string path() const { return "/dev/fd/" + std::to_string(fileno(m_file.get())); }
    std::FILE* get() const { return m_file.get(); }

private:
    std::unique_ptr<std::FILE, Closing> m_file;
};

std::string readToEnd(std::FILE* file)
{
    std::array<char, 65536> buffer{};
    std::string text;
    while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), file)) {
        text.append(buffer.data(), count);
    }
    return text;
}

/// In one line, and not at any length.
std::string joined(const std::string& lines)
{
    constexpr std::size_t most = 500;
    std::istringstream words(lines);
    std::string text;
    for (std::string word; words >> word;) {
        text += (text.empty() ? "" : " ") + word;
    }
    return support::shown(text, most);
}

void checkEnd(int status, const std::string& words)
{
    constexpr int notFound = 127; // as a shell has it
    if (WIFSIGNALED(status)) {
        throw std::runtime_error("gnuplot was ended by signal " + std::to_string(WTERMSIG(status)));
    }
    if (WEXITSTATUS(status) == notFound) {
        throw std::runtime_error("a plot needs gnuplot, which is not there: install gnuplot-nox");
    }
    if (WEXITSTATUS(status) != 0) {
        throw std::runtime_error("gnuplot failed: " + joined(words));
    }
}

} // namespace

std::string runGnuplot(const std::string& program)
{
    const ScratchFile input(program);
    const ScratchFile errors;
    const std::string command =
        fmt::format("LC_ALL=C.UTF-8 GNUTERM=dumb exec gnuplot --default-settings <{} 2>{}", input.path(), errors.path());
    std::FILE* const output = popen(command.c_str(), "re"); // NOLINT(cert-env33-c): all of its words are ours
    if (output == nullptr) {
        fail(errno);
    }
    std::string picture = readToEnd(output);
    checkEnd(pclose(output), readToEnd(errors.get()));
    return picture;
}

} // namespace sdc
