#pragma once

/// The interface of the spectrum diagnostics controller: the whole contract for its callers.
///
/// A controller serves one radio channel. On command it sweeps the channel's receiver over a range of frequencies that it
/// plans from the radio's own parameters, reads the received signal strength (RSSI) at each step and keeps the samples; then
/// it puts the receiver back. While a sweep runs the receiver is off its channel: there is no traffic.
///
/// Finding it. The controller is registered with the InterfaceBroker under
/// IInterface::interfaceName("ISpectrumDiagnosticsController", RadioChannel), for example
/// "ISpectrumDiagnosticsController_7", from its construction to its destruction. Every call, a query too, must have returned
/// before the destruction begins. Give commands and ask for the properties only once the host has initialised the module
/// with success.
///
/// Threads. Any number of threads may call the queries, and any thread may stop a scan that runs; none of these calls ever
/// waits for a sweep. Starts are not serialised: let one thread at a time give them. No stop may overlap a start: it would
/// stop nothing, or leave the scan mute, with the status scan-not-started while the sweep runs and after it. Exceptions that
/// the host's trace throws pass through every operation.
///
/// Starting and polling, as a correct caller does it:
///
///     bool startScan(ISpectrumDiagnosticsController& controller, ESDCCommand start)
///     {
///         for (int attempt = 0; attempt < 100; ++attempt) {
///             if (controller.setCommand(start, 0) >= SDC_RC_FAILED) {
///                 return false; // nothing was started
///             }
///             const ESDCStatus status = controller.getStatus();
///             if (status == SDC_STATUS_CHANNEL_SCAN_ONGOING || status == SDC_STATUS_SUB_BAND_ONGOING) {
///                 return true; // the scan is under way
///             }
///             std::this_thread::sleep_for(std::chrono::milliseconds(10)); // the worker is still leaving the last scan
///         }
///         return false;
///     }
///
/// The loop is needed because a start is refused, harmlessly and with result 0, while the worker is busy, and the status
/// shows a scan's end a moment before the worker is idle. After a stop the worker may be busy for the rest of a settle
/// delay, up to a minute on some radios: then try for as long as that, rather than for the second of the example. A scan
/// that ends at once, because the very first tuning fails, looks like a refused start and is started again.
///
/// Then poll getStatus until it shows SDC_STATUS_CHANNEL_SCAN_FINISHED or SDC_STATUS_SUB_BAND_SCAN_FINISHED (the samples are
/// complete) or SDC_STATUS_SCAN_NOT_STARTED (the scan was stopped, or the receiver could not be tuned), and fetch the
/// samples. Give the polling a limit: where a peer threw during a sweep, the worker could not be created, its wake-up was
/// lost or the host ran its stop phase before the sweep began, the status goes on showing an ongoing scan. Send no stop
/// then: where there is a worker, the host's stop phase lets the next start run.
///
/// Exceptions. One that a peer, the trace or the sleep service throws in a sweep ends the worker for good; the receiver
/// stays where it is. The status stays as it was: ongoing, also after a refused tuning; scan-not-started after a stop. From
/// then on starts are refused, or accepted and never swept.
///
/// Stopping. Stop only a scan that is seen to run: one with a sample taken (getProgress moves, or getResult shows new
/// samples) and its end not near. On a stop that is stored while no sweep runs the worker spins until the process ends: one
/// that comes before the worker has begun the sweep, crosses the sweep's very end, or overlaps the host's stop phase. Where
/// the worker sleeps over such a stop, its next wake-up does it, be it a spurious one. So do not send a stop merely to clear
/// a finished status.

#include "Platform/Host/IInterface.h"

#include <cstdint>
#include <string>

/// Result codes. A value of 32768 or more, compared signed, is a failure; everything below is success.
constexpr std::int32_t SDC_RC_OK = 0;                  ///< done, or accepted without effect
constexpr std::int32_t SDC_RC_FAILED = 32768;          ///< unsupported unit type, planning failed, or a null pointer
constexpr std::int32_t SDC_RC_UNKNOWN_COMMAND = 32770; ///< setCommand does not act upon this command

