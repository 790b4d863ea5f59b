#pragma once

/// The module's one trace component and the two macros that write to it.
///
/// A trace site tests its level first. A level that is off evaluates nothing of the site; one that is on builds the text
/// independently of the global locale, hands it to the host with the site's own static header, and leaves errno as it was.

#include "Platform/Host/PlxTrace.h"

#include <cerrno>
#include <sstream>
#include <string>

/// Component "ZRP.SDC". Exists from the load of the library to its unload.
extern const PlxTrace sdcTrace;

/// Restores errno to what it was, also when the trace throws.
class ErrnoKeeper {
public:
    ErrnoKeeper()
        : m_errno(errno)
    {
    }
    ~ErrnoKeeper() { errno = m_errno; }
    ErrnoKeeper(const ErrnoKeeper&) = delete;
    ErrnoKeeper& operator=(const ErrnoKeeper&) = delete;

private:
    int m_errno;
};

/// A string stream that writes plain decimals whatever the global locale says. Out of line: trace sites are many and cold.
class TraceText {
public:
    TraceText();
    ~TraceText();
    TraceText(const TraceText&) = delete;
    TraceText& operator=(const TraceText&) = delete;

    std::ostream& stream() { return m_stream; }
    std::string str() const;

private:
    std::ostringstream m_stream;
};

// The pieces below serve the two macros only.
#define SDC_TRACE_SITE(level, build, log)                                                                                   \
    do {                                                                                                                    \
        if (sdcTrace.isEnabled(level)) {                                                                                    \
            const ErrnoKeeper sdcErrnoKeeper;                                                                               \
            static constexpr PlxTraceHeader sdcTraceHeader{__FILE__, __LINE__, __func__};                                   \
            build;                                                                                                          \
            log;                                                                                                            \
        }                                                                                                                   \
    } while (false)

#define SDC_TRACE_BUILD(expression)                                                                                         \
    TraceText sdcTraceText;                                                                                                 \
    sdcTraceText.stream() << expression

#define SDC_TRACE_ENTER_TEXT(level, expression)                                                                             \
    SDC_TRACE_SITE(level, SDC_TRACE_BUILD(expression), sdcTrace.logEnterMsg(level, sdcTraceHeader, sdcTraceText.str()))

#define SDC_TRACE_ENTER_PLAIN(level) SDC_TRACE_SITE(level, , sdcTrace.logEnterMsg(level, sdcTraceHeader))

#define SDC_TRACE_ENTER_PICK(level, expression, picked, ...) picked

/// SDC_TRACE(level, stream expression): one record.
#define SDC_TRACE(level, expression)                                                                                        \
    SDC_TRACE_SITE(level, SDC_TRACE_BUILD(expression), sdcTrace.logMsg(level, sdcTraceHeader, sdcTraceText.str()))

/// SDC_TRACE_ENTER(level[, stream expression]): one function-entry record, without or with a text.
#define SDC_TRACE_ENTER(...) SDC_TRACE_ENTER_PICK(__VA_ARGS__, SDC_TRACE_ENTER_TEXT, SDC_TRACE_ENTER_PLAIN, )(__VA_ARGS__)
