#pragma once

#include <cstddef>
#include <cstdint>
#include <random>

namespace soak {

/// Random choices that follow from a seed alone, with every standard library.
class Dice {
public:
    explicit Dice(std::uint64_t seed)
        : m_random(seed)
    {
    }

    std::uint64_t word() { return m_random(); }
    std::uint64_t below(std::uint64_t bound) { return m_random() % bound; }
    std::uint64_t between(std::uint64_t lowest, std::uint64_t highest) { return lowest + below(highest - lowest + 1); }
    bool oneIn(std::uint64_t many) { return below(many) == 0; }

    template <typename Container>
    const auto& pick(const Container& container)
    {
        return *(std::begin(container) + static_cast<std::ptrdiff_t>(below(std::size(container))));
    }

private:
    std::mt19937_64 m_random;
};

} // namespace soak
