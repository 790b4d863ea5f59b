// When waiters are notified: watched in the place of the C library's broadcast, which std::condition_variable calls.

#include "tests/support/ControllerFixture.h"

#include <gmock/gmock.h>

#include <dlfcn.h>
#include <pthread.h>

namespace {

std::function<void(const pthread_cond_t* condition)> onBroadcast; // set while no worker runs

} // namespace

extern "C" int pthread_cond_broadcast(pthread_cond_t* condition) noexcept
{
    using Broadcast = int (*)(pthread_cond_t*);
    static const auto broadcast = reinterpret_cast<Broadcast>(dlsym(RTLD_NEXT, "pthread_cond_broadcast"));
    if (onBroadcast) {
        onBroadcast(condition);
    }
    return broadcast(condition);
}

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// No worker; every notification of the controller's waiters is noted with what they would find.
class WakeUp : public tests::ControllerFixture {
protected:
    struct Notification {
        State state;
        ESDCStatus status;
        bool isLocked;

        bool operator==(const Notification&) const = default;
    };

    WakeUp()
    {
        prepare();
        onBroadcast = [this](const pthread_cond_t* condition) {
            if (condition == inspect().m_condition().native_handle()) {
                notifications.push_back({inspect().getState(), inspect().m_status(), !isMutexFree()});
                membersAtNotification = members();
            }
        };
    }
    ~WakeUp() override { onBroadcast = {}; }

    std::vector<Notification> notifications;
    Members membersAtNotification; ///< of the last
};

TEST_F(WakeUp, stateIsStoredBeforeItsOneNotification)
{
    for (const State state :
        {State::STATE_EXIT, State::STATE_IDLE, State::STATE_SCAN, State::STATE_STOP, State::STATE_STOP}) {
        notifications.clear();
        setState(state);
        inspect().getState(); // notifies nobody
        EXPECT_THAT(notifications, ElementsAre(Notification{state, SDC_STATUS_CHANNEL_SCAN_ONGOING, false}));
    }
}

TEST_F(WakeUp, acceptedStartHasWrittenEverythingBeforeItsNotification)
{
    peers.radio.typeText = "4742";
    for (const auto& [command, ongoing] : {std::pair{SDC_CMD_CHANNEL_SCAN_START, SDC_STATUS_CHANNEL_SCAN_ONGOING},
             std::pair{SDC_CMD_SUB_BAND_SCAN_START, SDC_STATUS_SUB_BAND_ONGOING}}) {
        fillMembers();
        notifications.clear();
        EXPECT_EQ(controller->setCommand(command, 0), 0);
        EXPECT_THAT(notifications, ElementsAre(Notification{State::STATE_SCAN, ongoing, false}));
        EXPECT_EQ(membersAtNotification, members()) << "the worker must find everything in place";
    }
}

TEST_F(WakeUp, stopRecordsItsCommandBeforeItsNotificationAndProgressAndStatusAfterIt)
{
    fillMembers();
    inspect().m_state() = State::STATE_SCAN;
    Members expected = members();
    expected["m_command"] = SDC_CMD_SCAN_STOP;
    expected["m_state"] = State::STATE_STOP;
    EXPECT_EQ(controller->setCommand(SDC_CMD_SCAN_STOP, 0), 0);
    EXPECT_THAT(notifications, ElementsAre(Notification{State::STATE_STOP, SDC_STATUS_CHANNEL_SCAN_FINISHED, false}));
    EXPECT_EQ(membersAtNotification, expected);
}

TEST_F(WakeUp, harmlessAndFailedCommandsNotifyNobody)
{
    EXPECT_EQ(controller->setCommand(SDC_CMD_CHANNEL_SCAN_START, 0), 0); // refused
    EXPECT_EQ(controller->setCommand(SDC_CMD_GET_STATUS, 0), 32770);
    inspect().m_state() = State::STATE_IDLE;
    EXPECT_EQ(controller->setCommand(SDC_CMD_SCAN_STOP, 0), 0);
    peers.radio.typeText = "none";
    EXPECT_EQ(controller->setCommand(SDC_CMD_CHANNEL_SCAN_START, 0), 32768);
    EXPECT_THAT(notifications, IsEmpty());
}

TEST_F(WakeUp, stopAndExitNotifyWithTheLockHeld)
{
    controller->onPhaseStop();
    inspect().exitThread();
    EXPECT_THAT(notifications,
        ElementsAre(Notification{State::STATE_IDLE, SDC_STATUS_CHANNEL_SCAN_ONGOING, true},
            Notification{State::STATE_EXIT, SDC_STATUS_CHANNEL_SCAN_ONGOING, true}));
}

TEST_F(WakeUp, sweepNotifiesOnceAtItsEndWhenEverythingIsInPlace)
{
    const std::lock_guard<std::mutex> held(inspect().m_mutex());
    inspect().runScan();
    EXPECT_THAT(notifications, ElementsAre(Notification{State::STATE_IDLE, SDC_STATUS_CHANNEL_SCAN_FINISHED, true}));
}

TEST_F(WakeUp, sweepThatCannotTuneNotifiesItsStopToo)
{
    peers.frequencyController.onSetRxFrequency = [](std::uint32_t) { return 32768; };
    const std::lock_guard<std::mutex> held(inspect().m_mutex());
    inspect().runScan();
    EXPECT_THAT(notifications,
        ElementsAre(Notification{State::STATE_STOP, SDC_STATUS_CHANNEL_SCAN_ONGOING, true},
            Notification{State::STATE_IDLE, SDC_STATUS_SCAN_NOT_STARTED, true}));
}

TEST_F(WakeUp, sweepThatCannotTuneEndsEvenWhenItsStopIsOverwritten)
{
    peers.frequencyController.onSetRxFrequency = [](std::uint32_t frequency_kHz) {
        return frequency_kHz == configured_kHz ? 0 : 32768;
    };
    onBroadcast = [this](const pthread_cond_t*) {
        State stop = State::STATE_STOP;
        inspect().m_state().compare_exchange_strong(stop, State::STATE_SCAN);
    };
    inspect().runScan();
    EXPECT_THAT(log.callsStartingWith("IFrequencyController"), ElementsAre(tune(100000), tune(configured_kHz)));
    EXPECT_EQ(inspect().m_status(), SDC_STATUS_CHANNEL_SCAN_FINISHED); // by the state as it is then
    EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
}

} // namespace
