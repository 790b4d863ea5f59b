#pragma once

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// The form of JSON texts: one table per object of its keys, what their values are, and which members of a record hold them.
// Reading, writing, what is said of a wrong value, and the JSON Schema follow from it.

namespace sdc {

using Json = nlohmann::ordered_json;

struct Field;

/// What a value is. The values that it reads and writes are of one type of C++, handed over by address.
class Kind {
public:
    Kind() = default;
    virtual ~Kind() = default;
    Kind(const Kind&) = delete;
    Kind& operator=(const Kind&) = delete;

    /// What would be right, for people: "an integer from 0 to 20".
    virtual std::string expected() const = 0;
    virtual Json schema() const = 0;
    virtual Json write(const void* value) const = 0;

    /// Reads a value that is neither an object nor a list. Returns false when it is not as expected.
    virtual bool read(const nlohmann::json&, void*) const { return false; }
    /// Of an object, its table; empty of all others.
    virtual std::span<const Field> fields() const { return {}; }
    /// Of a list, what its items are, a new item at its end, and how many it has at least.
    virtual const Kind* items() const { return nullptr; }
    virtual void* append(void*) const { return nullptr; }
    virtual std::size_t least() const { return 0; }
};

/// One key of an object.
struct Field {
    std::string_view key;
    const Kind& kind;
    std::string_view description;
    bool isRequired;
    std::function<void*(void* record)> into;             ///< where its value goes
    std::function<const void*(const void* record)> from; ///< null: the key is left out
};

namespace detail {

template <typename Member>
void* into(Member& member)
{
    return &member;
}

template <typename Value>
void* into(std::optional<Value>& member)
{
    return &member.emplace();
}

template <typename Member>
const void* ifAny(const Member& member)
{
    return member.empty() ? nullptr : &member;
}

template <typename Value>
const void* ifAny(const std::optional<Value>& member)
{
    return member ? &*member : nullptr;
}

} // namespace detail

/// A key that every object has.
template <typename Record, typename Base, typename Member>
Field required(std::string_view key, Member Base::*member, const Kind& kind, std::string_view description)
{
    return {key, kind, description, true,
        [member](void* record) { return detail::into(static_cast<Record*>(record)->*member); },
        [member](const void* record) -> const void* { return &(static_cast<const Record*>(record)->*member); }};
}

/// A key that is left out where the member is empty.
template <typename Record, typename Base, typename Member>
Field optional(std::string_view key, Member Base::*member, const Kind& kind, std::string_view description)
{
    return {key, kind, description, false,
        [member](void* record) { return detail::into(static_cast<Record*>(record)->*member); },
        [member](const void* record) { return detail::ifAny(static_cast<const Record*>(record)->*member); }};
}

/// An object, by its table.
class ObjectKind : public Kind {
public:
    explicit ObjectKind(std::vector<Field> fields)
        : m_fields(std::move(fields))
    {
    }

    std::string expected() const override { return "an object"; }
    Json schema() const override;
    Json write(const void* record) const override;
    std::span<const Field> fields() const override { return m_fields; }

private:
    std::vector<Field> m_fields;
};

/// A list of so many items at least, in a vector.
template <typename Item>
class ListKind : public Kind {
public:
    explicit ListKind(const Kind& items, std::size_t least = 0)
        : m_items(items)
        , m_least(least)
    {
    }

    std::string expected() const override
    {
        return m_least == 0 ? "a list" : "a list of at least " + std::to_string(m_least) + " items";
    }
    Json schema() const override
    {
        Json schema{{"type", "array"}};
        if (m_least > 0) {
            schema["minItems"] = m_least;
        }
        schema["items"] = m_items.schema();
        return schema;
    }
    Json write(const void* list) const override
    {
        Json json = Json::array();
        for (const Item& item : *static_cast<const std::vector<Item>*>(list)) {
            json.push_back(m_items.write(&item));
        }
        return json;
    }
    const Kind* items() const override { return &m_items; }
    void* append(void* list) const override { return &static_cast<std::vector<Item>*>(list)->emplace_back(); }
    std::size_t least() const override { return m_least; }

private:
    const Kind& m_items;
    std::size_t m_least;
};

/// A number in a range.
class Range {
public:
    Range(double lowest, double highest)
        : m_lowest(lowest)
        , m_highest(highest)
    {
    }

