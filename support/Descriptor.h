#pragma once

#include <unistd.h>

#include <utility>

namespace support {

/// A file descriptor, closed in the end.
class Descriptor {
public:
    /// @param number  below 0: none
    explicit Descriptor(int number)
        : m_number(number)
    {
    }
    Descriptor(Descriptor&& other) noexcept
        : m_number(other.release())
    {
    }
    Descriptor& operator=(Descriptor&&) = delete;
    ~Descriptor() { reset(); }

    int number() const { return m_number; }

    /// Leaves it open, for somebody else to close.
    int release() { return std::exchange(m_number, -1); }

    /// Closes it now. Some file systems tell only here that bytes could not be kept: then it returns false, and errno tells
    /// the reason.
    bool reset() { return m_number < 0 || close(std::exchange(m_number, -1)) == 0; }

private:
    int m_number;
};

} // namespace support
