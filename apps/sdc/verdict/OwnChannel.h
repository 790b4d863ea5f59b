#pragma once

#include "apps/sdc/result/Floor.h"
#include "apps/sdc/result/ReceiverData.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Survey.h"
#include "apps/sdc/verdict/Fluctuation.h"
#include "apps/sdc/verdict/Profile.h"

#include <cstddef>
#include <functional>
#include <vector>

namespace sdc {

/// What was read at one tuning. Hundredths of a dBm.
struct OwnReading {
    double offset_kHz = 0.0; ///< from the channel's centre
    double mean = 0.0;       ///< of the levels
    double max = 0.0;
    double min = 0.0;
    std::size_t readings = 0;
    bool isOwn = false; ///< in the channel, not beside it
};

using OwnLevel = double OwnReading::*;

/// Fewer tunings in a channel show no shape.
inline constexpr std::size_t samplesOfAShape = 5;

/// The trace that has these levels.
TraceKind traceOf(OwnLevel level);

/// What a scan tells of the channel that the receiver belongs to.
class OwnChannel {
public:
    explicit OwnChannel(const ChannelResult& channel);

    /// In the channel and so far beside it as the filter can take in something of both, by frequency.
    const std::vector<OwnReading>& readings() const { return m_readings; }
    std::size_t tunings() const { return m_tunings; } ///< in the channel
    const ReceiverData& receiver() const { return m_channel.receiver; }
    double width_kHz() const { return m_channel.plan.channelSpacing_kHz; }
    double filterWidth_kHz() const { return m_channel.receiver.filterWidth_kHz; }
    double step_kHz() const { return m_channel.plan.step_kHz; }
    double centre_kHz() const { return m_channel.plan.rxFrequency_kHz; }
    Stretch stretch() const { return channelAt(0, m_channel.plan); }
    double noise_mW() const; ///< but not less than the lowest reading
    double scatter() const { return m_scatter; }
    std::size_t sweeps() const;                   ///< that reached the channel
    std::size_t count() const { return m_count; } ///< readings in the channel

    /// Whether the scan shows what transmits elsewhere: more than the configured channel, and more than a few samples.
    bool isSeenFromBeside() const { return m_isSeenFromBeside; }

    /// Whether there is a sample outside of the channel at all.
    bool isBeyond() const { return m_all.size() > m_tunings; }

    /// Whether there is one sample for each channel, at its centre.
    bool isRaster() const { return m_channel.plan.step_kHz == m_channel.plan.channelSpacing_kHz; }

    /// How far the highest reading and the mean of readings may lie over what is quiet.
    double marginOfMax() const;
    double marginOfMean(std::size_t readings) const;

    /// What leaks into the channel of all that the scan shows, with the levels that are usual, or with the highest; as it
    /// was read, or as a receiver would have read it that is not slow.
    Leakage leakage(TraceKind kind) const;
    Leakage leakageSettled(TraceKind kind) const;

    /// The most power that something can have of which samples take in a part, by all samples.
    /// @param share       that a sample at an offset from the channel's centre takes in, 0 to 1
    /// @param mustBeSeen  no power at all without a sample beside the channel that takes in a good part
    double most_mW(OwnLevel level, const std::function<double(double)>& share, bool mustBeSeen = false) const;

    /// Powers as they would be without saturation.
    /// @param lag  that the receiver is taken to have
    Profile profileOf(OwnLevel level, double lag = 0.0) const;

    /// At tunings from which the filter does not reach beside the channel, as far as there are such.
    Readings fromSweepToSweep() const;

    /// At tunings so near to the centre.
    Readings fromSweepToSweepWithin(double away_kHz) const;

    /// At all tunings of `readings()`.
    Readings aroundFromSweepToSweep() const;

    /// Of a slow receiver, the part of a fall, in dB, that it has not made when the next reading is taken; at most.
    double mostLag() const { return m_mostLag; }
    bool isSlow() const; ///< it may be so much that it changes verdicts

    /// The parts that it may be, beginning with none.
    std::vector<double> lags() const;

private:
    double risenTo(double reading, double before) const;
    void look(const std::vector<Spread>& spreads);
    bool isReachedUnseen(const OwnReading& reading) const;
    double reach_kHz() const;
    double lagSeen(const std::vector<Spread>& spreads) const;

    const ChannelResult& m_channel;
    double m_scatter;
    bool m_isSeenFromBeside = false;
    std::size_t m_count = 0;
    std::size_t m_tunings = 0;
    double m_mostLag = 0.0;
    std::vector<OwnReading> m_readings;
    std::vector<OwnReading> m_all; ///< also those far away
};

} // namespace sdc
