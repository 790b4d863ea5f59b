#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace support {

/// What is wrong with an input, each error a line. Who has been told the first few looks for no more.
class Errors {
public:
    static constexpr std::size_t most = 10;

    void add(std::string error) { m_errors.push_back(std::move(error)); }

    /// Whether there are more than are told.
    bool isFull() const { return m_errors.size() > most; }
    bool areNone() const { return m_errors.empty(); }
    std::string text() const; ///< all, each on a line
    std::size_t count() const { return m_errors.size(); }

    /// All on a line that begins with the name of the file, as shown() has it; or the first few and that there are more.
    std::string listed(std::string_view file) const;

private:
    std::vector<std::string> m_errors;
};

/// Continues a JSON path: `$.channels` and `unit_type` make `$.channels.unit_type`, odd keys stand in brackets and quotes.
std::string memberPath(const std::string& path, std::string_view key);
std::string elementPath(const std::string& path, std::size_t index);

/// A text out of an input as messages show a value: in quotes, shortened.
std::string inQuotes(std::string_view foreign);

/// A number as messages, schemas and documents have it: in full, and alike whatever the global locale says.
std::string numberText(double value);

/// What a size must be: "1 to 20", "20", "at most 20".
std::string sizeText(std::size_t least, std::size_t most);

/// "a", "a or b", "a, b or c".
std::string joined(const std::vector<std::string>& items, std::string_view last = " or ", std::string_view others = ", ");

} // namespace support
