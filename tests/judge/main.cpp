// Asks of thousands of random links whether they are disturbed, and compares what is said with what the simulator knows.

#include "tests/judge/Answer.h"
#include "tests/judge/Document.h"
#include "tests/judge/Failures.h"
#include "tests/judge/Outcome.h"
#include "tests/judge/Tables.h"
#include "tests/judge/trial/Trial.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace {

struct Seeds {
    std::uint64_t first;
    std::uint64_t last;
};

/// Rules are fixed on one set and measured on the other.
constexpr Seeds seedsForRules{1, 20000};
constexpr Seeds seedsToMeasure{1000001, 1020000};

struct Options {
    std::string seeds = "measure";
    bool isBaseline = false;
    std::size_t failures = 0;
    unsigned threads = std::thread::hardware_concurrency();
    std::pair<std::uint64_t, std::string> scenario;                   ///< seed and file; no file: none is written
    std::pair<std::filesystem::path, std::filesystem::path> document; ///< and its picture; none: nothing is written
};

/// "rules", "measure", or "5-20".
Seeds parseSeeds(const std::string& text)
{
    if (text == "rules" || text == "measure") {
        return text == "rules" ? seedsForRules : seedsToMeasure;
    }
    Seeds seeds{};
    const char* const end = text.data() + text.size();
    const auto [dash, firstError] = std::from_chars(text.data(), end, seeds.first);
    const bool isRange = firstError == std::errc() && dash != end && *dash == '-';
    const auto [rest, lastError] = std::from_chars(isRange ? dash + 1 : end, end, seeds.last);
    if (!isRange || lastError != std::errc() || rest != end || seeds.first > seeds.last) {
        throw std::invalid_argument("--seeds: invalid '" + text + "', expected: rules, measure, or FROM-TO");
    }
    return seeds;
}

void writeFile(const std::filesystem::path& file, const std::string& text)
{
    std::ofstream stream(file);
    stream << text;
    stream.close();
    if (!stream) {
        throw std::runtime_error(file.string() + " cannot be written");
    }
}

int writeScenario(std::uint64_t seed, const std::string& file)
{
    const judge::Trial trial = judge::makeTrial(seed);
    writeFile(file, judge::scenarioText(trial));
    std::cout << "sdc scan " << judge::scanOptions(trial) << " --scenario " << file << '\n';
    return 0;
}

/// The figures go to the document and its picture; the plain detector is measured beside the other.
void update(const Options& options, const std::vector<judge::Outcome>& outcomes)
{
    const auto [first, last] = parseSeeds(options.seeds);
    const std::vector<judge::Outcome> plain = judge::tryAll(first, last, judge::plainThreshold, options.threads);
    const std::filesystem::path& picture = options.document.second;
    std::ostringstream text;
    text << "![Detection against level over the floor]("
         << picture.lexically_proximate(options.document.first.parent_path()).generic_string() << ")\n\n```\n"
         << outcomes.size() << " links, seeds " << first << " to " << last << "\n\n";
    judge::writeGoals(text, outcomes);
    text << "\nthe plain detector\n\n";
    judge::writeGoals(text, plain);
    judge::writeTables(text, outcomes);
    text << "```\n";
    judge::updateDocument(options.document.first.string(), text.str());
    writeFile(picture, judge::picture(outcomes, plain));
}

int run(const Options& options)
{
    if (!options.scenario.second.empty()) {
        return writeScenario(options.scenario.first, options.scenario.second);
    }
    const auto [first, last] = parseSeeds(options.seeds);
    const judge::Detector detector = options.isBaseline ? judge::plainThreshold : judge::verdictOfSdc;
    const std::vector<judge::Outcome> outcomes = judge::tryAll(first, last, detector, options.threads);
    std::cout << outcomes.size() << " links, seeds " << first << " to " << last << "\n\n";
    const bool areMet = judge::writeGoals(std::cout, outcomes);
    judge::writeTables(std::cout, outcomes);
    if (options.failures > 0) {
        judge::writeFailures(std::cout, outcomes, options.failures);
    }
    if (!options.document.first.empty()) {
        update(options, outcomes);
        return 0;
    }
    return areMet ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    Options options;
    CLI::App app("Measures verdicts against the truth, on random links. Status 0 when all goals are met, otherwise 1.");
    app.add_option("--seeds", options.seeds, "rules, measure, or FROM-TO")->capture_default_str();
    app.add_flag("--baseline", options.isBaseline, "ask a plain detector with fixed thresholds");
    app.add_option("--threads", options.threads, "the figures do not depend on it");
    app.add_option("--failures", options.failures, "show so many links that count against each goal");
    app.add_option(
        "--write-scenario", options.scenario, "SEED FILE: write a link as a scenario, and tell how it is scanned");
    app.add_option("--document", options.document,
        "FILE PICTURE: write the figures into a document, and draw them; then 0 whatever they are");
    CLI11_PARSE(app, argc, argv);
    try {
        return run(options);
    } catch (const std::exception& error) {
        std::cerr << "judge: " << error.what() << '\n';
        return 2;
    }
}
