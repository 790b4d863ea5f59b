// What is left of a call when the host's trace throws: it reaches the caller, and what comes after the record is not done.

#include "tests/support/ControllerFixture.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace {

using testing::ContainerEq;

class ThrowingTrace : public tests::ControllerFixture {
protected:
    ThrowingTrace()
    {
        prepare();
        fillMembers();
    }

    struct DiskFull : std::runtime_error {
        DiskFull()
            : std::runtime_error("disk is full")
        {
        }
    };

    /// Makes the n-th record from now on throw, counted from 0.
    void throwAtRecord(int n)
    {
        log.onAdd([left = n](const std::string& call) mutable {
            if ((call.starts_with("enter ") || call.starts_with("trace ")) && left-- == 0) {
                throw DiskFull();
            }
        });
    }

    /// Expects that a call throws at its n-th record and leaves every member as it was.
    void expectNothingDone(int record, const std::function<void()>& call)
    {
        const Members before = members();
        throwAtRecord(record);
        EXPECT_THROW(call(), DiskFull);
        EXPECT_THAT(members(), ContainerEq(before));
    }

    std::function<void()> command(ESDCCommand value)
    {
        return [this, value] { controller->setCommand(value, 500); };
    }
};

TEST_F(ThrowingTrace, atTheEntryOfACommandLeavesEverything)
{
    for (const State state : {State::STATE_IDLE, State::STATE_SCAN}) {
        inspect().m_state() = state;
        for (std::uint32_t number = 0; number < 7; ++number) {
            SCOPED_TRACE(number);
            expectNothingDone(0, command(static_cast<ESDCCommand>(number)));
        }
    }
}

TEST_F(ThrowingTrace, behindTheEntryOfACommandThatIsNotActedUponLeavesEverything)
{
    expectNothingDone(1, command(SDC_CMD_GET_STATUS));
    expectNothingDone(1, command(SDC_CMD_SCAN_STOP)); // there is no scan: status and progress are not cleared
    inspect().m_state() = State::STATE_SCAN;
    expectNothingDone(1, command(SDC_CMD_CHANNEL_SCAN_START));
}

TEST_F(ThrowingTrace, anywhereInAStartStartsNothing)
{
    for (const ESDCCommand start : {SDC_CMD_CHANNEL_SCAN_START, SDC_CMD_SUB_BAND_SCAN_START}) {
        int record = 1; // behind the entry
        for (bool isAccepted = false; !isAccepted; ++record) {
            SCOPED_TRACE(record);
            log.onAdd(nullptr);
            fillMembers();
            throwAtRecord(record);
            try {
                EXPECT_EQ(controller->setCommand(start, 500), SDC_RC_OK);
                isAccepted = true;
            } catch (const DiskFull&) {
                EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
                EXPECT_EQ(inspect().m_status(), SDC_STATUS_SCAN_NOT_STARTED);
                EXPECT_EQ(inspect().m_progress(), 0);
                EXPECT_EQ(inspect().m_results().size(), 2U);
            }
        }
        EXPECT_EQ(inspect().getState(), State::STATE_SCAN);
        EXPECT_GT(record, 12) << "parameters, unit type and plan are traced";
    }
}

TEST_F(ThrowingTrace, inAQueryWritesNothing)
{
    SDCResult sample{5, 6};
    std::int32_t count = 1;
    expectNothingDone(0, [this] { controller->getStatus(); });
    expectNothingDone(0, [this] { controller->getProgress(); });
    expectNothingDone(0, [&] { controller->getResult(&count, &sample); });
    expectNothingDone(1, [&] { controller->getResult(&count, nullptr); });
    EXPECT_EQ(count, 1);
    EXPECT_EQ(sample, (SDCResult{5, 6}));
}

TEST_F(ThrowingTrace, inTheStopPhaseLeavesTheState)
{
    inspect().m_state() = State::STATE_STOP;
    expectNothingDone(0, [this] { controller->onPhaseStop(); });
    EXPECT_TRUE(isMutexFree());
}

} // namespace
