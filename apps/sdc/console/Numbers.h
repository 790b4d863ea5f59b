#pragma once

#include "apps/sdc/console/Words.h"
#include "apps/sdc/options/Options.h"

#include <charconv>
#include <string>
#include <system_error>

namespace sdc {

/// A whole word as a number.
/// @throws InvalidLine  "invalid count of samples 'many'; expected a number such as 10"
template <typename Number>
Number parseWord(const std::string& word, const char* what, const char* expected)
{
    Number number{};
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (error != std::errc{} || end != word.data() + word.size()) {
        throw InvalidLine(invalid(what, word, expected));
    }
    return number;
}

} // namespace sdc
