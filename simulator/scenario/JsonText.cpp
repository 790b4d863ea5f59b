#include "simulator/scenario/JsonText.h"

#include "support/Text.h"

#include <algorithm>
#include <cctype>
#include <limits>
#include <vector>

namespace simulator {

namespace {

using nlohmann::json;

constexpr std::size_t longestShown = 60;

/// "line 3, column 5: ", for the character at an offset; the first of each is 1.
std::string placeOf(std::string_view text, std::size_t offset)
{
    const std::string_view before = text.substr(0, std::min(offset, text.size()));
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const std::size_t lineStart = before.rfind('\n') == std::string_view::npos ? 0 : before.rfind('\n') + 1;
    return "line " + std::to_string(line) + ", column " + std::to_string(before.size() - lineStart + 1) + ": ";
}

/// The parser's own words without what stands before them: its name, and its way to tell a place.
std::string reasonIn(const std::string& message)
{
    constexpr std::string_view placeEnd = ": ";
    std::size_t begin = message.find("] ");
    begin = begin == std::string::npos ? 0 : begin + 2;
    if (message.compare(begin, 14, "parse error at") == 0 || message.compare(begin, 11, "parse error") == 0) {
        const std::size_t end = message.find(placeEnd, begin);
        begin = end == std::string::npos ? begin : end + placeEnd.size();
    }
    return support::shown(message.substr(begin));
}

/// Builds the value while the text is read, so that keys that stand twice and deep nesting are found at their place.
class Builder : public JsonEvents {
public:
    using JsonEvents::JsonEvents;

    json take() { return std::move(m_root); }

    bool null() override { return add(nullptr); }
    bool boolean(bool value) override { return add(value); }
    bool number_integer(json::number_integer_t value) override { return add(value); }
    bool number_unsigned(json::number_unsigned_t value) override
    {
        // Who reads a value may take it for a signed one: beyond that range only a floating-point number keeps its size.
        constexpr auto largest = static_cast<json::number_unsigned_t>(std::numeric_limits<json::number_integer_t>::max());
        return value > largest ? add(static_cast<double>(value)) : add(value);
    }
    bool number_float(json::number_float_t value, const std::string&) override { return add(value); }
    bool string(std::string& value) override { return add(std::move(value)); }

    bool start_object(std::size_t) override { return open(json::object()); }
    bool start_array(std::size_t) override { return open(json::array()); }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }

    bool key(std::string& name) override
    {
        if (m_open.back()->contains(name)) {
            throw JsonTextError(memberPath(path(), name) + ": stands twice; keep one");
        }
        m_keys.back() = name;
        return true;
    }

private:
    json& place(json&& value)
    {
        if (m_open.empty()) {
            return m_root = std::move(value);
        }
        if (m_open.back()->is_array()) {
            return m_open.back()->emplace_back(std::move(value));
        }
        return (*m_open.back())[m_keys.back()] = std::move(value);
    }

    bool add(json&& value)
    {
        place(std::move(value));
        return true;
    }

    bool open(json&& value)
    {
        constexpr std::size_t deepest = 64;
        if (m_open.size() == deepest) {
            throw JsonTextError(path() + ": is nested too deeply; at most 64 levels");
        }
        m_open.push_back(&place(std::move(value)));
        m_keys.emplace_back();
        return true;
    }

    bool close()
    {
        m_open.pop_back();
        m_keys.pop_back();
        return true;
    }

    /// Of the innermost open object or list.
    std::string path() const
    {
        std::string path = "$";
        for (std::size_t level = 0; level + 1 < m_open.size(); ++level) {
            const json& parent = *m_open[level];
            path = parent.is_array() ? elementPath(path, parent.size() - 1) : memberPath(path, m_keys[level]);
        }
        return path;
    }

    json m_root;
    std::vector<json*> m_open;       ///< from the outermost to the innermost; only the innermost one grows
    std::vector<std::string> m_keys; ///< of each of them, the key that is being filled
};

} // namespace

bool JsonEvents::parse_error(std::size_t position, const std::string&, const nlohmann::detail::exception& error)
{
    throw JsonTextError(placeOf(m_text, position == 0 ? 0 : position - 1) + reasonIn(error.what()));
}

void JsonEvents::read()
{
    const std::size_t nul = m_text.find('\0');
    if (nul != std::string_view::npos) {
        throw JsonTextError(placeOf(m_text, nul) + "a NUL byte; must be text in UTF-8");
    }
    if (std::all_of(m_text.begin(), m_text.end(), [](unsigned char one) { return std::isspace(one) != 0; })) {
        throw JsonTextError(placeOf(m_text, 0) + "there is nothing; must be a JSON object");
    }
    constexpr bool wholeText = true;
    constexpr bool withComments = true;
    json::sax_parse(m_text.begin(), m_text.end(), this, json::input_format_t::json, wholeText, withComments);
}

json parseJsonText(std::string_view text)
{
    Builder builder(text);
    builder.read();
    return builder.take();
}

std::string memberPath(const std::string& path, const std::string& key)
{
    const auto plain = [](unsigned char one) { return one == '_' || one == '$' || std::isalnum(one) != 0; };
    if (!key.empty() && key.size() <= longestShown && std::all_of(key.begin(), key.end(), plain)) {
        return path + "." + key;
    }
    return path + "[" + shown(key) + "]";
}

std::string elementPath(const std::string& path, std::size_t index)
{
    return path + "[" + std::to_string(index) + "]";
}

std::string shown(const json& value)
{
    if (value.is_object()) {
        return "an object";
    }
    if (value.is_array()) {
        return "a list";
    }
    return value.is_string() ? '"' + support::shown(value.get_ref<const std::string&>(), longestShown) + '"' : value.dump();
}

} // namespace simulator
