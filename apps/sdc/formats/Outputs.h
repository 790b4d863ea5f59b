#pragma once

#include "apps/sdc/formats/Formats.h"
#include "apps/sdc/formats/LiveFile.h"
#include "apps/sdc/formats/LiveFormat.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Survey.h"
#include "apps/sdc/result/Sweep.h"
#include "apps/sdc/scan/Session.h"
#include "apps/sdc/tty/Screen.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace sdc {

/// A file in which a result is written.
struct Output {
    const Format* format;
    std::string file; ///< "-": standard output
};

struct OutputOptions {
    std::vector<Output>
        outputs; ///< at most one to standard output; where there are none at all, the first format goes there
    std::optional<std::size_t>
        rows; ///< most rows of the table, 0: one for each sample; otherwise as many as a terminal shows
    ColorMode color{};
    TraceKind trace = usualTrace; ///< of several sweeps, what stands for a frequency
};

/// Whether one of the outputs goes to standard output.
bool usesStandardOutput(const std::vector<Output>& outputs);

/// Whether lines appear on a terminal, on standard output, while a scan runs.
bool isLiveOnTerminal(const std::vector<Output>& outputs);

/// What has to be kept of the sweeps for the outputs.
Keep keepFor(const std::vector<Output>& outputs);

/// The outputs of a scan: the live formats while it runs, the others at its end. What cannot be written does not keep the
/// others from it.
class Outputs : public Sink {
public:
    /// Finds out before a scan, which may take hours, what can be known of outputs that cannot be written.
    /// @param channels  that are scanned
    /// @param tell      takes what cannot be written, one line, as soon as that is known
    /// @throws std::runtime_error that names the file, or the option, and the reason; UsageError where two outputs go into
    /// one file, or rows of several channels into what cannot keep them apart
    Outputs(OutputOptions options, std::vector<std::uint32_t> channels, std::function<void(const std::string&)> tell);

    /// Opens the files of the live formats. Waits for the readers of pipes, unless a stop is asked for.
    /// @param result  of the scan; its channels may come later
    /// @throws std::runtime_error that names the file and the reason
    void open(const ScanResult& result);

    /// Who must be told all of the scan, in this order.
    std::vector<Sink*> sinks();

    /// Whether there is anything left to scan for: not where all readers have gone, or no file takes more.
    bool isAnyWanted() const;

    /// What the result has to keep of the next sweep. Where it has as many samples as fit into a file that is read, the
    /// outputs that need all of them are written and need no more.
    Keep keep() const;

    /// Whether all went well so far. A reader that has had enough is no failure.
    bool areAllWritten() const { return m_areAllWritten; }

    // Told after the live formats.
    void onSweepBegin(std::size_t channel, const ScanPlan& plan) override;
    void onSweepEnd(std::size_t channel, const Sweep& sweep) override;
    void onPoll() override;
    void onEnd(Ending ending) override;

private:
    struct Live {
        std::vector<std::unique_ptr<LiveFile>> files;
        std::unique_ptr<LiveFormat> format;
    };

    std::vector<std::string> filesOf(const Output& output) const;
    void checkEachHasItsOwn() const;
    void attempt(const std::function<void()>& write);
    void writeWhole(const Output& output);
    void writeWhatIsFull();
    void finish(LiveFile& file);

    OutputOptions m_options;
    std::vector<std::uint32_t> m_channels;
    std::function<void(const std::string&)> m_tell;
    const ScanResult* m_result = nullptr;
    std::vector<Live> m_live;
    bool m_areAllWritten = true;
    std::size_t m_kept = 0; ///< samples of all sweeps that have ended, as a result counts them
    bool m_isFull = false;  ///< what needs them is written
};

} // namespace sdc
