// The order in which commands store what callers poll: command, status, progress and state. Nothing that a test could hold a
// command at lies between two stores, so this program compiles the commands' code once more, with a look at all four before
// each of them is touched.

#include "tests/support/ControllerFixture.h"

#include "Control/SpectrumDiagnosticsController/private/ScanConstants.h"
#include "Control/SpectrumDiagnosticsController/private/Trace.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <locale>
#include <tuple>
#include <vector>

namespace {

std::function<void()> look;

void isTouched()
{
    if (look) {
        look();
    }
}

} // namespace

// The headers are included above: what follows changes the copy alone. A macro does not expand in itself.
#define m_command (isTouched(), m_command)
#define m_status (isTouched(), m_status)
#define m_progress (isTouched(), m_progress)
#define setState (isTouched(), *this).setState
#include "Control/SpectrumDiagnosticsController/private/SpectrumDiagnosticsControllerCommands.cpp"
#undef m_command
#undef m_status
#undef m_progress
#undef setState
#include "Control/SpectrumDiagnosticsController/private/Trace.cpp" // the library keeps its own to itself

namespace {

using testing::ElementsAre;

class StoreOrder : public tests::ControllerFixture {
protected:
    using Polled = std::tuple<ESDCCommand, ESDCStatus, std::int32_t, State>;

    StoreOrder()
    {
        prepare();
        fillMembers(); // command 77, finished, 93 percent, idle
    }

    /// All that a poller can see of a command, one after the other.
    std::vector<Polled> seenDuring(ESDCCommand command)
    {
        std::vector<Polled> seen;
        look = [&] {
            seen.emplace_back(inspect().m_command(), inspect().m_status(), inspect().m_progress(), inspect().getState());
        };
        EXPECT_EQ(controller->setCommand(command, 0), SDC_RC_OK);
        look();
        look = nullptr;
        seen.erase(std::unique(seen.begin(), seen.end()), seen.end());
        return seen;
    }

    static constexpr ESDCCommand before{77};
};

TEST_F(StoreOrder, ofAStartIsCommandStatusProgressAndAtTheEndStatusAndState)
{
    constexpr ESDCCommand start = SDC_CMD_SUB_BAND_SCAN_START;
    EXPECT_THAT(seenDuring(start),
        ElementsAre(Polled{before, SDC_STATUS_CHANNEL_SCAN_FINISHED, 93, State::STATE_IDLE},
            Polled{start, SDC_STATUS_CHANNEL_SCAN_FINISHED, 93, State::STATE_IDLE},
            Polled{start, SDC_STATUS_SCAN_NOT_STARTED, 93, State::STATE_IDLE},
            Polled{start, SDC_STATUS_SCAN_NOT_STARTED, 0, State::STATE_IDLE},
            Polled{start, SDC_STATUS_SUB_BAND_ONGOING, 0, State::STATE_IDLE},
            Polled{start, SDC_STATUS_SUB_BAND_ONGOING, 0, State::STATE_SCAN}));
}

TEST_F(StoreOrder, ofAStopIsCommandStateProgressStatus)
{
    setState(State::STATE_SCAN);
    EXPECT_THAT(seenDuring(SDC_CMD_SCAN_STOP),
        ElementsAre(Polled{before, SDC_STATUS_CHANNEL_SCAN_FINISHED, 93, State::STATE_SCAN},
            Polled{SDC_CMD_SCAN_STOP, SDC_STATUS_CHANNEL_SCAN_FINISHED, 93, State::STATE_SCAN},
            Polled{SDC_CMD_SCAN_STOP, SDC_STATUS_CHANNEL_SCAN_FINISHED, 93, State::STATE_STOP},
            Polled{SDC_CMD_SCAN_STOP, SDC_STATUS_CHANNEL_SCAN_FINISHED, 0, State::STATE_STOP},
            Polled{SDC_CMD_SCAN_STOP, SDC_STATUS_SCAN_NOT_STARTED, 0, State::STATE_STOP}));
}

} // namespace
