#include "apps/sdc/console/LineHistory.h"

#include "apps/sdc/formats/OutputFile.h"
#include "apps/sdc/tty/Screen.h"
#include "support/Text.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

namespace sdc {

namespace {

namespace fs = std::filesystem;

/// A regular file, or nothing: a pipe would let its opener wait.
class HistoryFile {
public:
    HistoryFile(const fs::path& path, int flags)
        : m_number(open(path.c_str(), flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, ownersOnly))
    {
        struct stat status {};
        m_error = m_number < 0 || fstat(m_number, &status) != 0 ? errno : 0;
        if (m_error == 0 && !S_ISREG(status.st_mode)) {
            m_error = EINVAL;
        }
        m_size = static_cast<std::size_t>(status.st_size);
    }
    ~HistoryFile()
    {
        if (m_number >= 0) {
            close(m_number);
        }
    }
    HistoryFile(const HistoryFile&) = delete;
    HistoryFile& operator=(const HistoryFile&) = delete;

    int error() const { return m_error; } ///< of the system; 0: none

    /// The last bytes, so many at most.
    std::string readEnd(std::size_t most) const
    {
        if (m_error != 0) {
            return "";
        }
        std::string text(std::min(m_size, most), '\0');
        const ssize_t count = pread(m_number, text.data(), text.size(), static_cast<off_t>(m_size - text.size()));
        text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        return text;
    }

    /// In one piece: other consoles may write to the file, too.
    void write(std::string_view text)
    {
        m_error = fchmod(m_number, ownersOnly) != 0 ? errno : 0;
        errno = ENOSPC; // told by a part written
        const ssize_t count = m_error == 0 ? ::write(m_number, text.data(), text.size()) : 0;
        m_error = m_error == 0 && std::cmp_not_equal(count, text.size()) ? errno : m_error;
    }

private:
    static constexpr mode_t ownersOnly = 0600;

    int m_number;
    int m_error = 0;
    std::size_t m_size = 0;
};

std::string reasonOf(int error)
{
    return error == EINVAL ? "it is no regular file" : std::generic_category().message(error);
}

} // namespace

LineHistory::LineHistory(std::optional<fs::path> file)
    : m_file(std::move(file))
{
    if (m_file) {
        load();
    }
}

/// A file that has become long is cut to what a console keeps. The first line of its end is none.
void LineHistory::load()
{
    constexpr std::size_t mostBytes = 200 * mostLines;
    const std::string end = HistoryFile(*m_file, O_RDONLY).readEnd(mostBytes);
    const bool isCut = end.size() == mostBytes;
    std::istringstream text(isCut ? end.substr(end.find('\n') + 1) : end);
    for (std::string line; std::getline(text, line);) {
        m_lines.push_back(line);
    }
    const bool isLong = isCut || m_lines.size() >= 2 * mostLines;
    const std::size_t surplus = m_lines.size() - std::min(m_lines.size(), mostLines);
    m_lines.erase(m_lines.begin(), std::next(m_lines.begin(), static_cast<std::ptrdiff_t>(surplus)));
    if (isLong) {
        rewrite();
    }
}

void LineHistory::rewrite() const
{
    try {
        writeFile(m_file->string(), [this](std::ostream& stream) {
            for (const std::string& line : m_lines) {
                stream << line << '\n';
            }
        });
    } catch (const std::runtime_error&) { // the next console tries again
    }
}

bool LineHistory::add(const std::string& line)
{
    const bool isBlank = line.find_first_not_of(" \t") == std::string::npos;
    const bool isOneLine = line.find_first_of(std::string_view("\n\0", 2)) == std::string::npos;
    const bool isRepeated = !m_lines.empty() && m_lines.back() == line;
    if (isBlank || !isOneLine || isRepeated || line.size() > longestLine) {
        return false;
    }
    if (m_lines.size() == mostLines) {
        m_lines.erase(m_lines.begin());
    }
    m_lines.push_back(line);
    if (m_file && m_failure.empty()) {
        append(line);
    }
    return true;
}

void LineHistory::append(const std::string& line)
{
    constexpr mode_t ownersOnly = 0700;
    fs::path folder;
    for (const fs::path& part : m_file->parent_path()) {
        folder /= part;
        mkdir(folder.c_str(), ownersOnly); // those that are there stay as they are
    }
    HistoryFile file(*m_file, O_WRONLY | O_APPEND | O_CREAT);
    if (file.error() == 0) {
        file.write(line + "\n");
    }
    if (file.error() != 0) {
        m_failure =
            "the history is not kept: cannot write to " + support::shown(m_file->string()) + ": " + reasonOf(file.error());
    }
}

std::optional<fs::path> historyFile()
{
    const fs::path state(environment("XDG_STATE_HOME"));
    const fs::path home(environment("HOME"));
    const fs::path within = fs::path("sdc") / "history";
    if (state.is_absolute()) {
        return state / within;
    }
    return home.is_absolute() ? std::optional(home / ".local" / "state" / within) : std::nullopt;
}

} // namespace sdc
