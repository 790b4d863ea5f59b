#pragma once

#include "tests/support/BackgroundCall.h"
#include "tests/support/SweepFixture.h"

#include <mutex>
#include <string>
#include <vector>

namespace support {

/// A controller with its worker, which runs sweeps of three samples at 100000, 100050 and 100100 kHz.
class WorkerFixture : public SweepFixture {
protected:
    /// Constructs, initialises and waits until the worker stands in its wait; the log is empty afterwards.
    void startAndWait(std::uint32_t channel = 7)
    {
        log.onAdd = [this](const std::string& call) {
            if (call.ends_with("waiting for none idle state")) {
                worker = KernelThread::current();
            }
        };
        start(channel);
        ASSERT_TRUE(waitForWaits(1));
        {
            const std::lock_guard<std::mutex> workerWaits(inspect().m_mutex());
            log.onAdd = nullptr;
        }
        ASSERT_TRUE(worker.blocks());
        log.clear();
    }

    /// Starts a sweep as a start command does, at a moment when the worker waits.
    void launch(ESDCStatus status = SDC_STATUS_CHANNEL_SCAN_ONGOING) const
    {
        const std::lock_guard<std::mutex> workerWaits(inspect().m_mutex());
        setPlan({}, status);
        setState(SpectrumDiagnosticsController::STATE_SCAN);
    }

    /// Starts a sweep that stands in its first delay until the sleep opens.
    void launchAndHold()
    {
        sleep.close();
        launch();
        ASSERT_TRUE(sleep.waitForSleeper());
        log.clear();
    }

    /// The log without what a sweep itself does between its entry and its restore.
    std::vector<std::string> lifeOfTheWorker() const
    {
        return log.callsWithout(
            {"trace 5  ", "trace 7", "sleep", "IRssi", "provider.getProperties", tune(100000), tune(100050), tune(100100)});
    }

    KernelThread worker; ///< the worker's thread, once it has waited

    /// What is left of a sweep that stands in its first delay, trace included.
    const Calls restOfTheSweep{
        "IRssiHandler.readRssi",
        "trace 7 Read RSSI -4500",
        "trace 7 Set RX frequency kHz 100050",
        tune(100050),
        "sleep.get",
        "sleepMs 300",
        "IRssiHandler.readRssi",
        "trace 7 Read RSSI -4500",
        "trace 7 Set RX frequency kHz 100100",
        tune(100100),
        "sleep.get",
        "sleepMs 300",
        "IRssiHandler.readRssi",
        "trace 7 Read RSSI -4500",
        tune(configured_kHz),
    };

    const std::string entry = "enter 6 scanThread: m_threadName=SpectDiagCtrl7";
    const std::string waiting = "trace 5 Thread SpectDiagCtrl7 waiting for none idle state";
    const std::string sweepEntry = "enter 6 runScan: m_threadName=SpectDiagCtrl7";
    const std::string restore = tune(configured_kHz);
    const std::string exitEntry = "enter 6 exitThread: m_threadName=SpectDiagCtrl7";
    const std::string exited = "trace 5 Thread exited with m_status ";
};

} // namespace support
