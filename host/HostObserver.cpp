#include "host/HostObserver.h"

#include <atomic>
#include <utility>

namespace host {

namespace {

std::atomic<bool> observed{false};

HostObserver& currentObserver()
{
    static HostObserver observer;
    return observer;
}

} // namespace

void setHostObserver(HostObserver observer)
{
    observed = false;
    currentObserver() = std::move(observer);
    observed = static_cast<bool>(currentObserver());
}

bool isHostObserved()
{
    return observed;
}

void tellHostObserver(const std::string& event)
{
    if (isHostObserved()) {
        currentObserver()(event);
    }
}

} // namespace host
