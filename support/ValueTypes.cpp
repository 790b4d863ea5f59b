#include "support/ValueTypes.h"

#include "support/Errors.h"
#include "support/Fields.h"
#include "support/Text.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace support {

namespace {

std::string withUnit(const std::string& unit)
{
    return unit.empty() ? unit : " " + unit;
}

/// Characters, and not bytes, of a text in UTF-8.
std::size_t charactersIn(std::string_view text)
{
    return static_cast<std::size_t>(std::ranges::count_if(text, [](unsigned char byte) { return (byte & 0xC0U) != 0x80U; }));
}

} // namespace

NumberType::NumberType(double lowest, double highest, std::string unit)
    : m_lowest(lowest)
    , m_highest(highest)
    , m_unit(std::move(unit))
{
}

std::string NumberType::expected() const
{
    return "a number from " + numberText(m_lowest) + " to " + numberText(m_highest) + withUnit(m_unit);
}

std::optional<double> NumberType::valueIn(const Scalar& scalar) const
{
    if (const auto* const integer = std::get_if<std::int64_t>(&scalar)) {
        return static_cast<double>(*integer);
    }
    const auto* const value = std::get_if<double>(&scalar);
    return value != nullptr ? std::optional(*value) : std::nullopt;
}

std::string NumberType::textOf(const double& value) const
{
    return numberText(value) + withUnit(m_unit);
}

std::string IntegerLimits::expected() const
{
    const std::string number = lowest == highest
        ? std::to_string(lowest)
        : "an integer from " + std::to_string(lowest) + " to " + std::to_string(highest);
    return number + withUnit(unit) + (word.empty() ? "" : " or " + inQuotes(word));
}

std::string expectedFlag()
{
    return "true or false";
}

LineType::LineType(std::size_t least, std::size_t most)
    : m_least(least)
    , m_most(most)
{
}

std::string LineType::expected() const
{
    return "a line of " + sizeText(m_least, m_most) + " characters";
}

std::optional<std::string> LineType::valueIn(const Scalar& scalar) const
{
    const auto* const text = std::get_if<std::string>(&scalar);
    return text != nullptr ? std::optional(*text) : std::nullopt;
}

bool LineType::accepts(const std::string& value) const
{
    const std::size_t characters = charactersIn(value);
    return m_least <= characters && characters <= m_most && support::shown(value, std::string::npos) == value;
}

std::optional<std::string> TextType::valueIn(const Scalar& scalar) const
{
    const auto* const text = std::get_if<std::string>(&scalar);
    return text == nullptr ? std::nullopt : std::optional(*text);
}

std::optional<TimePoint> MomentType::valueIn(const Scalar& scalar) const
{
    const auto* const text = std::get_if<std::string>(&scalar);
    return text == nullptr ? std::nullopt : parseRfc3339(*text);
}

std::string expectedChoice(std::span<const std::string_view> names)
{
    std::vector<std::string> each;
    std::ranges::transform(names, std::back_inserter(each), inQuotes);
    return joined(each);
}

std::optional<std::size_t> indexOf(const Scalar& scalar, std::span<const std::string_view> names)
{
    const auto* const name = std::get_if<std::string>(&scalar);
    const auto found = name != nullptr ? std::ranges::find(names, *name) : names.end();
    return found == names.end() ? std::nullopt : std::optional(static_cast<std::size_t>(found - names.begin()));
}

} // namespace support
