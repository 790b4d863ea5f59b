// Ctrl-C during a scan.

#include "tests/cli/SdcFixture.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include <sys/stat.h>

namespace {

using testing::HasSubstr;

using Json = nlohmann::json;

class Stop : public Sdc {
protected:
    bool isSaid(const std::string& text) const
    {
        return tests::eventually([&] { return read("err.txt").find(text) != std::string::npos; });
    }
};

TEST_F(Stop, putsTheReceiverBackAndWritesWhatWasTakenWithStatus4)
{
    // 51 s in all, the first settle delay 1 s
    RunningSdc sdc(folder, {"scan", "sub-band", "--speed", "3", "--json", "result.json", "--csv", "-"});
    ASSERT_TRUE(isSaid("\ntime "));
    sdc.interrupt();
    EXPECT_EQ(sdc.waitForExitStatus(), 4);
    EXPECT_THAT(
        read("err.txt"), HasSubstr("sdc: stopping after the step in hand, up to 1.0 s; Ctrl-C again leaves at once\n"));
    const Json sweep = Json::parse(read("result.json"))["channels"][0]["sweeps"][0];
    EXPECT_EQ(sweep["ending"], "stopped");
    EXPECT_EQ(sweep["status"], "scan-not-started");
    EXPECT_EQ(sweep["rx_after_kHz"], 19177500);
    const std::string taken = sweep["taken"].dump();
    EXPECT_EQ(taken, std::to_string(lines(read("out.txt")).size() - 1));
    EXPECT_THAT(read("err.txt"),
        HasSubstr("\nstatus     scan-not-started, " + taken + " of 500 samples, stopped\nreceiver   19177.500 MHz after\n"));
}

TEST_F(Stop, reachesAllChannels)
{
    RunningSdc sdc(folder, {"scan", "sub-band", "--scenario", "8-quad", "--speed", "3", "--json", "result.json"});
    ASSERT_TRUE(isSaid("\ntime "));
    sdc.interrupt();
    EXPECT_EQ(sdc.waitForExitStatus(), 4);
    const Json channels = Json::parse(read("result.json"))["channels"];
    EXPECT_EQ(channels.size(), 4U);
    for (const Json& channel : channels) {
        EXPECT_EQ(channel["sweeps"][0]["ending"], "stopped");
        EXPECT_LT(channel["sweeps"][0]["taken"], 137);
    }
}

TEST_F(Stop, endsSweepsThatGoOn)
{
    for (const char* const sweeps : {"forever", "4000000000"}) {
        RunningSdc sdc(folder, {"scan", "channel", "--repeat", sweeps, "--json", "result.json", "--trace-level", "5"});
        ASSERT_TRUE(isSaid("m_firstSetRxWait_ms"));
        sdc.interrupt();
        EXPECT_EQ(sdc.waitForExitStatus(), 4) << sweeps;
        EXPECT_THAT(read("result.json"), HasSubstr("19164750"));
    }
}

TEST_F(Stop, ofSweepsWithoutEndIsAnnounced)
{
    RunningSdc sdc(folder, {"scan", "channel", "--repeat", "forever", "--json", "result.json"});
    ASSERT_TRUE(isSaid("  sweep 2\n"));
    sdc.interrupt();
    EXPECT_EQ(sdc.waitForExitStatus(), 4);
    EXPECT_THAT(read("err.txt"), HasSubstr("\ntime       6.6 s of radio time a sweep, again and again until Ctrl-C, "));
    EXPECT_GE(Json::parse(read("result.json"))["channels"][0]["sweeps"].size(), 2U);
}

TEST_F(Stop, isAskedForByTermAndHupToo)
{
    for (const int signal : {SIGTERM, SIGHUP}) {
        RunningSdc sdc(folder, {"scan", "sub-band", "--speed", "3", "--json", "result.json"});
        ASSERT_TRUE(isSaid("\ntime "));
        sdc.send(signal);
        EXPECT_EQ(sdc.waitForExitStatus(), 4) << signal;
        const Json sweep = Json::parse(read("result.json"))["channels"][0]["sweeps"][0];
        EXPECT_EQ(sweep["ending"], "stopped");
        EXPECT_EQ(sweep["rx_after_kHz"], 19177500);
    }
}

TEST_F(Stop, isNotAskedForByWhatTheProgramWasStartedToIgnore)
{
    for (const int signal : {SIGHUP, SIGINT}) {
        RunningSdc sdc(folder, {"scan", "sub-band", "--speed", "3"}, signal);
        ASSERT_TRUE(isSaid("\ntime "));
        sdc.send(signal);
        sdc.send(SIGTERM); // the first, not the second
        EXPECT_EQ(sdc.waitForExitStatus(), 4) << signal;
    }
}

TEST_F(Stop, leavesAPipeThatNobodyReads)
{
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    RunningSdc sdc(folder, {"scan", "channel", "--json", "pipe", "--csv", "a.csv"});
    ASSERT_TRUE(tests::eventually([&] { return read("err.txt").find("\nreceiver ") != std::string::npos; }));
    sdc.interrupt();
    EXPECT_EQ(sdc.waitForExitStatus(), 1);
    EXPECT_THAT(read("err.txt"), HasSubstr("sdc: cannot write to pipe: nobody reads it\n"));
    EXPECT_EQ(lines(read("a.csv")).size(), 14U);
}

TEST_F(Stop, givenTwiceLeavesAtOnceAndLosesNothing)
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        // The first settle delay alone is 8 hours.
        RunningSdc sdc(folder, {"scan", "channel", "--speed", "0.0001", "--json", "result.json"});
        ASSERT_TRUE(isSaid("\ntime "));
        sdc.interrupt();
        ASSERT_TRUE(isSaid("stopping after the step in hand, up to 8 h 20 min 0 s"));
        sdc.send(signal);
        EXPECT_EQ(sdc.waitForExitStatus(), 128 + signal);
        EXPECT_THAT(read("err.txt"), HasSubstr("\nreceiver   19177.500 MHz after\n"));
        const Json sweep = Json::parse(read("result.json"))["channels"][0]["sweeps"][0];
        EXPECT_EQ(sweep["ending"], "stopped");
        EXPECT_EQ(sweep["taken"], 1) << "the step in hand";
        EXPECT_EQ(sweep["rx_after_kHz"], 19177500);
    }
}

} // namespace
