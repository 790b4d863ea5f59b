#include "Control/SpectrumDiagnosticsController/private/Trace.h"

#include <locale>

const PlxTrace sdcTrace("ZRP.SDC", PLX_TRACE_LEVEL_DEFAULT, PLX_TRACE_HDR_STANDARD);

TraceText::TraceText()
{
    m_stream.imbue(std::locale::classic());
}

TraceText::~TraceText() = default;

std::string TraceText::str() const
{
    return m_stream.str();
}
