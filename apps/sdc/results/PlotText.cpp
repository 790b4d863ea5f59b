#include "apps/sdc/results/PlotText.h"

#include <cstdlib>

namespace sdc {

namespace {

/// The length of the well-formed character that a text begins with; 0 when it does not begin with one.
std::size_t characterLength(std::string_view text)
{
    const auto byte = [text](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    const unsigned char lead = byte(0);
    const std::size_t length = lead < 0x80 ? 1 : lead >= 0xC2 && lead < 0xE0 ? 2 : lead >= 0xE0 && lead < 0xF0 ? 3 : 4;
    if ((lead >= 0x80 && lead < 0xC2) || lead > 0xF4 || length > text.size()) {
        return 0;
    }
    for (std::size_t index = 1; index < length; ++index) {
        if ((byte(index) & 0xC0) != 0x80) {
            return 0;
        }
    }
    // Longer than need be, half of a pair, or beyond the last character.
    const bool isOdd = length > 1
        && ((lead == 0xE0 && byte(1) < 0xA0) || (lead == 0xED && byte(1) > 0x9F) || (lead == 0xF0 && byte(1) < 0x90)
            || (lead == 0xF4 && byte(1) > 0x8F));
    return isOdd ? 0 : length;
}

/// The control characters of the second half of the code are two bytes.
bool isControl(std::string_view character)
{
    const auto first = static_cast<unsigned char>(character[0]);
    return first < 0x20 || first == 0x7F || (first == 0xC2 && static_cast<unsigned char>(character[1]) < 0xA0);
}

} // namespace

std::string plottable(std::string_view text, std::size_t most)
{
    std::string plottable;
    for (std::size_t count = 0; !text.empty(); ++count) {
        if (count == most) {
            return plottable + "...";
        }
        const std::size_t length = characterLength(text);
        const std::string_view character = text.substr(0, length == 0 ? 1 : length);
        plottable += length == 0 || isControl(character) ? "?" : character;
        text.remove_prefix(character.size());
    }
    return plottable;
}

std::string quoted(const std::string& text)
{
    std::string quoted = "\"";
    for (const char one : text) {
        if (std::string_view("\"'`\\@").find(one) == std::string_view::npos) {
            quoted += one;
        } else { // as an octal number
            const auto code = static_cast<unsigned char>(one);
            quoted += "\\" + std::to_string(code / 64) + std::to_string(code / 8 % 8) + std::to_string(code % 8);
        }
    }
    return quoted + "\"";
}

FrequencyAxis::FrequencyAxis(std::uint32_t highest_kHz)
    : m_decimals(highest_kHz < 10'000'000 ? 3 : 6)
{
}

int FrequencyAxis::decimalsFor(std::int64_t frequency_kHz) const
{
    int decimals = m_decimals;
    for (; decimals > 0 && frequency_kHz % 10 == 0; --decimals) {
        frequency_kHz /= 10;
    }
    return decimals;
}

std::string FrequencyAxis::text(std::int64_t frequency_kHz, int decimals) const
{
    const std::int64_t unit_kHz = m_decimals == 3 ? 1000 : 1'000'000;
    const std::int64_t magnitude = std::llabs(frequency_kHz);
    const std::string fraction =
        std::to_string(unit_kHz + magnitude % unit_kHz).substr(1, static_cast<std::size_t>(decimals));
    return (frequency_kHz < 0 ? "-" : "") + std::to_string(magnitude / unit_kHz) + (decimals == 0 ? "" : ".") + fraction;
}

} // namespace sdc