/// Commands. Only the first three are acted upon by setCommand; the others have operations of their own.
enum ESDCCommand : std::uint32_t {
    SDC_CMD_CHANNEL_SCAN_START = 0,
    SDC_CMD_SUB_BAND_SCAN_START = 1,
    SDC_CMD_SCAN_STOP = 2,
    SDC_CMD_GET_STATUS = 3,
    SDC_CMD_GET_RESULT = 4,
    SDC_CMD_GET_SCAN_PROPERTIES = 5,
};

/// Status of the last scan that was asked for.
enum ESDCStatus : std::uint32_t {
    SDC_STATUS_SCAN_NOT_STARTED = 0,       ///< none yet; or stopped, failed to start, or aborted by a tuning failure
    SDC_STATUS_SUB_BAND_ONGOING = 1,       ///< a sub-band scan was accepted and runs
    SDC_STATUS_CHANNEL_SCAN_ONGOING = 2,   ///< a channel scan was accepted and runs
    SDC_STATUS_SUB_BAND_SCAN_FINISHED = 3, ///< a sub-band scan ran to its end
    SDC_STATUS_CHANNEL_SCAN_FINISHED = 4,  ///< a channel scan ran to its end
};

/// One sample of a sweep. Trivially copyable, eight bytes, no padding.
struct SDCResult {
    std::uint32_t frequency_kHz; ///< receive frequency that the receiver was tuned to
    std::int32_t rssi;           ///< what IRssiHandler reported there, in its unit; never below -9970
};
static_assert(sizeof(SDCResult) == 8, "callers receive arrays of samples by plain copy");

/// How long the receiver is given before the reading of a scan that has only one, whatever the radio's properties.
constexpr std::uint32_t SINGLE_MEASUREMENT_DELAY_MS = 5000;

/// Spectrum diagnostics properties of the radio. One byte each: 0 is false, every other value is true.
/// Returned in one 32-bit word, longHaul in its lowest byte.
struct SDCProperties {
    std::uint8_t longHaul;       ///< the radio is a long-haul unit; changes range and step of a scan
    std::uint8_t extendedRxWait; ///< each reading waits 60000 ms for the receiver to settle
    std::uint8_t slowRxWait;     ///< readings after the first wait 2000 ms instead of 300; extendedRxWait takes precedence
    std::uint8_t spareFlag;      ///< the radio's own, handed through
};
static_assert(sizeof(SDCProperties) == 4, "the record travels in one 32-bit word");

namespace SDCCommand {

/// The text of a command, "unknown" for a value that is none.
inline std::string toString(ESDCCommand command)
{
    switch (command) {
    case SDC_CMD_CHANNEL_SCAN_START: return "channel-scan-start";
    case SDC_CMD_SUB_BAND_SCAN_START: return "sub-band-scan-start";
    case SDC_CMD_SCAN_STOP: return "scan-stop";
    case SDC_CMD_GET_STATUS: return "get-status";
    case SDC_CMD_GET_RESULT: return "get-result";
    case SDC_CMD_GET_SCAN_PROPERTIES: return "get-scan-properties";
    }
    return "unknown";
}

} // namespace SDCCommand

namespace SDCStatus {

/// The text of a status, "unknown" for a value that is none. "sub-band-ongoing" goes without "scan", unlike the others.
inline std::string toString(ESDCStatus status)
{
    switch (status) {
    case SDC_STATUS_SCAN_NOT_STARTED: return "scan-not-started";
    case SDC_STATUS_SUB_BAND_ONGOING: return "sub-band-ongoing";
    case SDC_STATUS_CHANNEL_SCAN_ONGOING: return "channel-scan-ongoing";
    case SDC_STATUS_SUB_BAND_SCAN_FINISHED: return "sub-band-scan-finished";
    case SDC_STATUS_CHANNEL_SCAN_FINISHED: return "channel-scan-finished";
    }
    return "unknown";
}

} // namespace SDCStatus

