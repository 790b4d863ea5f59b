#include "apps/sdc/results/Gnuplot.h"

#include "support/Text.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace sdc {

namespace {

[[noreturn]] void fail(int error)
{
    throw std::runtime_error("cannot run gnuplot: " + std::generic_category().message(error));
}

/// A file descriptor, closed in the end.
class Descriptor {
public:
    explicit Descriptor(int number)
        : m_number(number)
    {
    }
    ~Descriptor() { reset(); }
    Descriptor(Descriptor&& other) noexcept
        : m_number(std::exchange(other.m_number, -1))
    {
    }
    Descriptor& operator=(Descriptor&&) = delete;

    int number() const { return m_number; }
    bool isOpen() const { return m_number >= 0; }
    void reset()
    {
        if (isOpen()) {
            close(std::exchange(m_number, -1));
        }
    }

private:
    int m_number;
};

struct Channel {
    Descriptor ours;
    Descriptor theirs;
};

Channel makePipeToUs()
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        fail(errno);
    }
    return {Descriptor(ends[0]), Descriptor(ends[1])};
}

/// A socket and not a pipe, because that can be written to without a signal when the other side is gone.
Channel makeSocketToThem()
{
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        fail(errno);
    }
    return {Descriptor(ends[0]), Descriptor(ends[1])};
}

/// Our environment without what would change the picture.
std::vector<std::string> environmentOfGnuplot()
{
    std::vector<std::string> variables{"LC_ALL=C.UTF-8"};
    for (char** variable = environ; *variable != nullptr; ++variable) {
        const std::string_view text = *variable;
        if (!text.starts_with("LC_") && !text.starts_with("LANG") && !text.starts_with("GNUPLOT")
            && !text.starts_with("GNUTERM") && !text.starts_with("GDFONTPATH")) {
            variables.emplace_back(text);
        }
    }
    return variables;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

/// How the new process is started: with the three descriptors as its standard ones, and with SIGPIPE as every program
/// expects it, whatever we have made of it.
class SpawnSettings {
public:
    SpawnSettings(int input, int output, int errors)
    {
        posix_spawn_file_actions_init(&m_actions);
        posix_spawn_file_actions_adddup2(&m_actions, input, STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&m_actions, output, STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&m_actions, errors, STDERR_FILENO);
        posix_spawnattr_init(&m_attributes);
        sigset_t restored;
        sigemptyset(&restored);
        sigaddset(&restored, SIGPIPE);
        posix_spawnattr_setsigdefault(&m_attributes, &restored);
        posix_spawnattr_setflags(&m_attributes, POSIX_SPAWN_SETSIGDEF);
    }
    ~SpawnSettings()
    {
        posix_spawn_file_actions_destroy(&m_actions);
        posix_spawnattr_destroy(&m_attributes);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    const posix_spawn_file_actions_t* actions() const { return &m_actions; }
    const posix_spawnattr_t* attributes() const { return &m_attributes; }

private:
    posix_spawn_file_actions_t m_actions{};
    posix_spawnattr_t m_attributes{};
};

/// A gnuplot that runs.
class Process {
public:
    Process()
        : m_input(makeSocketToThem())
        , m_output(makePipeToUs())
        , m_errors(makePipeToUs())
    {
        std::vector<std::string> arguments{"gnuplot", "--default-settings"};
        std::vector<std::string> environment = environmentOfGnuplot();
        const SpawnSettings settings(m_input.theirs.number(), m_output.theirs.number(), m_errors.theirs.number());
        const int error = posix_spawnp(&m_process, "gnuplot", settings.actions(), settings.attributes(),
            pointersTo(arguments).data(), pointersTo(environment).data());
        if (error == ENOENT) {
            throw std::runtime_error("a plot needs gnuplot, which is not there: install gnuplot-nox");
        }
        if (error != 0) {
            fail(error);
        }
        m_input.theirs.reset();
        m_output.theirs.reset();
        m_errors.theirs.reset();
    }

    /// Feeds it the program and takes what it writes, whichever goes on, until both its outputs end.
    void talk(std::string_view program)
    {
        while (m_output.ours.isOpen() || m_errors.ours.isOpen()) {
            std::array<pollfd, 3> ends{{{m_input.ours.number(), POLLOUT, 0}, {m_output.ours.number(), POLLIN, 0},
                {m_errors.ours.number(), POLLIN, 0}}};
            if (poll(ends.data(), ends.size(), -1) < 0) {
                continue; // interrupted
            }
            if (ends[0].revents != 0) {
                feed(program);
            }
            if (ends[1].revents != 0) {
                take(m_output.ours, m_written);
            }
            if (ends[2].revents != 0) {
                take(m_errors.ours, m_complaints);
            }
        }
    }

    /// Its status, as waitpid has it.
    int wait()
    {
        int status = 0;
        while (waitpid(m_process, &status, 0) < 0 && errno == EINTR) {
        }
        return status;
    }

    std::string takeWritten() { return std::move(m_written); }
    const std::string& complaints() const { return m_complaints; }

private:
    void feed(std::string_view& program)
    {
        const ssize_t sent = send(m_input.ours.number(), program.data(), program.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
        if (sent >= 0) {
            program.remove_prefix(static_cast<std::size_t>(sent));
        }
        const bool isGone = sent < 0 && errno != EAGAIN && errno != EINTR; // its complaints tell why
        if (isGone || program.empty()) {
            m_input.ours.reset();
        }
    }

    static void take(Descriptor& from, std::string& text)
    {
        std::array<char, 65536> buffer{};
        const ssize_t count = read(from.number(), buffer.data(), buffer.size());
        if (count > 0) {
            text.append(buffer.data(), static_cast<std::size_t>(count));
        } else if (count == 0 || errno != EINTR) {
            from.reset();
        }
    }

    Channel m_input;
    Channel m_output;
    Channel m_errors;
    pid_t m_process = 0;
    std::string m_written;
    std::string m_complaints;
};

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

} // namespace

std::string runGnuplot(const std::string& program)
{
    Process process;
    process.talk(program);
    const int status = process.wait();
    if (WIFSIGNALED(status)) {
        throw std::runtime_error("gnuplot was ended by signal " + std::to_string(WTERMSIG(status)));
    }
    if (WEXITSTATUS(status) != 0) {
        throw std::runtime_error("gnuplot failed: " + joined(process.complaints()));
    }
    return process.takeWritten();
}

} // namespace sdc
