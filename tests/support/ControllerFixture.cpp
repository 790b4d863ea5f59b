#include "tests/support/ControllerFixture.h"

#include <future>
#include <mutex>
#include <ostream>
#include <utility>

#include <pthread.h>

namespace tests {

namespace {

/// The members of the plan that are frequencies, delays and numbers of steps, by name.
std::vector<std::pair<const char*, std::uint32_t&>> planMembers(const ControllerInspector& in)
{
    return {{"m_channelSpacing_kHz", in.m_channelSpacing_kHz()}, {"m_currentRxFrequency_kHz", in.m_currentRxFrequency_kHz()},
        {"m_minRxFrequency_kHz", in.m_minRxFrequency_kHz()}, {"m_maxRxFrequency_kHz", in.m_maxRxFrequency_kHz()},
        {"m_rxBaseFrequency_kHz", in.m_rxBaseFrequency_kHz()}, {"m_frequencyBand_GHz", in.m_frequencyBand_GHz()},
        {"m_frequencyStepSize_kHz", in.m_frequencyStepSize_kHz()}, {"m_stepLimitLow", in.m_stepLimitLow()},
        {"m_stepLimitHigh", in.m_stepLimitHigh()}, {"m_scanStep_kHz", in.m_scanStep_kHz()},
        {"m_frequencyMargin_kHz", in.m_frequencyMargin_kHz()},
        {"m_scanLowestRxFrequency_kHz", in.m_scanLowestRxFrequency_kHz()},
        {"m_scanHighestRxFrequency_kHz", in.m_scanHighestRxFrequency_kHz()}, {"m_setRxWait_ms", in.m_setRxWait_ms()},
        {"m_firstSetRxWait_ms", in.m_firstSetRxWait_ms()}};
}

} // namespace

ControllerFixture::~ControllerFixture()
{
    log.onAdd(nullptr);
    sleep.open();
    if (controller != nullptr && inspect().getState() == State::STATE_STOP) {
        setState(State::STATE_IDLE); // a worker that never rests would not let its controller go
    }
    destroy();
}

SpectrumDiagnosticsController& ControllerFixture::construct(std::uint32_t channel)
{
    peers.registerFor(channel);
    controller = std::make_unique<SpectrumDiagnosticsController>(RadioChannel{channel});
    return *controller;
}

SpectrumDiagnosticsController& ControllerFixture::start(std::uint32_t channel)
{
    construct(channel);
    EXPECT_EQ(controller->onModuleInit(), 0U);
    return *controller;
}

void ControllerFixture::destroy()
{
    controller.reset();
}

void ControllerFixture::prepare(const SweepPlan& plan, std::uint32_t channel)
{
    log.onAdd(nullptr);
    destroy();
    construct(channel);
    const ControllerInspector in = inspect();
    in.m_systemPowerController() = &peers.systemPowerController;
    in.m_frameFormat() = &peers.frameFormat;
    in.m_frequencyController() = &peers.frequencyController;
    in.m_rssiHandler() = &peers.rssiHandler;
    in.m_radioCapability() = &peers.radioCapability;
    in.m_radio() = &peers.radio;
    in.m_propertiesProvider() = peers.radio.createPropertiesProvider();
    in.m_threadName() = "SpectDiagCtrl7";
    in.m_stepLimitHigh() = 0;
    setPlan(plan);
    log.clear();
    trace.clear();
}

void ControllerFixture::setPlan(const SweepPlan& plan, ESDCStatus status) const
{
    const ControllerInspector in = inspect();
    in.m_scanLowestRxFrequency_kHz() = plan.lowest_kHz;
    in.m_scanHighestRxFrequency_kHz() = plan.highest_kHz;
    in.m_scanStep_kHz() = plan.step_kHz;
    in.m_totalNrOfSamples() = plan.total;
    in.m_channelSpacing_kHz() = 28000;
    in.m_currentRxFrequency_kHz() = configured_kHz;
    in.m_firstSetRxWait_ms() = firstWait_ms;
    in.m_setRxWait_ms() = wait_ms;
    in.m_status() = status;
    in.m_state() = State::STATE_SCAN;
}

ControllerFixture::Members ControllerFixture::members() const
{
    const ControllerInspector in = inspect();
    Members all{{"m_state", in.m_state()}, {"m_status", in.m_status()}, {"m_command", in.m_command()},
        {"m_progress", in.m_progress()}, {"m_nrOfSamplesDone", in.m_nrOfSamplesDone()},
        {"m_totalNrOfSamples", in.m_totalNrOfSamples()}};
    const SDCProperties properties = in.m_properties();
    all["m_properties.longHaul"] = properties.longHaul;
    all["m_properties.extendedRxWait"] = properties.extendedRxWait;
    all["m_properties.slowRxWait"] = properties.slowRxWait;
    all["m_properties.spareFlag"] = properties.spareFlag;
    for (const auto& [name, member] : planMembers(in)) {
        all[name] = member;
    }
    for (const SDCResult& sample : in.m_results()) {
        all["m_results " + std::to_string(sample.frequency_kHz)] = sample.rssi;
    }
    return all;
}

void ControllerFixture::fillMembers()
{
    const ControllerInspector in = inspect();
    in.m_state() = State::STATE_IDLE;
    in.m_status() = SDC_STATUS_CHANNEL_SCAN_FINISHED;
    in.m_command() = ESDCCommand{77};
    in.m_progress() = 93;
    in.m_properties() = SDCProperties{0, 0, 0, 4};
    in.m_results() = {{17000001, -101}, {17000002, -102}};
    in.m_nrOfSamplesDone() = 201;
    in.m_totalNrOfSamples() = 202;
    std::uint32_t value = 301;
    for (const auto& [name, member] : planMembers(in)) {
        member = value++;
    }
    log.clear();
}

void ControllerFixture::startAndWait(std::uint32_t channel, const std::function<void()>& onWorker)
{
    log.clear();
    log.onAdd([&](const std::string& call) {
        if (call.ends_with("waiting for none idle state")) {
            worker = KernelThread::current();
            onWorker();
        }
    });
    start(channel);
    ASSERT_TRUE(waitForWaits(1));
    {
        const std::lock_guard<std::mutex> workerWaits(inspect().m_mutex());
        log.onAdd(nullptr);
    }
    ASSERT_TRUE(worker.blocks());
    log.clear();
}

void ControllerFixture::launch(ESDCStatus status) const
{
    const std::lock_guard<std::mutex> workerWaits(inspect().m_mutex());
    setPlan({}, status);
    setState(State::STATE_SCAN);
}

void ControllerFixture::launchAndHold()
{
    sleep.close();
    launch();
    ASSERT_TRUE(sleep.waitForSleeper());
    log.clear();
}

std::int32_t ControllerFixture::command(ESDCCommand command, std::int32_t setRxWait_ms) const
{
    const std::lock_guard<std::mutex> workerWaits(inspect().m_mutex());
    return controller->setCommand(command, setRxWait_ms);
}

bool ControllerFixture::scan(ESDCCommand start)
{
    return command(start) == SDC_RC_OK && waitForIdle();
}

bool ControllerFixture::waitForIdle() const
{
    return eventually([this] { return inspect().getState() == State::STATE_IDLE; });
}

bool ControllerFixture::waitFor(const std::string& call, std::size_t times) const
{
    return eventually([&] { return log.count(call) >= times; });
}

bool ControllerFixture::waitForWaits(std::size_t times) const
{
    return waitFor("trace 5 Thread " + inspect().m_threadName() + " waiting for none idle state", times);
}

std::vector<SDCResult> ControllerFixture::samples() const
{
    std::vector<SDCResult> copy(10000);
    std::int32_t count = 10000;
    EXPECT_EQ(controller->getResult(&count, copy.data()), SDC_RC_OK);
    copy.resize(static_cast<std::size_t>(count));
    return copy;
}

std::vector<std::uint32_t> ControllerFixture::sampledFrequencies() const
{
    std::vector<std::uint32_t> frequencies;
    for (const SDCResult& sample : samples()) {
        frequencies.push_back(sample.frequency_kHz);
    }
    return frequencies;
}

bool ControllerFixture::isFree(std::mutex& mutex)
{
    const auto tryLock = [&mutex] { return std::unique_lock<std::mutex>(mutex, std::try_to_lock).owns_lock(); };
    return std::async(std::launch::async, tryLock).get();
}

void ControllerFixture::makeCheckErrors(std::mutex& mutex)
{
    pthread_mutexattr_t attributes{};
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_ERRORCHECK);
    pthread_mutex_destroy(mutex.native_handle());
    pthread_mutex_init(mutex.native_handle(), &attributes);
    pthread_mutexattr_destroy(&attributes);
}

