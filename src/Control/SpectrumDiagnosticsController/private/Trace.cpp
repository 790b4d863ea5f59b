#include "Control/SpectrumDiagnosticsController/private/Trace.h"

#include <cerrno>
#include <locale>
#include <sstream>
#include <string>

const PlxTrace sdcTrace("ZRP.SDC", PLX_TRACE_LEVEL_DEFAULT, PLX_TRACE_HDR_STANDARD);

namespace {

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

/// Plain decimals, whatever the global locale says.
std::string built(const TraceText& text)
{
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    text.writeTo(stream);
    return stream.str();
}

} // namespace

void sdcTraceMessage(PlxTraceLevel level, const PlxTraceHeader& header, const TraceText& text)
{
    const ErrnoKeeper errnoKeeper;
    sdcTrace.logMsg(level, header, built(text));
}

void sdcTraceEntry(PlxTraceLevel level, const PlxTraceHeader& header, const TraceText& text)
{
    const ErrnoKeeper errnoKeeper;
    sdcTrace.logEnterMsg(level, header, built(text));
}

void sdcTraceEntry(PlxTraceLevel level, const PlxTraceHeader& header)
{
    const ErrnoKeeper errnoKeeper;
    sdcTrace.logEnterMsg(level, header);
}
