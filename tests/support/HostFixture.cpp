#include "tests/support/HostFixture.h"

#include "host/HostObserver.h"

#include <memory>

namespace tests {

void HostFixture::TraceIntoLog::write(const host::TraceRecord& record)
{
    const std::string level = std::to_string(record.level);
    if (record.isEntry) {
        log.add("enter " + level + " " + record.header->function + (record.hasText ? ": " + record.text : ""));
    } else {
        log.add("trace " + level + " " + record.text);
    }
}

HostFixture::HostFixture()
{
    host::trace::addSink(trace);
    host::trace::addSink(m_traceIntoLog);
    setTraceLevel(PLX_TRACE_LEVEL_DETAIL);
    host::setHostObserver([this](const std::string& event) {
        if (!event.starts_with("trace.") || m_logsQuestions) {
            log.add(event);
        }
    });
}

HostFixture::~HostFixture()
{
    host::setHostObserver({});
    host::trace::removeSink(m_traceIntoLog);
    host::trace::removeSink(trace);
}

void HostFixture::setTraceLevel(std::uint32_t level)
{
    host::trace::setLevel("ZRP.SDC", static_cast<PlxTraceLevel>(level));
}

Calls HostFixture::traceTexts(std::uint32_t level) const
{
    Calls texts;
    for (const host::TraceRecord& record : trace.records()) {
        if (!record.isEntry && record.level == level) {
            texts.push_back(record.text);
        }
    }
    return texts;
}

void HostFixture::at(const std::string& call, const std::function<void()>& action, int nth)
{
    log.onAdd([call, action, nth, seen = std::make_shared<int>(0)](const std::string& added) {
        if (added == call && ++*seen == nth) {
            action();
        }
    });
}

} // namespace tests
