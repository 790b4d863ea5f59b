#pragma once

#include <nlohmann/json.hpp>

#include <stdexcept>
#include <string>
#include <string_view>

namespace simulator {

/// A text that is no JSON. what() begins with the place, "line 3, column 5: " or a JSON path.
class JsonTextError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What a JSON text consists of, piece by piece; derive from it what takes the pieces.
class JsonEvents : public nlohmann::json_sax<nlohmann::json> {
public:
    explicit JsonEvents(std::string_view text)
        : m_text(text)
    {
    }

    /// Reads the text, in UTF-8, in which comments may stand. A piece that returns false ends the reading.
    /// @throws JsonTextError  also for an empty text; what takes the pieces may throw, too
    void read();

    bool binary(nlohmann::json::binary_t&) override { return false; }
    bool parse_error(std::size_t position, const std::string&, const nlohmann::detail::exception& error) override;

private:
    std::string_view m_text;
};

/// Reads a JSON text, in UTF-8, in which comments may stand.
/// @throws JsonTextError  also for an empty text, a key that stands twice in an object, and more than 64 levels
nlohmann::json parseJsonText(std::string_view text);

/// Continues a JSON path: `$.channels` and `unit_type` make `$.channels.unit_type`, odd keys stand in brackets and quotes.
std::string memberPath(const std::string& path, const std::string& key);
std::string elementPath(const std::string& path, std::size_t index);

/// A value as messages show it: numbers and texts as they stand but not at any length, "an object", "a list".
std::string shown(const nlohmann::json& value);

} // namespace simulator
