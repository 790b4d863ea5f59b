#pragma once

#include "tests/support/Waiting.h"

#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

/// A program on a terminal of so many columns.
class OnPseudoTerminal {
public:
    using Environment = std::vector<std::pair<std::string, std::string>>;

    OnPseudoTerminal(const std::filesystem::path& folder, std::vector<std::string> command, unsigned short columns,
        const Environment& environment = {}, unsigned short rows = 40)
    {
        winsize size{.ws_row = rows, .ws_col = columns, .ws_xpixel = 0, .ws_ypixel = 0};
        m_pid = forkpty(&m_terminal, nullptr, nullptr, &size);
        if (m_pid == 0) {
            std::filesystem::current_path(folder);
            setenv("TERM", "xterm", 1);
            unsetenv("NO_COLOR");
            for (const auto& [name, value] : environment) {
                setenv(name.c_str(), value.c_str(), 1);
            }
            std::vector<char*> words;
            for (std::string& word : command) {
                words.push_back(word.data());
            }
            words.push_back(nullptr);
            execv(words[0], words.data());
            _exit(126);
        }
    }

    ~OnPseudoTerminal()
    {
        if (m_pid > 0) {
            kill(m_pid, SIGKILL);
            waitpid(m_pid, nullptr, 0);
        }
        close(m_terminal);
    }

    OnPseudoTerminal(const OnPseudoTerminal&) = delete;
    OnPseudoTerminal& operator=(const OnPseudoTerminal&) = delete;

    /// Reads until a text has been shown, bounded.
    bool shows(const std::string& text)
    {
        return tests::eventually([&] { return m_shown.find(text) != std::string::npos || !readSome(); })
            && m_shown.find(text) != std::string::npos;
    }

    /// The same of what was shown behind the text that was asked for so before.
    bool goesOnWith(const std::string& text)
    {
        std::size_t place = std::string::npos;
        const auto isThere = [&] { return (place = m_shown.find(text, m_asked)) != std::string::npos; };
        tests::eventually([&] { return isThere() || (!readSome() && !isThere()); });
        m_asked = place == std::string::npos ? m_asked : place + text.size();
        return place != std::string::npos;
    }

    void type(const std::string& keys) const { static_cast<void>(::write(m_terminal, keys.data(), keys.size())); }

    void resize(unsigned short columns) const
    {
        const winsize size{.ws_row = 40, .ws_col = columns, .ws_xpixel = 0, .ws_ypixel = 0};
        ioctl(m_terminal, TIOCSWINSZ, &size);
    }

    void signal(int number) const { kill(m_pid, number); }

    /// Reads to the end, bounded. Returns the program's exit status.
    int finish()
    {
        tests::eventually([&] { return !readSome(); });
        int status = 0;
        if (!tests::eventually([&] { return waitpid(m_pid, &status, WNOHANG) == m_pid; })) {
            return -1;
        }
        m_pid = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

    /// All that came, as it came: carriage returns, escape sequences.
    const std::string& shown() const { return m_shown; }

private:
    /// Returns false when the program has closed the terminal.
    bool readSome()
    {
        constexpr int patience_ms = 100;
        pollfd watched{.fd = m_terminal, .events = POLLIN, .revents = 0};
        if (poll(&watched, 1, patience_ms) <= 0) {
            return true;
        }
        char buffer[4096];
        const ssize_t count = ::read(m_terminal, buffer, sizeof buffer);
        m_shown.append(buffer, static_cast<std::size_t>(count > 0 ? count : 0));
        return count > 0;
    }

    int m_terminal = -1;
    pid_t m_pid = -1;
    std::string m_shown;
    std::size_t m_asked = 0; ///< so much of it
};
