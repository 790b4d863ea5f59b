#pragma once

/// The module's one trace component and the two macros that write to it.
///
/// A trace site tests its level first. A level that is off evaluates nothing of the site; one that is on builds the text
/// independently of the global locale, hands it to the host with the site's own static header, and leaves errno as it was.
/// Trace sites are many and cold: of each, only its test and its stream expression are code of its own.

#include "Platform/Host/PlxTrace.h" // IWYU pragma: export

#include <ostream>

/// Component "ZRP.SDC". Exists from the load of the library to its unload.
extern const PlxTrace sdcTrace;

/// A text that is written when it is asked for, by the expression of a trace site. Lives as long as that statement.
class TraceText {
public:
    template <typename Write>
    explicit TraceText(const Write& write)
        : m_write([](const void* site, std::ostream& stream) { (*static_cast<const Write*>(site))(stream); })
        , m_site(&write)
    {
    }
    TraceText(const TraceText&) = delete;
    TraceText& operator=(const TraceText&) = delete;

    void writeTo(std::ostream& stream) const { m_write(m_site, stream); }

private:
    void (*m_write)(const void* site, std::ostream& stream);
    const void* m_site;
};

// One record each, of a level that is on.
void sdcTraceMessage(PlxTraceLevel level, const PlxTraceHeader& header, const TraceText& text);
void sdcTraceEntry(PlxTraceLevel level, const PlxTraceHeader& header, const TraceText& text);
void sdcTraceEntry(PlxTraceLevel level, const PlxTraceHeader& header);

// The pieces below serve the two macros only.
#define SDC_TRACE_SITE(level, log, ...)                                                                                     \
    do {                                                                                                                    \
        if (sdcTrace.isEnabled(level)) {                                                                                    \
            static constexpr PlxTraceHeader sdcTraceHeader{__FILE__, __LINE__, __func__};                                   \
            log(level, sdcTraceHeader __VA_ARGS__);                                                                         \
        }                                                                                                                   \
    } while (false)

#define SDC_TRACE_TEXT(...) , TraceText([&](std::ostream& sdcTraceStream) { sdcTraceStream << __VA_ARGS__; })

#define SDC_TRACE_ENTER_TEXT(level, expression) SDC_TRACE_SITE(level, sdcTraceEntry, SDC_TRACE_TEXT(expression))

#define SDC_TRACE_ENTER_PLAIN(level) SDC_TRACE_SITE(level, sdcTraceEntry, )

#define SDC_TRACE_ENTER_PICK(level, expression, picked, ...) picked

/// SDC_TRACE(level, stream expression): one record.
#define SDC_TRACE(level, expression) SDC_TRACE_SITE(level, sdcTraceMessage, SDC_TRACE_TEXT(expression))

/// SDC_TRACE_ENTER(level[, stream expression]): one function-entry record, without or with a text.
#define SDC_TRACE_ENTER(...) SDC_TRACE_ENTER_PICK(__VA_ARGS__, SDC_TRACE_ENTER_TEXT, SDC_TRACE_ENTER_PLAIN, )(__VA_ARGS__)
