// Makes random terminals and scans with them, for a time or for a number of rounds, and fails as soon as something does not
// hold that must.

#include "tests/soak/Memory.h"
#include "tests/soak/RandomRadio.h"
#include "tests/soak/Round.h"
#include "tests/soak/SoakFailure.h"

#include <CLI/CLI.hpp>

#include <chrono>
#include <exception>
#include <iostream>

namespace {

using Time = std::chrono::steady_clock;

struct Options {
    double seconds = 0;
    std::uint64_t rounds = 0;
    std::uint64_t seed = 1;
    bool isMemoryFree = false;
};

/// How far the soak is.
class Course {
public:
    explicit Course(const Options& options)
        : m_options(options)
    {
    }

    /// Part of the whole that is done, from 0 to 1 and beyond.
    double part(std::uint64_t roundsDone) const
    {
        if (m_options.rounds > 0) {
            return static_cast<double>(roundsDone) / static_cast<double>(m_options.rounds);
        }
        return std::chrono::duration<double>(Time::now() - m_begin).count() / m_options.seconds;
    }

    /// Whole minutes passed since the last that was told; 0 for none.
    long newMinute()
    {
        const long minute = std::chrono::duration_cast<std::chrono::minutes>(Time::now() - m_begin).count();
        return minute > std::exchange(m_minute, minute) ? minute : 0;
    }

private:
    const Options& m_options;
    const Time::time_point m_begin = Time::now();
    long m_minute = 0;
};

std::string inMiB(long memory_KiB)
{
    std::ostringstream text;
    text << std::fixed << std::setprecision(1) << static_cast<double>(memory_KiB) / 1024 << " MiB";
    return text.str();
}

std::ostream& operator<<(std::ostream& stream, const soak::Tally& tally)
{
    return stream << tally.terminals << " terminals, " << tally.scans << " scans, " << tally.stops << " stops, "
                  << tally.faults << " faults injected, " << tally.deaths << " workers ended by them";
}

void requireLittleGrowth(long after_KiB, long end_KiB)
{
    constexpr double factor = 1.05;
    constexpr long allowance_KiB = 4 * 1024;
    const double limit_KiB = factor * static_cast<double>(after_KiB) + allowance_KiB;
    soak::require(static_cast<double>(end_KiB) <= limit_KiB, "memory has grown");
}

void soakFor(const Options& options)
{
    const std::vector<simulator::Link> links = soak::builtInLinks();
    const long start_KiB = soak::memory_KiB();
    long after_KiB = 0;
    soak::Tally tally;
    Course course(options);
    for (std::uint64_t round = 0; course.part(round) < 1.0; ++round) {
        try {
            soak::Round(links, options.seed + round, tally).run();
        } catch (const std::exception& error) {
            throw soak::SoakFailure(
                std::string(error.what()) + " (--seed " + std::to_string(options.seed + round) + " --rounds 1)");
        }
        if (after_KiB == 0 && course.part(round + 1) >= 0.1) {
            after_KiB = soak::memory_KiB();
        }
        if (const long minute = course.newMinute(); minute > 0) {
            std::cout << minute << " min: " << tally << "; memory " << inMiB(soak::memory_KiB()) << std::endl;
        }
    }
    soak::require(tally.scans > 0, "there was no scan");
    const long end_KiB = soak::memory_KiB();
    std::cout << tally << "; memory " << inMiB(start_KiB) << " at start, " << inMiB(after_KiB) << " after the first tenth, "
              << inMiB(end_KiB) << " at end" << std::endl;
    if (!options.isMemoryFree) {
        requireLittleGrowth(after_KiB, end_KiB);
    }
}

} // namespace

int main(int argc, char** argv)
{
    Options options;
    CLI::App app("Scans with random terminals whose radios fail, and checks what must hold.");
    auto* const length = app.add_option_group("length");
    length->add_option("--seconds", options.seconds, "for so long")->check(CLI::PositiveNumber);
    length->add_option("--rounds", options.rounds, "for so many terminals")->check(CLI::PositiveNumber);
    length->require_option(1);
    app.add_option("--seed", options.seed, "of the first terminal; each further one has the next")->capture_default_str();
    app.add_flag("--any-memory", options.isMemoryFree, "let the memory grow");
    CLI11_PARSE(app, argc, argv);
    try {
        soakFor(options);
    } catch (const std::exception& error) {
        std::cerr << "soak: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
