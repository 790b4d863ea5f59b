#include "apps/sdc/verdict/KnownShapes.h"

#include "apps/sdc/result/Floor.h"
#include "apps/sdc/result/Survey.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

namespace sdc {

namespace {

// The worst that a scan may not show: a transmitter as strong as readings go, whose mask leaves so much in the channel
// beside its own, and so much, but ten dB less at least, in the one after that. Hundredths of a dB.
constexpr double strongest = -2000.0;
constexpr double poorestMask = 2500.0;
constexpr double poorestMaskAfter = 4500.0;
constexpr double leastFallOfMask = 1000.0;
const double strongest_mW = milliwatts(strongest);
constexpr double unbounded_mW = std::numeric_limits<double>::infinity();

Shape sum(Shape shape, const Shape& other, double part)
{
    for (std::size_t index = 0; index < shape.shares.size(); ++index) {
        shape.shares[index] += part * other.shares[index];
    }
    return shape;
}

/// What the strongest leaks through the filter.
double unseenFlat_mW(const OwnChannel& own)
{
    return milliwatts(strongest - 100.0 * own.receiver().ultimateRejection_dB);
}

class KnownShapes {
public:
    KnownShapes(const OwnChannel& own, const ShapeMaker& make, OwnLevel level, const Assumed& assumed)
        : m_own(own)
        , m_make(make)
        , m_level(level)
        , m_assumed(assumed)
        , m_mustBeSeen(assumed.mustBeSeen && own.tunings() < samplesOfAShape)
        , m_channel(make.band(-width_kHz() / 2.0, width_kHz() / 2.0))
    {
    }

    std::vector<Shape> make();

private:
    double width_kHz() const { return m_make.channelWidth_kHz(); }
    void add(Shape shape, double most_mW);
    void addLeaks();
    void addBeside(double side);
    void addOwnCarrier(double rollOff);

    const OwnChannel& m_own;
    const ShapeMaker& m_make;
    const OwnLevel m_level;
    const Assumed& m_assumed;
    const bool m_mustBeSeen;
    const Shape m_channel; ///< as dense all over it
    std::vector<Shape> m_shapes;
};

void KnownShapes::add(Shape shape, double most_mW)
{
    shape.most_mW = most_mW;
    m_shapes.push_back(std::move(shape));
}

void KnownShapes::addLeaks()
{
    // A slow receiver shows less of what it comes upon than there is.
    const double uncertain = m_own.isSlow() ? 2.0 : 1.3;
    const TraceKind kind = traceOf(m_level);
    add(m_make.flat(),
        uncertain * m_own.leakageSettled(kind).rejected_mW(m_own.stretch())
            + (m_assumed.hasUnseen ? unseenFlat_mW(m_own) : 0.0));
    if (m_assumed.hasMasks) {
        const double inFilter = std::min(width_kHz(), m_make.filterWidth_kHz()) / width_kHz();
        add(m_channel, m_own.leakage(kind).mostByMasks_mW(m_own.stretch()) / inFilter);
    }
}

/// A carrier in the channel beside, and what the mask of the one after that leaves there.
void KnownShapes::addBeside(double side)
{
    const double filterWidth_kHz = m_make.filterWidth_kHz();
    const Stretch channel{(side - 0.5) * width_kHz(), (side + 0.5) * width_kHz()};
    const Shape beside = m_make.band(channel.low_kHz, channel.high_kHz);
    const double after_mW = m_own.most_mW(m_level, [&](double tuning_kHz) {
        return shareOfCarrier({2.0 * side * width_kHz(), width_kHz(), leastRollOff}, tuning_kHz, filterWidth_kHz);
    });
    const double heard_mW = m_own.most_mW(
        m_level, [&](double tuning_kHz) { return shareOfBand(channel, tuning_kHz, filterWidth_kHz); }, m_mustBeSeen);
    add(beside, std::min({strongest_mW * milliwatts(-poorestMask), heard_mW, after_mW * milliwatts(-poorestMask)}));
    for (const double rollOff : {leastRollOff, mostRollOff}) {
        const CarrierShape shape{side * width_kHz(), width_kHz(), rollOff};
        const double most_mW = std::min(strongest_mW,
            m_own.most_mW(
                m_level, [&](double tuning_kHz) { return shareOfCarrier(shape, tuning_kHz, filterWidth_kHz); },
                m_mustBeSeen));
        const Shape carrier = m_make.carrier(shape.centre_kHz, width_kHz(), rollOff);
        add(carrier, most_mW);
        if (m_assumed.hasUnseen) {
            add(sum(carrier, m_channel, milliwatts(-poorestMask)), most_mW);
        }
    }
    if (m_assumed.hasUnseen) {
        add(sum(beside, m_channel, milliwatts(-leastFallOfMask)),
            strongest_mW * milliwatts(leastFallOfMask - poorestMaskAfter));
    }
}

void KnownShapes::addOwnCarrier(double rollOff)
{
    const CarrierShape carrier{0.0, width_kHz(), rollOff};
    add(m_make.carrier(0.0, width_kHz(), rollOff), unbounded_mW);
    if (m_assumed.notch.width_kHz() > 0.0) {
        add(m_make.partOfCarrier(carrier, {-width_kHz(), m_assumed.notch.low_kHz}), unbounded_mW);
        add(m_make.partOfCarrier(carrier, {m_assumed.notch.high_kHz, width_kHz()}), unbounded_mW);
    }
}

std::vector<Shape> KnownShapes::make()
{
    addLeaks();
    if (m_assumed.hasNeighbours && hasEdges(m_own)) {
        addBeside(-1.0);
        addBeside(1.0);
    }
    if (m_assumed.hasOwnCarrier) {
        addOwnCarrier(leastRollOff);
        addOwnCarrier(mostRollOff);
    }
    return std::move(m_shapes);
}

} // namespace

bool hasEdges(const OwnChannel& own)
{
    return own.isSeenFromBeside() || own.tunings() >= samplesOfAShape || own.isRaster();
}

std::vector<Shape> knownShapes(const OwnChannel& own, const ShapeMaker& make, OwnLevel level, const Assumed& assumed)
{
    return KnownShapes(own, make, level, assumed).make();
}

double unseen_mW(const OwnChannel& own, const OwnReading& reading)
{
    const bool isBesideSeen = own.tunings() >= samplesOfAShape || own.isRaster();
    const double inFilter = std::min(1.0, own.filterWidth_kHz() / own.width_kHz());
    const CarrierShape beside{own.width_kHz(), own.width_kHz(), leastRollOff};
    const double overEdge = isBesideSeen ? 0.0 : shareOfCarrier(beside, std::abs(reading.offset_kHz), own.filterWidth_kHz());
    const double mask = isBesideSeen ? poorestMaskAfter : poorestMask;
    return unseenFlat_mW(own) + strongest_mW * (inFilter * milliwatts(-mask) + overEdge);
}

double masksSeen_mW(const OwnChannel& own)
{
    return own.leakage(TraceKind::max).mostByMasks_mW(own.stretch());
}

} // namespace sdc
