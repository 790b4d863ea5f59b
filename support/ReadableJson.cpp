#include "support/ReadableJson.h"

#include "support/Text.h"

#include <algorithm>
#include <cstddef>
#include <string>

namespace support {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t lineWidth = 120;
constexpr std::size_t indentation = 2;

bool isStructured(const Json& value)
{
    return value.is_structured();
}

/// In UTF-8; what a terminal might obey makes a text one of ASCII alone.
std::string scalar(const Json& value)
{
    const std::string text = value.dump(-1, ' ', false, Json::error_handler_t::replace);
    const bool isHarmless = !value.is_string() || shown(text, text.size()) == text;
    return isHarmless ? text : value.dump(-1, ' ', true, Json::error_handler_t::replace);
}

/// On one line, with a blank after each comma and colon. Not for values that hold much.
std::string flat(const Json& value)
{
    std::string text;
    if (value.is_object()) {
        for (const auto& [key, member] : value.items()) {
            text += (text.empty() ? "" : ", ") + scalar(key) + ": " + flat(member);
        }
        return "{" + text + "}";
    }
    if (value.is_array()) {
        for (const Json& element : value) {
            text += (text.empty() ? "" : ", ") + flat(element);
        }
        return "[" + text + "]";
    }
    return scalar(value);
}

/// Whether a value is opened up within an object that holds it; few words in a list are not worth that.
bool opensObject(const Json& member)
{
    constexpr std::size_t fewWords = 4;
    return member.is_object()
        || (member.is_array() && (member.size() > fewWords || std::ranges::any_of(member, isStructured)));
}

/// Lists of lists, and objects that hold much, are opened up; so is what does not fit on a line.
bool fitsOnALine(const Json& value, std::size_t column)
{
    if (!value.is_structured() || value.empty()) {
        return true;
    }
    constexpr std::size_t mostMembers = 16;
    if (value.size() > mostMembers || std::ranges::any_of(value, value.is_object() ? opensObject : isStructured)) {
        return false;
    }
    return column + flat(value).size() <= lineWidth;
}

void write(std::ostream& stream, const Json& value, std::size_t depth, std::size_t column);

/// A list of numbers or texts, as many on each line as fit.
void writeFilled(std::ostream& stream, const Json& list, const std::string& indent)
{
    std::string line = indent;
    for (std::size_t index = 0; index < list.size(); ++index) {
        const std::string element = scalar(list[index]) + (index + 1 < list.size() ? "," : "");
        if (line.size() > indent.size() && line.size() + 1 + element.size() > lineWidth) {
            stream << line << '\n';
            line = indent;
        }
        line += (line.size() > indent.size() ? " " : "") + element;
    }
    stream << line << '\n';
}

void writeMembers(std::ostream& stream, const Json& value, std::size_t depth)
{
    const std::string indent(depth * indentation, ' ');
    std::size_t left = value.size();
    for (const auto& [key, member] : value.items()) {
        const std::string name = value.is_object() ? scalar(key) + ": " : std::string();
        stream << indent << name;
        write(stream, member, depth, indent.size() + name.size());
        stream << (--left == 0 ? "\n" : ",\n");
    }
}

void write(std::ostream& stream, const Json& value, std::size_t depth, std::size_t column)
{
    if (fitsOnALine(value, column)) {
        stream << flat(value);
        return;
    }
    const bool isFilled = value.is_array() && std::none_of(value.begin(), value.end(), isStructured);
    stream << (value.is_object() ? "{\n" : "[\n");
    if (isFilled) {
        writeFilled(stream, value, std::string((depth + 1) * indentation, ' '));
    } else {
        writeMembers(stream, value, depth + 1);
    }
    stream << std::string(depth * indentation, ' ') << (value.is_object() ? '}' : ']');
}

} // namespace

void writeReadably(std::ostream& stream, const Json& value)
{
    write(stream, value, 0, 0);
    stream << '\n';
}

} // namespace support
