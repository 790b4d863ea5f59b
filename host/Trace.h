#pragma once

#include "Platform/Host/PlxTrace.h"

#include <iosfwd>
#include <mutex>
#include <string>
#include <vector>

namespace host {

/// One trace record as a sink gets it. The header's pointers live as long as the module that wrote the record.
struct TraceRecord {
    std::string component;
    PlxTraceLevel level{};
    const PlxTraceHeader* header = nullptr;
    bool isEntry = false; ///< a function-entry record
    bool hasText = false; ///< false for an entry record without a text
    std::string text;
};

/// Where trace records go. Called for one record at a time, on the thread that traces. What it throws reaches the tracer.
class TraceSink {
public:
    virtual ~TraceSink() = default;
    virtual void write(const TraceRecord& record) = 0;
};

/// What a component asked for when it was constructed.
struct TraceComponentInfo {
    std::string name;
    PlxTraceLevel level;         ///< the level now
    PlxTraceLevel defaultLevel;  ///< the level of its constructor
    PlxTraceHdrOption hdrOption; ///< the header option of its constructor
};

/// The host's trace facility. All operations may be called from any thread.
namespace trace {

/// Sets a component's level, also before the component exists: then it takes the place of the constructor's.
void setLevel(const std::string& component, PlxTraceLevel level);

/// All components constructed so far, ordered by name.
std::vector<TraceComponentInfo> components();

/// A sink gets all records from the return of addSink to the return of removeSink.
void addSink(TraceSink& sink);
void removeSink(TraceSink& sink);

/// Adds a sink for as long as it lives.
class SinkInForce {
public:
    explicit SinkInForce(TraceSink& sink)
        : m_sink(sink)
    {
        addSink(m_sink);
    }
    ~SinkInForce() { removeSink(m_sink); }
    SinkInForce(const SinkInForce&) = delete;
    SinkInForce& operator=(const SinkInForce&) = delete;

private:
    TraceSink& m_sink;
};

} // namespace trace

/// Writes readable lines: component, level, function, text; entry records are marked with ">". Records above a level of its
/// own are left out, so that what a person reads does not depend on what other sinks need.
class StreamTraceSink : public TraceSink {
public:
    explicit StreamTraceSink(std::ostream& stream, PlxTraceLevel highestLevel = PLX_TRACE_LEVEL_DETAIL)
        : m_stream(stream)
        , m_highestLevel(highestLevel)
    {
    }
    void write(const TraceRecord& record) override;

private:
    std::ostream& m_stream;
    PlxTraceLevel m_highestLevel;
};

/// Keeps all records.
class RecordingTraceSink : public TraceSink {
public:
    void write(const TraceRecord& record) override;

    std::vector<TraceRecord> records() const;
    void clear();

private:
    mutable std::mutex m_guard;
    std::vector<TraceRecord> m_records;
};

} // namespace host
