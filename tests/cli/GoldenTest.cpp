// Whole runs, compared byte for byte with what was looked at and found good. SDC_UPDATE_GOLDEN=1 writes them anew; look at
// the differences before you commit them.

#include "tests/cli/SdcFixture.h"

#include <cctype>

namespace {

/// Progress says how far a scan was whenever the program looked, which depends on the machine.
std::string withoutProgress(const std::string& text)
{
    std::string rest;
    for (const std::string& line : lines(text)) {
        rest += line.starts_with("progress ") ? "" : line + "\n";
    }
    return rest;
}

struct Transcript {
    const char* name;
    std::vector<const char*> commands;
};

std::ostream& operator<<(std::ostream& stream, const Transcript& transcript)
{
    return stream << transcript.name;
}

class Golden : public Sdc, public testing::WithParamInterface<Transcript> {};

TEST_P(Golden, transcriptIsAsItWas)
{
    std::string transcript;
    for (const std::string command : GetParam().commands) {
        const Outcome outcome = run(command);
        transcript += "$ sdc " + command + "\n" + outcome.out + (outcome.err.empty() ? "" : "--- standard error\n")
            + withoutProgress(outcome.err) + "--- status " + std::to_string(outcome.status) + "\n\n";
    }
    const std::filesystem::path golden = std::filesystem::path(SDC_GOLDEN) / (GetParam().name + std::string(".txt"));
    if (std::getenv("SDC_UPDATE_GOLDEN") != nullptr) {
        std::ofstream(golden, std::ios::binary) << transcript;
    }
    std::ifstream file(golden, std::ios::binary);
    EXPECT_EQ(transcript, std::string(std::istreambuf_iterator<char>(file), {}));
}

#define START " --start-time 2026-01-02T03:04:05Z"

const Transcript transcripts[] = {
    {"help",
        {"", "--help", "scan --help", "plan --help", "console --help", "scenarios --help", "scenarios check --help",
            "scenarios replay --help", "schema --help", "plot --help", "compare --help"}},
    {"scan-channel",
        {"scan channel", "scan channel --quiet --sweep -" START, "scan channel --quiet --csv -" START,
            "scan channel --quiet --json -" START}},
    {"scan-sub-band", {"scan sub-band --rows 50", "scan sub-band --scenario 38-long --rows 10"}},
    {"scan-several",
        {"scan channel --scenario 8-quad --rows 4", "scan channel --repeat 3", "scan channel --scenario 23-cochannel"}},
    {"scan-failure",
        {"scan channel --scenario flaky --repeat 5 --rows 4", "scan channel --scenario dead-receiver --rows 4"}},
    {"plan", {"plan", "plan --scenario 8-quad --speed 60", "plan --scenario 38-long", "plan --json"}},
    {"scenarios", {"scenarios list", "scenarios show dead-receiver", "scenarios check storm flaky"}},
    {"plot-and-compare",
        {"scan channel --quiet --json a.json" START, "scan channel --scenario 23-cochannel --quiet --json c.json" START,
            "scan channel --quiet --json b.json --repeat 2" START, "plot a.json --width 80 --height 24",
            "compare a.json b.json", "compare a.json b.json --threshold 0.5", "compare a.json c.json"}},
};

std::string nameOf(const testing::TestParamInfo<Transcript>& instance)
{
    std::string name = instance.param.name;
    std::erase(name, '-');
    return name;
}
INSTANTIATE_TEST_SUITE_P(Transcripts, Golden, testing::ValuesIn(transcripts), nameOf);

} // namespace