class ISpectrumDiagnosticsController : public IInterface {
public:
    /// Starts or stops a scan.
    ///
    /// A start reads the radio's parameters and type from the peers, plans the scan, sets the status to ongoing and hands
    /// the sweep to the controller's worker; the receiver leaves its channel from then until the status shows the end.
    /// The settle delays follow from the radio's properties as they were at the start of the previous sweep or at the last
    /// getSpectrumDiagnosticsProperties, whichever came later; ask for the properties first if they matter.
    /// A stop lets the step in hand finish, its settle delay included, and then ends the sweep. It sets status and progress
    /// to 0 at once, also when no scan runs (the step in hand then moves the progress once more); the samples stay.
    ///
    /// @param command      SDC_CMD_CHANNEL_SCAN_START, SDC_CMD_SUB_BAND_SCAN_START or SDC_CMD_SCAN_STOP
    /// @param setRxWait_ms any value: traced, otherwise without effect; the radio's properties decide the settle delays
    /// @return SDC_RC_OK: started or stopped; or refused because a scan is in progress, which changes nothing.
    ///         SDC_RC_FAILED: unit type not supported or planning failed; status and progress are 0, the samples of the
    ///         previous sweep stay. SDC_RC_UNKNOWN_COMMAND: any other command; nothing changes.
    /// @throws whatever a peer throws while a start reads it; no scan is started then, status and progress are 0.
    /// Thread: any; starts from one thread at a time, and no start while a stop has yet to return, nor a stop while a start
    /// has. Does not wait for a sweep; calls peers, so takes as long as they do.
    virtual std::int32_t setCommand(ESDCCommand command, std::int32_t setRxWait_ms) = 0;

    /// Copies samples of the current or last sweep, in the order taken: lowest frequency first.
    ///
    /// Nothing is taken away: the next call returns the same samples. During a sweep these are the samples taken so far,
    /// after a stop those taken before it, before any sweep none. Until the worker begins the sweep, and after a start that
    /// failed, they are those of the previous sweep.
    ///
    /// @param count   in: room in @p samples; out: number of samples copied, the smaller of room and samples held.
    ///                A negative count is left as it is and nothing is copied.
    /// @param samples array of at least @p count elements; elements beyond the number copied are left alone
    /// @return SDC_RC_OK; SDC_RC_FAILED when a pointer is null, with nothing written.
    /// @throws std::system_error when the samples cannot be locked, with nothing written.
    /// Thread: any, at any time. Waits for no sweep, only for another copy of the samples, or for one to be added or all to
    /// be cleared.
    virtual std::int32_t getResult(std::int32_t* count, SDCResult* samples) = 0;

    /// Status of the last scan asked for. The finished values tell that the samples are complete.
    /// Thread: any, at any time. Does not block.
    virtual ESDCStatus getStatus() = 0;

    /// Progress in percent: 100 * (samples taken - 1) / samples planned, truncated; 0 from a start until the second sample.
    /// It never reaches 100 (a complete sweep of 100 samples ends at 99, one of one sample at 0); read completion from
    /// getStatus. It keeps its last value after a sweep, until the next start or stop.
    /// Thread: any, at any time. Does not block.
    virtual std::int32_t getProgress() = 0;

    /// Asks the radio for its properties, keeps them for the next start, and returns them. Before the host has initialised
    /// the module: the record as it stands, all false after construction. The provider's result code is not looked at.
    /// A sweep asks for them too when it begins: what comes of the two at the same moment is the record of either, or some
    /// fields of each, both as it is kept and as it is returned.
    /// @throws whatever the radio's properties provider throws; the record stays as it was then.
    /// Thread: any, but not while the host initialises the module, nor while another thread starts a scan whose delays
    /// matter. Waits for no sweep; takes as long as the provider does.
    virtual SDCProperties getSpectrumDiagnosticsProperties() = 0;
};