Calls ControllerFixture::lifeOfTheWorker() const
{
    return log.callsWithout(
        {"trace 5  ", "trace 7", "sleep", "IRssi", "provider.getProperties", tune(100000), tune(100050), tune(100100)});
}

std::string ControllerFixture::tune(std::uint32_t frequency_kHz)
{
    return "IFrequencyController.setRxFrequency " + std::to_string(frequency_kHz) + " true";
}

Calls ControllerFixture::step(std::uint32_t frequency_kHz, std::uint32_t delay_ms)
{
    return {tune(frequency_kHz), "sleep.get", "sleepMs " + std::to_string(delay_ms), "IRssiHandler.readRssi"};
}

Calls ControllerFixture::sweepOver(const std::vector<std::uint32_t>& frequencies_kHz)
{
    Calls calls{"provider.getProperties"};
    std::uint32_t delay_ms = firstWait_ms;
    for (const std::uint32_t frequency_kHz : frequencies_kHz) {
        calls = std::move(calls) + step(frequency_kHz, std::exchange(delay_ms, wait_ms));
    }
    return std::move(calls) + Calls{tune(configured_kHz)};
}

} // namespace tests

bool operator==(const SDCResult& left, const SDCResult& right)
{
    return left.frequency_kHz == right.frequency_kHz && left.rssi == right.rssi;
}

std::ostream& operator<<(std::ostream& stream, const SDCResult& sample)
{
    return stream << '{' << sample.frequency_kHz << " kHz, " << sample.rssi << '}';
}
