#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <random>

namespace tests {

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

    double uniform(double low, double high) { return low + (high - low) * share(); }

    /// Each factor as likely as any other: as often from 1 to 10 as from 10 to 100. Both ends above 0.
    double logUniform(double low, double high) { return low * std::exp(std::log(high / low) * share()); }

    /// @param probability  0 to 1
    bool happens(double probability) { return share() < probability; }

    template <typename Container>
    const auto& pick(const Container& container)
    {
        return *(std::begin(container) + static_cast<std::ptrdiff_t>(below(std::size(container))));
    }

private:
    /// From 0 to just below 1.
    double share() { return static_cast<double>(m_random() >> 11) * 0x1p-53; }

    std::mt19937_64 m_random;
};

} // namespace tests
