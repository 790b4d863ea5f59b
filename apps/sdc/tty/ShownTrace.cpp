#include "apps/sdc/tty/ShownTrace.h"

#include "Platform/Host/PlxTrace.h"
#include "apps/sdc/tty/Screen.h"
#include "support/Text.h"
#include "terminal/ControllerTrace.h"
#include "terminal/Terminal.h"

#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <iostream>
#include <sstream>

namespace sdc {

/// The controllers write level 5 all the time, which tells the terminal the plans.
ShownTrace::ShownTrace(std::uint32_t level)
    : m_level(static_cast<PlxTraceLevel>(level))
    , m_isLineWrittenOver(isCapableTerminal(STDERR_FILENO))
{
    host::trace::setLevel(terminal::ControllerTrace::component, std::max(m_level, PLX_TRACE_LEVEL_INFO));
    host::trace::addSink(*this);
}

ShownTrace::~ShownTrace()
{
    host::trace::removeSink(*this);
}

void ShownTrace::write(const host::TraceRecord& record)
{
    constexpr std::size_t longestText = 1000;
    if (record.level > PLX_TRACE_LEVEL_INFO && terminal::isWaiting()) {
        return; // there are thousands of them
    }
    host::TraceRecord plain = record;
    plain.text = support::shown(record.text, longestText);
    std::ostringstream text;
    host::StreamTraceSink(text, m_level).write(plain);
    if (!text.view().empty()) {
        std::cerr << (m_isLineWrittenOver ? "\r\033[K" : "") + text.str() << std::flush;
    }
}

} // namespace sdc