    bool contains(double value) const { return value >= m_lowest && value <= m_highest; }
    /// "an integer from 0 to 20", "an integer of at least 0", or the only number.
    std::string expected(const std::string& what) const;
    /// With what JSON Schema calls the bounds.
    Json schema(const char* type) const;

private:
    double m_lowest;
    double m_highest;
};

inline constexpr double unbounded = std::numeric_limits<double>::infinity();

template <typename Integer>
class IntegerKind : public Kind {
public:
    explicit IntegerKind(Range range = {std::numeric_limits<Integer>::min(), std::numeric_limits<Integer>::max()})
        : m_range(range)
    {
    }

    std::string expected() const override { return m_range.expected("an integer"); }
    Json schema() const override { return m_range.schema("integer"); }
    Json write(const void* value) const override { return *static_cast<const Integer*>(value); }
    bool read(const nlohmann::json& json, void* value) const override
    {
        const bool isExpected = json.is_number_integer() && m_range.contains(json.get<double>());
        *static_cast<Integer*>(value) = isExpected ? json.get<Integer>() : Integer{};
        return isExpected;
    }

private:
    Range m_range;
};

class NumberKind : public Kind {
public:
    explicit NumberKind(Range range)
        : m_range(range)
    {
    }

    std::string expected() const override { return m_range.expected("a number"); }
    Json schema() const override { return m_range.schema("number"); }
    Json write(const void* value) const override { return *static_cast<const double*>(value); }
    bool read(const nlohmann::json& json, void* value) const override;

private:
    Range m_range;
};

/// A number of at most two decimals, which the program counts in hundredths.
template <typename Integer>
class HundredthsKind : public Kind {
public:
    explicit HundredthsKind(Range range)
        : m_range(range)
    {
    }

    std::string expected() const override { return m_range.expected("a number") + " with at most two decimals"; }
    Json schema() const override { return m_range.schema("number"); }
    Json write(const void* value) const override { return static_cast<double>(*static_cast<const Integer*>(value)) / 100.0; }
    bool read(const nlohmann::json& json, void* value) const override
    {
        constexpr double tolerance = 1e-4; // more than a number of two decimals is off as a binary fraction
        if (!json.is_number() || !m_range.contains(json.get<double>())) {
            return false;
        }
        const double hundredths = json.get<double>() * 100.0;
        *static_cast<Integer*>(value) = static_cast<Integer>(std::llround(hundredths));
        return std::abs(hundredths - std::round(hundredths)) < tolerance;
    }

private:
    Range m_range;
};

/// A text that has so many bytes at least.
class TextKind : public Kind {
public:
    explicit TextKind(std::size_t least = 0)
        : m_least(least)
    {
    }

    std::string expected() const override;
    Json schema() const override;
    Json write(const void* value) const override { return *static_cast<const std::string*>(value); }
    bool read(const nlohmann::json& json, void* value) const override;

private:
    std::size_t m_least;
};

/// One of a few words, each of which stands for a value of an enumeration: the first for 0.
template <typename Value>
class WordKind : public Kind {
public:
    explicit WordKind(std::span<const std::string_view> words)
        : m_words(words)
    {
    }

    std::string expected() const override
    {
        std::string text;
        for (const std::string_view word : m_words) {
            text += (text.empty() ? "\"" : " or \"") + std::string(word) + "\"";
        }
        return text;
    }
    Json schema() const override { return {{"enum", m_words}}; }
    Json write(const void* value) const override
    {
        return m_words[static_cast<std::size_t>(*static_cast<const Value*>(value))];
    }
    bool read(const nlohmann::json& json, void* value) const override
    {
        const auto word = json.is_string() ? std::ranges::find(m_words, json.get_ref<const std::string&>()) : m_words.end();
        *static_cast<Value*>(value) = static_cast<Value>(word == m_words.end() ? 0 : word - m_words.begin());
        return word != m_words.end();
    }

private:
    std::span<const std::string_view> m_words;
};

/// Reads a JSON text into a record; comments may stand in it. It is left at the first few errors, so that no text costs more
/// than a right one.
/// @return what is wrong, one line each, which begins with the place; empty when all is right
std::vector<std::string> readJson(std::string_view text, const Kind& kind, void* record);

/// The errors after which reading is left.
inline constexpr std::size_t mostErrors = 10;

} // namespace sdc
