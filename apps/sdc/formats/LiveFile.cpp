#include "apps/sdc/formats/LiveFile.h"

#include "apps/sdc/formats/Writing.h"
#include "apps/sdc/tty/Interrupt.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstddef>
#include <thread>
#include <utility>

namespace sdc {

namespace {

off_t sizeOf(int file)
{
    struct stat status {};
    return fstat(file, &status) == 0 ? status.st_size : 0;
}

} // namespace

LiveFile::LiveFile(const std::string& path)
    : m_target(path)
    , m_file(m_target.open())
{
}

LiveFile::~LiveFile()
{
    if ((!m_hasBegun || m_isInVain) && m_target.isFile() && !m_target.isThere()) {
        unlink((m_target.folder() / m_target.fileName()).c_str());
    }
}

void LiveFile::put(std::string_view lines)
{
    if (!m_file) {
        return;
    }
    m_pending += m_hasBegun ? "" : m_head;
    m_pending += lines;
    m_hasBegun = true;
}

void LiveFile::pass()
{
    constexpr std::size_t mostPending = 1 << 20;
    constexpr std::chrono::milliseconds pause{10};
    if (!m_file || m_pending.empty()) {
        return;
    }
    clear();
    std::string_view left = m_pending;
    Written written = writeSome(m_file->number(), left);
    while (written == Written::someForNow && left.size() > mostPending && !isInterrupted()) {
        std::this_thread::sleep_for(pause);
        written = writeSome(m_file->number(), left);
    }
    if (written == Written::failed) {
        end(left);
    } else {
        m_pending.erase(0, m_pending.size() - left.size());
    }
}

/// What stood there goes in the moment in which something takes its place.
void LiveFile::clear()
{
    if (!std::exchange(m_isCleared, true) && m_target.isFile() && ftruncate(m_file->number(), 0) < 0) {
        m_file.reset();
        m_target.fail();
    }
}

bool LiveFile::finish()
{
    if (!m_hasBegun && m_file && m_target.isFile() && sizeOf(m_file->number()) > 0) {
        return false;
    }
    put("");
    if (m_file) {
        clear();
        std::string_view left = m_pending;
        if (!writeAll(m_file->number(), left) || !m_file->reset()) {
            end(left);
        }
        m_file.reset();
    }
    return true;
}

/// @param left  what could not be written of what was put
void LiveFile::end(std::string_view left)
{
    const int error = errno;
    cutToWholeLine(std::string_view(m_pending).substr(0, m_pending.size() - left.size()));
    m_isInVain = m_target.isFile() && sizeOf(m_file->number()) == 0;
    m_file.reset();
    if (error != EPIPE) {
        errno = error;
        m_target.fail();
    }
}

/// @param written  behind a whole line
void LiveFile::cutToWholeLine(std::string_view written) const
{
    const std::size_t lineEnd = written.rfind('\n');
    const std::size_t half = written.size() - (lineEnd == std::string_view::npos ? 0 : lineEnd + 1);
    if (m_target.isFile() && half > 0) {
        static_cast<void>(!ftruncate(m_file->number(), sizeOf(m_file->number()) - static_cast<off_t>(half)));
    }
}

} // namespace sdc
