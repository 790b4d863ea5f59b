#pragma once

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"

#include <atomic>
#include <cstdint>
#include <cstring>

/// The properties record as one atomic word, so that no reader sees half of a refresh. Used like a std::atomic; one of
/// the record itself is not lock-free with every compiler, because the record alone is aligned to one byte.
class AtomicProperties {
public:
    explicit AtomicProperties(SDCProperties properties)
        : m_word(toWord(properties))
    {
    }

    SDCProperties load() const
    {
        const std::uint32_t word = m_word;
        SDCProperties properties;
        std::memcpy(&properties, &word, sizeof properties);
        return properties;
    }

    void store(SDCProperties properties) { m_word = toWord(properties); }

    operator SDCProperties() const { return load(); }
    AtomicProperties& operator=(SDCProperties properties)
    {
        store(properties);
        return *this;
    }

private:
    static std::uint32_t toWord(SDCProperties properties)
    {
        std::uint32_t word = 0;
        std::memcpy(&word, &properties, sizeof word);
        return word;
    }

    std::atomic<std::uint32_t> m_word;
};
