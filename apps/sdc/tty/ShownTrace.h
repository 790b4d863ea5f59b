#pragma once

#include "Platform/Host/PlxTrace.h"
#include "host/Trace.h"

#include <cstdint>

namespace sdc {

/// Shows the controllers' trace up to a level on standard error for as long as it lives, each record in one piece and on a
/// line of its own. Calls by which the program only waits for a scan are left out, unless they fail.
class ShownTrace : public host::TraceSink {
public:
    explicit ShownTrace(std::uint32_t level);
    ~ShownTrace() override;
    ShownTrace(const ShownTrace&) = delete;
    ShownTrace& operator=(const ShownTrace&) = delete;

    void write(const host::TraceRecord& record) override;

private:
    PlxTraceLevel m_level;
    bool m_isLineWrittenOver; ///< on a terminal the progress may stand in the line
};

} // namespace sdc
