#pragma once

#include <functional>
#include <string>

namespace host {

/// Sees every use that modules make of the host's services, in order, before the service acts, on the thread that uses it.
/// What the observer throws comes out of the service, as if the service had failed.
///
/// Events: "module.register", "module.unregister", "broker.getInstance", "broker.interfaces", "broker.register NAME",
/// "broker.unregister NAME", "thread.name NAME", "sleep.get", "trace.isEnabled LEVEL".
using HostObserver = std::function<void(const std::string& event)>;

/// Puts an observer in place; an empty one takes it away. Call while no module uses the host.
void setHostObserver(HostObserver observer);

/// Whether there is an observer: one atomic load, for services that would have to build an event's text.
bool isHostObserved();

/// The services' side: tells the observer, if there is one.
void tellHostObserver(const std::string& event);

} // namespace host
