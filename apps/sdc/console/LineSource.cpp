#include "apps/sdc/console/LineSource.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

namespace sdc {

PlainLines::PlainLines(int file, Signals& signals, std::ostream* prompts)
    : m_file(file)
    , m_signals(signals)
    , m_prompts(prompts)
{
}

std::optional<std::string> PlainLines::next()
{
    showPrompt();
    for (heedSignals(); !isEndWanted(); heedSignals()) {
        const std::size_t end = m_read.find('\n', m_looked);
        if (end != std::string::npos) {
            return takeLine(end);
        }
        if (m_isOver) {
            return m_read.empty() ? std::nullopt : std::optional(takeLine(m_read.size()));
        }
        bound();
        read();
    }
    return std::nullopt;
}

void PlainLines::showPrompt()
{
    if (m_prompts != nullptr) {
        *m_prompts << prompt << std::flush;
    }
}

/// Ctrl-C drops what has been typed of a line; the terminal has dropped the rest of it.
void PlainLines::heedSignals()
{
    if (m_signals.isInterrupted() && !isEndWanted()) {
        m_read.clear();
        m_looked = 0;
        *m_prompts << '\n';
        showPrompt();
    }
}

/// Takes more of the input in, or returns for a signal.
void PlainLines::read()
{
    std::array<pollfd, 2> watched{pollfd{.fd = m_file, .events = POLLIN, .revents = 0},
        {.fd = m_signals.descriptor(), .events = POLLIN, .revents = 0}};
    if (poll(watched.data(), watched.size(), -1) < 0 || watched[0].revents == 0) {
        return;
    }
    std::array<char, 1 << 14> buffer{};
    const ssize_t count = ::read(m_file, buffer.data(), buffer.size());
    if (count < 0 && errno != EINTR && errno != EAGAIN) {
        throw std::system_error(errno, std::generic_category(), "cannot read standard input");
    }
    m_isOver = count == 0;
    m_read.append(buffer.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
}

/// Of a line that is too long one byte too many is kept, by which it is known.
void PlainLines::bound()
{
    if (m_read.size() > longestLine) {
        m_read.resize(longestLine + 1);
    }
    m_looked = m_read.size();
}

std::string PlainLines::takeLine(std::size_t end)
{
    std::string line = m_read.substr(0, end);
    m_read.erase(0, end + 1);
    m_looked = 0;
    return line;
}

} // namespace sdc
