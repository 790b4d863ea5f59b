#pragma once

#include <cstdint>
#include <string>

/// How much a trace component writes: a record is written when its level is not above the component's.
enum PlxTraceLevel : std::uint32_t {
    PLX_TRACE_LEVEL_OFF = 0,
    PLX_TRACE_LEVEL_ERROR = 1,   ///< failures
    PLX_TRACE_LEVEL_DEFAULT = 3, ///< what a component starts with
    PLX_TRACE_LEVEL_INFO = 5,    ///< parameter dumps, thread life, refusals
    PLX_TRACE_LEVEL_ENTER = 6,   ///< function entry
    PLX_TRACE_LEVEL_DETAIL = 7,  ///< per-step detail
};

/// What the host puts before each record of a component.
enum PlxTraceHdrOption : std::uint32_t {
    PLX_TRACE_HDR_STANDARD = 256,
};

/// Where a trace record comes from. Static: the host may keep the pointers for as long as the module is loaded.
struct PlxTraceHeader {
    const char* file;     ///< source path, relative to the root of the source tree
    std::uint32_t line;   ///< line in that file
    const char* function; ///< unqualified function name
};

struct PlxTraceComponent; // the host's own

/// One trace component, named for the host's operator who sets its level. Defined by the host.
///
/// All operations may be called from any thread at any time. Those that write may change errno, isEnabled does not; whoever
/// traces saves it. What they throw passes through the code that traces.
class PlxTrace {
public:
    /// @param name       component name; must live as long as the component
    /// @param level      level until the operator sets another
    /// @param hdrOption  what stands before each record
    PlxTrace(const char* name, PlxTraceLevel level, PlxTraceHdrOption hdrOption);

    /// Whether records of this level are written at the moment. Cheap; ask before building a text.
    bool isEnabled(PlxTraceLevel level) const;

    /// Writes one record. Does not ask isEnabled again.
    void logMsg(PlxTraceLevel level, const PlxTraceHeader& header, const std::string& text) const;

    /// Writes a function-entry record, without and with a text.
    void logEnterMsg(PlxTraceLevel level, const PlxTraceHeader& header) const;
    void logEnterMsg(PlxTraceLevel level, const PlxTraceHeader& header, const std::string& text) const;

private:
    PlxTraceComponent* m_component = nullptr; ///< the host's record of this name; outlives the component
};
