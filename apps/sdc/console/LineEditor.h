#pragma once

#include "apps/sdc/console/Completion.h"
#include "apps/sdc/console/LineHistory.h"
#include "apps/sdc/console/LineSource.h"
#include "apps/sdc/console/Signals.h"

#include <cstdio>
#include <memory>

namespace sdc {

/// Lines that a person types on standard input, a terminal that can move its cursor: with editing, history and completion by
/// libedit, and the person's own settings out of ~/.editrc. Ctrl-C clears the line, Ctrl-D in an empty one ends the input.
/// @param shown  the terminal that shows them
std::unique_ptr<LineSource> makeLineEditor(Signals& signals, LineHistory& history, Completer complete, std::FILE* shown);

} // namespace sdc
