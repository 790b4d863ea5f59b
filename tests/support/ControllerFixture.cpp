#include "tests/support/ControllerFixture.h"

#include "host/HostObserver.h"

#include <ostream>

namespace support {

void TraceIntoLog::write(const host::TraceRecord& record)
{
    const std::string level = std::to_string(record.level);
    if (record.isEntry) {
        m_log.add("enter " + level + " " + record.header->function + (record.hasText ? ": " + record.text : ""));
    } else {
        m_log.add("trace " + level + " " + record.text);
    }
    if (onWrite) {
        onWrite(record);
    }
}

HostFixture::HostFixture()
{
    host::trace::addSink(trace);
    host::trace::addSink(traceIntoLog);
    setTraceLevel(PLX_TRACE_LEVEL_DETAIL);
    host::setHostObserver([this](const std::string& event) {
        if (!event.starts_with("trace.")) {
            log.add(event);
        }
        if (onHostEvent) {
            onHostEvent(event);
        }
    });
}

HostFixture::~HostFixture()
{
    host::setHostObserver({});
    host::trace::removeSink(traceIntoLog);
    host::trace::removeSink(trace);
}

void HostFixture::setTraceLevel(std::uint32_t level)
{
    host::trace::setLevel(component, static_cast<PlxTraceLevel>(level));
}

std::vector<std::string> HostFixture::traceTexts(std::uint32_t level) const
{
    std::vector<std::string> texts;
    for (const host::TraceRecord& record : trace.records()) {
        if (!record.isEntry && record.level == level) {
            texts.push_back(record.text);
        }
    }
    return texts;
}

ControllerFixture::~ControllerFixture()
{
    sleep.open();
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

bool ControllerFixture::waitForIdle() const
{
    return eventually([this] { return inspect().getState() == SpectrumDiagnosticsController::STATE_IDLE; });
}

bool ControllerFixture::waitForWaits(std::size_t times) const
{
    const std::string waiting = "trace 5 Thread " + inspect().m_threadName() + " waiting for none idle state";
    return eventually([&] { return log.count(waiting) >= times; });
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

std::vector<SDCResult> ControllerFixture::samples() const
{
    std::vector<SDCResult> copy(10000);
    std::int32_t count = 10000;
    EXPECT_EQ(controller->getResult(&count, copy.data()), SDC_RC_OK);
    copy.resize(static_cast<std::size_t>(count));
    return copy;
}

} // namespace support

bool operator==(const SDCResult& left, const SDCResult& right)
{
    return left.frequency_kHz == right.frequency_kHz && left.rssi == right.rssi;
}

std::ostream& operator<<(std::ostream& stream, const SDCResult& sample)
{
    return stream << '{' << sample.frequency_kHz << " kHz, " << sample.rssi << '}';
}
