#include "apps/sdc/verdict/EmitterSearch.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <utility>

namespace sdc {

namespace {

/// The misfit that an emitter must take away.
constexpr double worthAnEmitter = 16.0;

struct Candidate {
    SeenEmitter emitter;
    Shape shape;
    double gain = 0.0;
};

/// Collects all emitters that could be there.
class CandidateMaker {
public:
    CandidateMaker(const Profile& profile, const ShapeMaker& make, SearchRange range);

    std::vector<Candidate> run();

private:
    void add(EmitterForm form, double centre_kHz, double width_kHz);
    void addAll(EmitterForm form, double width_kHz, double step_kHz);
    Shape shapeOf(const SeenEmitter& emitter) const;

    const ShapeMaker& m_make;
    const SearchRange m_range;
    const double m_channel_kHz;
    double m_reach_kHz; ///< of the filter, from the channel's centre
    std::vector<Candidate> m_candidates;
};

CandidateMaker::CandidateMaker(const Profile& profile, const ShapeMaker& make, SearchRange range)
    : m_make(make)
    , m_range(range)
    , m_channel_kHz(make.channelWidth_kHz())
    , m_reach_kHz(
          std::max(std::abs(profile.front().offset_kHz), std::abs(profile.back().offset_kHz)) + make.filterWidth_kHz() / 2.0)
{
}

Shape CandidateMaker::shapeOf(const SeenEmitter& emitter) const
{
    constexpr double usualRollOff = 0.25;
    const double half_kHz = emitter.width_kHz / 2.0;
    switch (emitter.form) {
    case EmitterForm::line: return m_make.line(emitter.centre_kHz);
    case EmitterForm::carrier: return m_make.carrier(emitter.centre_kHz, emitter.width_kHz, usualRollOff);
    case EmitterForm::wideband: break;
    }
    return m_make.band(emitter.centre_kHz - half_kHz, emitter.centre_kHz + half_kHz);
}

void CandidateMaker::add(EmitterForm form, double centre_kHz, double width_kHz)
{
    constexpr double reachesIn = 0.1;
    constexpr double leastHeard = 0.02;
    constexpr double near = 0.62;
    const double low_kHz = std::max(centre_kHz - width_kHz / 2.0, -m_channel_kHz / 2.0);
    const double high_kHz = std::min(centre_kHz + width_kHz / 2.0, m_channel_kHz / 2.0);
    const bool isInside = high_kHz - low_kHz >= reachesIn * std::min(width_kHz, m_channel_kHz);
    if (isInside && m_range == SearchRange::outsideOfTheChannel) {
        return;
    }
    const bool isNear = std::abs(centre_kHz) - width_kHz / 2.0 < near * m_channel_kHz;
    const SeenEmitter emitter{.form = form,
        .centre_kHz = centre_kHz,
        .width_kHz = width_kHz,
        .isInside = isInside,
        .hugs = isInside || !isNear ? 0 : (centre_kHz < 0.0 ? -1 : 1)};
    Shape shape = shapeOf(emitter);
    if (std::ranges::max(shape.shares) > leastHeard) {
        m_candidates.push_back({emitter, std::move(shape)});
    }
}

void CandidateMaker::addAll(EmitterForm form, double width_kHz, double step_kHz)
{
    const auto steps = static_cast<int>((m_reach_kHz + width_kHz / 2.0) / step_kHz);
    for (int step = -steps; step <= steps; ++step) {
        add(form, step * step_kHz, width_kHz);
    }
}

std::vector<Candidate> CandidateMaker::run()
{
    addAll(EmitterForm::line, 0.0, m_channel_kHz / 32.0);
    for (const double part : {0.125, 0.25, 0.5}) {
        addAll(EmitterForm::carrier, part * m_channel_kHz, m_channel_kHz / 24.0);
    }
    addAll(EmitterForm::carrier, m_channel_kHz, m_channel_kHz / 16.0);
    for (const double times : {1.6, 2.0, 3.0, 6.0}) {
        addAll(EmitterForm::wideband, times * m_channel_kHz, m_channel_kHz / 8.0);
    }
    return std::move(m_candidates);
}

class Search {
public:
    Search(const Profile& profile, double constant_mW, std::vector<Shape> known, std::vector<Candidate> candidates)
        : m_profile(profile)
        , m_constant_mW(constant_mW)
        , m_shapes(std::move(known))
        , m_known(m_shapes.size())
        , m_candidates(std::move(candidates))
        , m_fit(fit(profile, constant_mW, m_shapes))
    {
    }

