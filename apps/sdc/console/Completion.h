#pragma once

#include "apps/sdc/console/Words.h"

#include <cstddef>
#include <functional>
#include <string>

namespace sdc {

/// What may stand in the place of the last word of the beginning of a line.
struct Completion {
    std::size_t begin = 0; ///< of that word in the line
    Words words;           ///< that begin as it does, in order
};

using Completer = std::function<Completion(const std::string& begun)>;

/// The files whose names begin so, each as it would be written, folders with a slash at the end. Hidden ones where the name
/// begins with their dot.
Words filesBeginning(const std::string& name);

} // namespace sdc
