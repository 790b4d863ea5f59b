#pragma once

#include <string_view>

namespace embedded {

/// A file that is part of the program.
struct Text {
    std::string_view name; ///< of the file, without folder and extension
    std::string_view text;
};

} // namespace embedded
