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
    ~Descriptor() { reset(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int number() const { return m_number; }

    /// Leaves it open, for somebody else to close.
    int release() { return std::exchange(m_number, -1); }

    /// Closes it now.
    void reset()
    {
        if (m_number >= 0) {
            close(std::exchange(m_number, -1));
        }
    }

private:
    int m_number;
};

} // namespace support
