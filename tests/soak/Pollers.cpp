#include "tests/soak/Pollers.h"

#include "tests/soak/SoakFailure.h"

#include <algorithm>

namespace soak {

namespace {

constexpr std::int32_t floor_cdBm = -9970;

bool ascends(const SDCResult& left, const SDCResult& right)
{
    return left.frequency_kHz < right.frequency_kHz;
}

bool couldBe(const std::vector<SDCResult>& samples, std::int32_t count)
{
    if (count < 0 || static_cast<std::size_t>(count) > samples.size()) {
        return false;
    }
    const auto end = samples.begin() + count;
    const auto isNoAscent = [](const SDCResult& left, const SDCResult& right) { return !ascends(left, right); };
    return std::adjacent_find(samples.begin(), end, isNoAscent) == end
        && std::all_of(samples.begin(), end, [](const SDCResult& sample) { return sample.rssi >= floor_cdBm; });
}

} // namespace

Pollers::Pollers(std::vector<ISpectrumDiagnosticsController*> controllers, std::size_t threads)
    : m_controllers(std::move(controllers))
{
    for (std::size_t i = 0; i < threads; ++i) {
        m_threads.emplace_back(&Pollers::poll, this);
    }
}

Pollers::~Pollers()
{
    m_isEnding = true;
    for (std::thread& thread : m_threads) {
        thread.join();
    }
}

void Pollers::check() const
{
    const std::lock_guard<std::mutex> guard(m_guard);
    require(m_invalidAnswer.empty(), m_invalidAnswer);
}

void Pollers::poll()
{
    std::vector<SDCResult> room(2000);
    while (!m_isEnding) {
        for (ISpectrumDiagnosticsController* const controller : m_controllers) {
            ask(*controller, room);
        }
        std::this_thread::yield();
    }
}

void Pollers::ask(ISpectrumDiagnosticsController& controller, std::vector<SDCResult>& room)
{
    const auto status = static_cast<std::uint32_t>(controller.getStatus());
    if (SDCStatus::toString(static_cast<ESDCStatus>(status)) == "unknown") {
        reportInvalid("a poller got the status " + std::to_string(status));
    }
    const std::int32_t progress = controller.getProgress();
    if (progress < 0 || progress > 99) {
        reportInvalid("a poller got the progress " + std::to_string(progress));
    }
    auto count = static_cast<std::int32_t>(room.size());
    if (controller.getResult(&count, room.data()) != SDC_RC_OK || !couldBe(room, count)) {
        reportInvalid("a poller got samples of no sweep, " + std::to_string(count) + " of them");
    }
}

void Pollers::reportInvalid(const std::string& text)
{
    const std::lock_guard<std::mutex> guard(m_guard);
    m_invalidAnswer = text;
}

} // namespace soak
