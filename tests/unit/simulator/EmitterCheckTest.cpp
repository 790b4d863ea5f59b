#include "tests/support/Recordings.h"
#include "tests/unit/simulator/Complaints.h"

#include <gtest/gtest.h>

#include <limits>
#include <utility>
#include <vector>

namespace {

using simulator::Carrier;
using simulator::ContinuousWave;
using simulator::EdgeLeakage;
using simulator::Emitter;
using simulator::Link;
using simulator::NoiseBand;
using simulator::Notch;
using simulator::Rain;
using simulator::Recording;
using simulator::Schedule;
using simulator::Shoulders;
using tests::complaintAfter;
using tests::complaintOf;
using tests::Impossibility;
using tests::plainLink;
using tests::recordingOf;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

void expectComplaints(const std::vector<Impossibility>& rows)
{
    for (const Impossibility& row : rows) {
        EXPECT_EQ(complaintAfter(row.spoil), row.path + ": " + row.text);
    }
}

std::string complaintAbout(const Emitter& emitter)
{
    Link link = plainLink();
    link.emitters.push_back(emitter);
    const std::string complaint = complaintOf(link);
    const std::string path = "emitters[1]: the ";
    EXPECT_TRUE(complaint.empty() || complaint.starts_with(path)) << complaint;
    return complaint.empty() ? complaint : complaint.substr(path.size());
}

Carrier shouldered(double width_kHz, double adjacent_dB, double further_dB)
{
    return {19000000.0, -30.0, 20000.0, 0.25, Shoulders{width_kHz, adjacent_dB, further_dB}};
}

TEST(ImpossibleEmitters, areToldWithTheirPlace)
{
    const std::pair<Emitter, std::string> rows[] = {
        {Carrier{-1.0, -30.0, 20000.0, 0.25}, "carrier's centre is -1 kHz; it must be 0 to 4294967295 kHz"},
        {Carrier{19e6, 61.0, 20000.0, 0.25}, "carrier's level is 61 dBm; it must be -200 to 60 dBm"},
        {Carrier{19e6, -30.0, 0.0, 0.25}, "carrier's symbol rate is 0 kBd; it must be 1 to 10000000 kBd"},
        {Carrier{19e6, -30.0, 20000.0, 1.25}, "carrier's roll-off is 1.25; it must be 0 to 1"},
        {shouldered(0.5, 30.0, 50.0), "channel width of the carrier's shoulders is 0.5 kHz; it must be 1 to 10000000 kHz"},
        {shouldered(28000.0, 0.0, 50.0), "distance to the carrier's first shoulder is 0 dB; it must be 0.1 to 200 dB"},
        {shouldered(28000.0, 30.0, -1.0), "distance to the carrier's second shoulder is -1 dB; it must be 0.1 to 200 dB"},
        {ContinuousWave{notANumber, -60.0}, "continuous wave's frequency is nan kHz; it must be 0 to 4294967295 kHz"},
        {ContinuousWave{19e6, -201.0}, "continuous wave's level is -201 dBm; it must be -200 to 60 dBm"},
        {ContinuousWave{19e6, -60.0, -1.0, 1000.0}, "continuous wave's drift is -1 kHz; it must be 0 to 10000000 kHz"},
        {ContinuousWave{19e6, -60.0, 1.0, 0.0},
            "continuous wave's drift period is 0 ms; it must be 0.01 to 100000000000 ms"},
        {ContinuousWave{19e6, -60.0, 0.0, -1.0}, "continuous wave's drift period is -1 ms; it must be 0 to 100000000000 ms"},
        {NoiseBand{19e6, 18e6, 3.0},
            "noise band's lowest frequency, 19000000 kHz, lies above the highest, 18000000 kHz; it must not"},
        {NoiseBand{-1.0, 18e6, 3.0}, "noise band's lowest frequency is -1 kHz; it must be 0 to 4294967295 kHz"},
        {NoiseBand{18e6, infinite, 3.0}, "noise band's highest frequency is inf kHz; it must be 0 to 4294967295 kHz"},
        {NoiseBand{18e6, 19e6, 101.0}, "noise band's rise is 101 dB; it must be 0 to 100 dB"},
        {EdgeLeakage{-1.0, -60.0, 1.0}, "leakage's edge is -1 kHz; it must be 0 to 4294967295 kHz"},
        {EdgeLeakage{19e6, 61.0, 1.0}, "leakage's density is 61 dBm/MHz; it must be -200 to 60 dBm/MHz"},
        {EdgeLeakage{19e6, -60.0, 0.0}, "leakage's slope is 0 dB/MHz; it must be 0.0001 to 10000 dB/MHz"},
        {Recording{19e6, nullptr}, "recording is empty; it must have at least one bin"},
        {recordingOf(-1.0, 1000.0, {-60.0}), "recording's lowest frequency is -1 kHz; it must be 0 to 4294967295 kHz"},
        {recordingOf(19e6, 0.0001, {-60.0}), "recording's step is 0.0001 kHz; it must be 0.001 to 10000000 kHz"},
    };
    for (const auto& [emitter, why] : rows) {
        EXPECT_EQ(complaintAbout(emitter), why);
    }
}

TEST(ImpossibleSchedules, areToldWithTheirEmittersPlace)
{
    const std::pair<Schedule, std::string> rows[] = {
        {{.from_ms = -1.0}, "schedule's beginning is -1 ms; it must be 0 to 100000000000 ms"},
        {{.from_ms = infinite}, "schedule's beginning is inf ms; it must be 0 to 100000000000 ms"},
        {{.duration_ms = 0.0}, "schedule's duration is 0 ms; it must be 0.001 to inf ms"},
        {{.duration_ms = notANumber}, "schedule's duration is nan ms; it must be 0.001 to inf ms"},
        {{.duration_ms = 100.0, .every_ms = 99.0},
            "time from turn to turn of the schedule is 99 ms; it must be 100 to 100000000000 ms"},
        {{.duration_ms = 100.0, .every_ms = -1.0},
            "time from turn to turn of the schedule is -1 ms; it must be 100 to 100000000000 ms"},
        {{.every_ms = 1000.0}, "schedule has turns without end; it must then be on once"},
    };
    for (const auto& [schedule, why] : rows) {
        EXPECT_EQ(complaintAbout(Emitter(ContinuousWave{19e6, -60.0}, schedule)), why);
    }
}

TEST(ImpossibleFading, isToldWithItsPlace)
{
    const Rain rain{0.0, 1.0, 10.0, 1000.0};
    const Notch notch{19e6, 19e6, 0.0, 1000.0, 10.0};
    expectComplaints({
        {[&](Link& link) {
             link.rain = {rain, {-1.0, 1.0, 10.0, 0.0}};
         },
            "fading.rain[1]", "the rain's beginning is -1 ms; it must be 0 to 100000000000 ms"},
        {[&](Link& link) {
             link.rain = {{0.0, 0.0, 10.0, 0.0}};
         },
            "fading.rain[0]", "the rain's rate is 0 dB/s; it must be 0.0001 to 1000 dB/s"},
        {[&](Link& link) {
             link.rain = {{0.0, 1.0, 201.0, 0.0}};
         },
            "fading.rain[0]", "the rain's depth is 201 dB; it must be 0 to 200 dB"},
        {[&](Link& link) {
             link.rain = {{0.0, 1.0, 10.0, infinite}};
         },
            "fading.rain[0]", "the time that the rain stays is inf ms; it must be 0 to 100000000000 ms"},
        {[&](Link& link) { link.notches = std::vector<Notch>(9, notch); }, "fading.notches",
            "the number of notches is 9; it must be 0 to 8"},
        {[&](Link& link) {
             link.notches = {notch, {-1.0, 19e6, 0.0, 1000.0, 10.0}};
         },
            "fading.notches[1]", "the notch's first centre is -1 kHz; it must be 0 to 4294967295 kHz"},
        {[&](Link& link) {
             link.notches = {{19e6, notANumber, 0.0, 1000.0, 10.0}};
         },
            "fading.notches[0]", "the notch's last centre is nan kHz; it must be 0 to 4294967295 kHz"},
        {[&](Link& link) {
             link.notches = {{19e6, 19e6, -1.0, 1000.0, 10.0}};
         },
            "fading.notches[0]", "the notch's speed is -1 kHz/s; it must be 0 to 10000000 kHz/s"},
        {[&](Link& link) {
             link.notches = {{19e6, 19e6, 0.0, 0.0, 10.0}};
         },
            "fading.notches[0]", "the notch's width is 0 kHz; it must be 0.001 to 10000000 kHz"},
        {[&](Link& link) {
             link.notches = {{19e6, 19e6, 0.0, 1000.0, -1.0}};
         },
            "fading.notches[0]", "the notch's depth is -1 dB; it must be 0 to 200 dB"},
    });
}

TEST(PossibleLinks, haveEmittersAtTheVeryEdges)
{
    const Emitter rows[] = {
        Carrier{0.0, -200.0, 1.0, 0.0},
        Carrier{4294967295.0, 60.0, 10000000.0, 1.0},
        shouldered(1.0, 0.1, 0.1),
        shouldered(10000000.0, 200.0, 200.0),
        ContinuousWave{0.0, 60.0},
        ContinuousWave{0.0, -200.0, 10000000.0, 0.01},
        NoiseBand{19e6, 19e6, 0.0},
        NoiseBand{0.0, 4294967295.0, 100.0},
        EdgeLeakage{0.0, -200.0, 0.0001},
        EdgeLeakage{4294967295.0, 60.0, 10000.0},
        recordingOf(0.0, 0.001, {notANumber, 60.0, -200.0}),
        recordingOf(4294967295.0, 10000000.0, {notANumber}),
        Emitter(ContinuousWave{19e6, -60.0}, {.from_ms = 1e11, .duration_ms = 0.001, .every_ms = 0.001}),
        Emitter(ContinuousWave{19e6, -60.0}, {.duration_ms = 1e11, .every_ms = 1e11}),
        Emitter(ContinuousWave{19e6, -60.0}, {.duration_ms = 1e12}),
    };
    for (const Emitter& emitter : rows) {
        EXPECT_EQ(complaintAbout(emitter), "");
    }
    EXPECT_EQ(complaintAfter([](Link& link) {
        link.rain = {{0.0, 0.0001, 0.0, 0.0}, {1e11, 1000.0, 200.0, 1e11}};
        link.notches = std::vector<Notch>(7, {0.0, 4294967295.0, 10000000.0, 10000000.0, 200.0});
        link.notches.push_back({4294967295.0, 0.0, 0.0, 0.001, 0.0});
    }),
        "");
}

} // namespace
