#include "host/Trace.h"

#include "host/HostObserver.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <ostream>

/// What the host knows of all components of one name. Lives until the process ends: a library may be unloaded and loaded
/// anew.
struct PlxTraceComponent {
    std::string name;
    std::atomic<std::uint32_t> level{PLX_TRACE_LEVEL_OFF};
    bool levelIsSet = false; // by the operator
    bool exists = false;     // was constructed at least once
    PlxTraceLevel defaultLevel{};
    PlxTraceHdrOption hdrOption{};
};

namespace host {

namespace {

/// Guarded tables; never destroyed, because modules may trace while the process ends.
struct Router {
    std::mutex componentsGuard;
    std::map<std::string, PlxTraceComponent> components;
    std::mutex sinksGuard;
    std::vector<TraceSink*> sinks;

    PlxTraceComponent& component(const std::string& name)
    {
        const auto [entry, isNew] = components.try_emplace(name);
        if (isNew) {
            entry->second.name = name; // once: whoever traces reads it without the guard
        }
        return entry->second;
    }
};

Router& router()
{
    static Router& theRouter = *new Router;
    return theRouter;
}

void writeToSinks(const TraceRecord& record)
{
    const std::lock_guard<std::mutex> guard(router().sinksGuard);
    for (TraceSink* sink : router().sinks) {
        sink->write(record);
    }
}

} // namespace

namespace trace {

void setLevel(const std::string& component, PlxTraceLevel level)
{
    const std::lock_guard<std::mutex> guard(router().componentsGuard);
    PlxTraceComponent& entry = router().component(component);
    entry.level = level;
    entry.levelIsSet = true;
}

std::vector<TraceComponentInfo> components()
{
    const std::lock_guard<std::mutex> guard(router().componentsGuard);
    std::vector<TraceComponentInfo> infos;
    for (const auto& [name, component] : router().components) {
        if (component.exists) {
            infos.push_back(
                {name, static_cast<PlxTraceLevel>(component.level.load()), component.defaultLevel, component.hdrOption});
        }
    }
    return infos;
}

void addSink(TraceSink& sink)
{
    const std::lock_guard<std::mutex> guard(router().sinksGuard);
    router().sinks.push_back(&sink);
}

void removeSink(TraceSink& sink)
{
    const std::lock_guard<std::mutex> guard(router().sinksGuard);
    std::erase(router().sinks, &sink);
}

} // namespace trace

void StreamTraceSink::write(const TraceRecord& record)
{
    if (record.level > m_highestLevel) {
        return;
    }
    // One text, written at once: others may write to the stream, and it may group digits or write another base.
    std::string line = record.component + " " + std::to_string(record.level) + (record.isEntry ? " > " : "   ");
    line += record.header->function;
    if (record.hasText) {
        line += ": " + record.text;
    }
    m_stream << line + "\n" << std::flush; // out before the module goes on
}

void RecordingTraceSink::write(const TraceRecord& record)
{
    const std::lock_guard<std::mutex> guard(m_guard);
    m_records.push_back(record);
}

std::vector<TraceRecord> RecordingTraceSink::records() const
{
    const std::lock_guard<std::mutex> guard(m_guard);
    return m_records;
}

void RecordingTraceSink::clear()
{
    const std::lock_guard<std::mutex> guard(m_guard);
    m_records.clear();
}

} // namespace host

PlxTrace::PlxTrace(const char* name, PlxTraceLevel level, PlxTraceHdrOption hdrOption)
{
    host::Router& router = host::router();
    const std::lock_guard<std::mutex> guard(router.componentsGuard);
    PlxTraceComponent& component = router.component(name);
    component.exists = true;
    component.defaultLevel = level;
    component.hdrOption = hdrOption;
    if (!component.levelIsSet) {
        component.level = level;
    }
    m_component = &component;
}

bool PlxTrace::isEnabled(PlxTraceLevel level) const
{
    if (host::isHostObserved()) {
        host::tellHostObserver("trace.isEnabled " + std::to_string(level));
    }
    return level <= m_component->level.load(std::memory_order_relaxed);
}

void PlxTrace::logMsg(PlxTraceLevel level, const PlxTraceHeader& header, const std::string& text) const
{
    host::writeToSinks({m_component->name, level, &header, false, true, text});
}

void PlxTrace::logEnterMsg(PlxTraceLevel level, const PlxTraceHeader& header) const
{
    host::writeToSinks({m_component->name, level, &header, true, false, {}});
}

void PlxTrace::logEnterMsg(PlxTraceLevel level, const PlxTraceHeader& header, const std::string& text) const
{
    host::writeToSinks({m_component->name, level, &header, true, true, text});
}
