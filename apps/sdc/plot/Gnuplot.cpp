#include "apps/sdc/plot/Gnuplot.h"

#include "support/Descriptor.h"
#include "support/Text.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace sdc {

namespace {

using support::Descriptor;
using Deadline = std::chrono::steady_clock::time_point;

[[noreturn]] void fail(int error)
{
    throw std::runtime_error("cannot run gnuplot: " + std::generic_category().message(error));
}

int checked(int result)
{
    if (result < 0) {
        fail(errno);
    }
    return result;
}

std::string environment(const char* name, const char* otherwise)
{
    const char* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): nobody changes the environment
    return value == nullptr ? otherwise : value;
}

/// The first program of this name in PATH; empty where there is none.
std::string findGnuplot()
{
    std::istringstream folders(environment("PATH", "/usr/local/bin:/usr/bin:/bin"));
    for (std::string folder; std::getline(folders, folder, ':');) {
        const std::string path = (folder.empty() ? "." : folder) + "/gnuplot";
        std::error_code error;
        if (std::filesystem::is_regular_file(path, error) && access(path.c_str(), X_OK) == 0) {
            return path;
        }
    }
    return "";
}

/// Our environment, but for the language and the kind of picture.
std::vector<std::string> environmentOfGnuplot()
{
    std::vector<std::string> all{"LC_ALL=C.UTF-8", "GNUTERM=dumb"};
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string_view text = *entry;
        if (!text.starts_with("LC_ALL=") && !text.starts_with("GNUTERM=")) {
            all.emplace_back(text);
        }
    }
    return all;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

/// A file in memory, which is gone when the last program closes it, whatever ended that.
class MemoryFile {
public:
    explicit MemoryFile(const std::string& text = "")
        : m_file(checked(memfd_create("gnuplot", MFD_CLOEXEC)))
    {
        for (std::size_t done = 0; done < text.size();) {
            done += static_cast<std::size_t>(checkedSize(write(number(), text.data() + done, text.size() - done)));
        }
        checkedSize(lseek(number(), 0, SEEK_SET));
    }

    int number() const { return m_file.number(); }

    std::string text() const
    {
        std::string text(static_cast<std::size_t>(checkedSize(lseek(number(), 0, SEEK_END))), '\0');
        text.resize(static_cast<std::size_t>(checkedSize(pread(number(), text.data(), text.size(), 0))));
        return text;
    }

private:
    static ssize_t checkedSize(ssize_t size)
    {
        if (size < 0) {
            fail(errno);
        }
        return size;
    }

    Descriptor m_file;
};

struct Files {
    int input;
    int output;
    int errors;
};

/// A program that is running, in a process group of its own. It and what it has started are ended with this object, or when
/// our thread ends.
class Process {
public:
    Process(const std::string& path, const Files& files)
    {
        std::vector<std::string> words{"gnuplot", "--default-settings"};
        std::vector<std::string> environment = environmentOfGnuplot();
        const std::vector<char*> arguments = pointersTo(words);
        const std::vector<char*> variables = pointersTo(environment);
        const pid_t parent = getpid();
        m_pid = checked(fork());
        if (m_pid == 0) {
            become(path, files, parent, arguments, variables);
        }
        setpgid(m_pid, m_pid); // here and there, so that none of the two has to wait for the other
    }
    ~Process() { end(); }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// What ended it, as wait() tells; nothing when it has not ended by then.
    std::optional<int> waitUntil(Deadline deadline)
    {
        constexpr int pause_ms = 5;
        siginfo_t ended{};
        while (waitid(P_PID, static_cast<id_t>(m_pid), &ended, WEXITED | WNOHANG | WNOWAIT) != 0 || ended.si_pid == 0) {
            if (std::chrono::steady_clock::now() >= deadline) {
                return std::nullopt;
            }
            poll(nullptr, 0, pause_ms);
        }
        return end();
    }

private:
    /// Nothing here but calls of the system: other threads may have held any lock when we were forked off.
    [[noreturn]] static void become(const std::string& path, const Files& files, pid_t parent,
        const std::vector<char*>& arguments, const std::vector<char*>& variables)
    {
        constexpr int cannotBeRun = 126; // as a shell has it
        setpgid(0, 0);
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        const bool isPlaced = dup2(files.input, STDIN_FILENO) >= 0 && dup2(files.output, STDOUT_FILENO) >= 0
            && dup2(files.errors, STDERR_FILENO) >= 0;
        if (isPlaced && getppid() == parent) {
            execve(path.c_str(), arguments.data(), variables.data());
        }
        _exit(cannotBeRun);
    }

    /// Also of what it has left behind.
    int end()
    {
        int status = 0;
        if (m_pid > 0) {
            kill(-m_pid, SIGKILL);
            waitpid(std::exchange(m_pid, -1), &status, 0);
        }
        return status;
    }

    pid_t m_pid = -1;
};

/// Nothing when the end has not come by then.
std::optional<std::string> readToEnd(int file, Deadline deadline)
{
    std::array<char, 65536> buffer{};
    std::string text;
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        pollfd watched{.fd = file, .events = POLLIN, .revents = 0};
        const int ready = poll(&watched, 1, std::max(static_cast<int>(left.count()), 0));
        if (ready == 0) {
            return std::nullopt;
        }
        const ssize_t count = ready < 0 ? -1 : read(file, buffer.data(), buffer.size());
        if (count < 0 && errno != EINTR) {
            fail(errno);
        }
        if (count == 0) {
            return text;
        }
        text.append(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
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
    if (WIFSIGNALED(status)) {
        throw std::runtime_error("gnuplot was ended by signal " + std::to_string(WTERMSIG(status)));
    }
    if (WEXITSTATUS(status) != 0) {
        throw std::runtime_error("gnuplot failed: " + (words.empty() ? "it cannot be started" : joined(words)));
    }
}

} // namespace

std::string gnuplotObstacle()
{
    return findGnuplot().empty()
        ? "a picture needs gnuplot, which is not there: install gnuplot-nox (a plot as text needs none)"
        : "";
}

std::string runGnuplot(const std::string& program, std::chrono::milliseconds limit)
{
    const std::string path = findGnuplot();
    if (path.empty()) {
        throw std::runtime_error(gnuplotObstacle());
    }
    const Deadline deadline = std::chrono::steady_clock::now() + limit;
    const MemoryFile input(program);
    const MemoryFile errors;
    std::array<int, 2> ends{};
    checked(pipe2(ends.data(), O_CLOEXEC));
    const Descriptor output(ends[0]);
    Descriptor itsOutput(ends[1]);
    Process gnuplot(path, {.input = input.number(), .output = itsOutput.number(), .errors = errors.number()});
    itsOutput.reset();

    std::optional<std::string> picture = readToEnd(output.number(), deadline);
    const std::optional<int> status = picture ? gnuplot.waitUntil(deadline) : std::nullopt;
    if (!status) {
        throw std::runtime_error("gnuplot was ended, because it took more than " + support::duration(limit));
    }
    checkEnd(*status, errors.text());
    return std::move(*picture);
}

} // namespace sdc