    /// @return false when nothing is worth it
    bool addOne();
    EmitterSearch result() const;

private:
    void sortByGain();

    const Profile& m_profile;
    const double m_constant_mW;
    std::vector<Shape> m_shapes; ///< known ones, then those of the emitters
    const std::size_t m_known;
    std::vector<Candidate> m_candidates;
    Fit m_fit;
    std::vector<SeenEmitter> m_emitters;
};

void Search::sortByGain()
{
    for (Candidate& candidate : m_candidates) {
        candidate.gain = gainOf(m_profile, m_fit, candidate.shape);
    }
    std::ranges::sort(m_candidates, std::greater<>(), &Candidate::gain);
}

/// Nobody keeps right beside a channel without being in it, so that one in it is more likely.
constexpr double hugging = 6.0;

/// A carrier that is narrow looks nearly like a line, which it must surpass.
double unlikely(const SeenEmitter& emitter)
{
    constexpr double thatOfALine = 2.0;
    return (emitter.form == EmitterForm::carrier ? thatOfALine : 0.0) + (emitter.hugs == 0 ? 0.0 : hugging);
}

/// What gains most with all else as it is need not be best when all else gives way: the first few are tried.
bool Search::addOne()
{
    constexpr std::size_t tried = 8;
    sortByGain();
    const Candidate* best = nullptr;
    Fit bestFit;
    double least = m_fit.misfit - worthAnEmitter;
    m_shapes.emplace_back();
    for (std::size_t index = 0; index < std::min(tried, m_candidates.size()); ++index) {
        m_shapes.back() = m_candidates[index].shape;
        Fit one = fit(m_profile, m_constant_mW, m_shapes);
        const double misfit = one.misfit + unlikely(m_candidates[index].emitter);
        if (misfit < least) {
            best = &m_candidates[index];
            bestFit = std::move(one);
            least = misfit;
        }
    }
    m_shapes.pop_back();
    if (best == nullptr) {
        return false;
    }
    m_shapes.push_back(best->shape);
    m_emitters.push_back(best->emitter);
    m_fit = std::move(bestFit);
    return true;
}

EmitterSearch Search::result() const
{
    EmitterSearch found{
        .emitters = m_emitters, .misfit = m_fit.misfit, .all_mW = m_fit.explained_mW, .outside_mW = m_fit.explained_mW};
    for (std::size_t index = 0; index < m_emitters.size(); ++index) {
        const double power_mW = m_fit.powers_mW[m_known + index];
        found.emitters[index].power_mW = power_mW;
        for (std::size_t point = 0; m_emitters[index].isInside && point < m_profile.size(); ++point) {
            found.outside_mW[point] -= power_mW * m_shapes[m_known + index].shares[point];
        }
    }
    for (double& power_mW : found.outside_mW) {
        power_mW = std::max(power_mW, m_constant_mW);
    }
    return found;
}

} // namespace

/// Two that hug the channel from both sides are much less likely than one in it.
double EmitterSearch::cost() const
{
    constexpr double fromBothSides = 3.0;
    const auto hugs = [this](int side) {
        return std::ranges::any_of(emitters, [side](const SeenEmitter& emitter) { return emitter.hugs == side; });
    };
    const double count = static_cast<double>(emitters.size()) + (hugs(-1) && hugs(1) ? fromBothSides : 0.0);
    return misfit + worthAnEmitter * count + (hugs(-1) || hugs(1) ? hugging : 0.0);
}

EmitterSearch searchEmitters(
    const Profile& profile, double constant_mW, const std::vector<Shape>& known, const ShapeMaker& make, SearchRange range)
{
    constexpr int most = 4;
    Search search(profile, constant_mW, known, CandidateMaker(profile, make, range).run());
    for (int count = 0; count < most && search.addOne(); ++count) {
    }
    return search.result();
}

} // namespace sdc
