#pragma once

// What the author of a module that scans does without a radio. The tests compile and run it.

#include "simulator/Radios.h"
#include "terminal/Terminal.h"

#include <ostream>

inline void tryScans(std::ostream& out)
{
    const simulator::Scenario scenario = simulator::loadScenario("18-f595"); // or a file of your own
    const RadioChannel channel = scenario.channels.front().number;
    host::VirtualClock clock; // a sweep of hours takes milliseconds; RealClock takes hours
    simulator::Radios radios(scenario, clock);
    terminal::Terminal terminal(radios.channels(), clock);

    // Your module finds the controller in the broker, or is given terminal.controller(channel).
    terminal.startScan(channel, SDC_CMD_CHANNEL_SCAN_START);
    terminal.waitForEnd(channel);
    for (const SDCResult& sample : terminal.samples(channel)) {
        out << sample.frequency_kHz << " kHz: " << sample.rssi << " hundredths of a dBm\n";
    }
    terminal.waitForIdle(channel);

    host::RecordingTraceSink trace;
    host::trace::addSink(trace);
    using enum simulator::Operation;
    using enum simulator::FaultAction;
    radios[channel].inject({setRxFrequency, refuse, 3}); // the third tuning from now
    terminal.startScan(channel, SDC_CMD_SUB_BAND_SCAN_START);
    const ESDCStatus status = terminal.waitForEnd(channel);
    terminal.waitForIdle(channel);
    host::trace::removeSink(trace);

    out << SDCStatus::toString(status) << " after " << terminal.samples(channel).size() << " samples\n";
    for (const host::TraceRecord& record : trace.records()) {
        if (record.level == PLX_TRACE_LEVEL_ERROR) {
            out << record.text << '\n';
        }
    }
}
