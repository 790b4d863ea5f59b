#include "benchmarks/support/BareHost.h"

#include "Platform/Host/PlxTrace.h"

#include <atomic>

struct PlxTraceComponent {
    std::atomic<std::uint32_t> level{PLX_TRACE_LEVEL_OFF};
};

namespace {

PlxTraceComponent theComponent;

class NoSleep : public Util::SleepApi {
public:
    void sleepMs(std::uint32_t) override {}
};

NoSleep noSleep;
Util::SleepApi* sleepInForce = &noSleep;

} // namespace

namespace bench {

SleepInForce::SleepInForce(Util::SleepApi& service)
{
    sleepInForce = &service;
}

SleepInForce::~SleepInForce()
{
    sleepInForce = &noSleep;
}

} // namespace bench

Util::SleepApi& Util::DefaultSleepApi::get()
{
    return *sleepInForce;
}

PlxTrace::PlxTrace(const char*, PlxTraceLevel, PlxTraceHdrOption)
    : m_component(&theComponent)
{
}

bool PlxTrace::isEnabled(PlxTraceLevel level) const
{
    return level <= m_component->level.load(std::memory_order_relaxed);
}

void PlxTrace::logMsg(PlxTraceLevel, const PlxTraceHeader&, const std::string&) const {}
void PlxTrace::logEnterMsg(PlxTraceLevel, const PlxTraceHeader&) const {}
void PlxTrace::logEnterMsg(PlxTraceLevel, const PlxTraceHeader&, const std::string&) const {}
