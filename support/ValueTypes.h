#pragma once

// IWYU pragma: private, include "support/Fields.h"

#include "support/Errors.h"
#include "support/Time.h"
#include "support/Type.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

// What may stand in a field: numbers, integers, flags, lines, texts, moments, choices and lists.

namespace support {

template <typename Value>
class SimpleType : public Type {
public:
    bool read(const Scalar& scalar, void* into) const final
    {
        const std::optional<Value> value = valueIn(scalar);
        if (!value || !isRight(&*value)) {
            return false;
        }
        if (into != nullptr) {
            *static_cast<Value*>(into) = *value;
        }
        return true;
    }
    Scalar scalar(const void* value) const final { return scalarOf(*static_cast<const Value*>(value)); }
    bool isRight(const void* value) const final { return accepts(*static_cast<const Value*>(value)); }
    std::string shown(const void* value) const final { return textOf(*static_cast<const Value*>(value)); }

protected:
    virtual std::optional<Value> valueIn(const Scalar& scalar) const = 0;
    virtual Scalar scalarOf(const Value& value) const = 0;
    virtual bool accepts(const Value& value) const = 0;
    virtual std::string textOf(const Value& value) const = 0;
};

class NumberType final : public SimpleType<double> {
public:
    NumberType(double lowest, double highest, std::string unit);
    std::string expected() const override;
    void describe(Json& schema, Json& definitions) const override;

protected:
    std::optional<double> valueIn(const Scalar& scalar) const override;
    Scalar scalarOf(const double& value) const override { return value; }
    bool accepts(const double& value) const override { return m_lowest <= value && value <= m_highest; }
    std::string textOf(const double& value) const override;

private:
    double m_lowest;
    double m_highest;
    std::string m_unit;
};

/// Limits of an integer, and a word that stands for a number of its own.
struct IntegerLimits {
    std::int64_t lowest;
    std::int64_t highest;
    std::string unit;
    std::string word{}; ///< none when empty
    std::uint64_t wordsValue = 0;

    std::string expected() const;
    void describe(Json& schema) const;
};

template <typename Value> // an integer, or an enumeration without enumerators
class IntegerType final : public SimpleType<Value> {
public:
    explicit IntegerType(IntegerLimits limits)
        : m_limits(std::move(limits))
    {
    }
    std::string expected() const override { return m_limits.expected(); }
    void describe(Json& schema, Json&) const override { m_limits.describe(schema); }

protected:
    std::optional<Value> valueIn(const Scalar& scalar) const override
    {
        const auto* const word = std::get_if<std::string>(&scalar);
        if (word != nullptr && !m_limits.word.empty() && *word == m_limits.word) {
            return static_cast<Value>(m_limits.wordsValue);
        }
        const auto* const number = std::get_if<std::int64_t>(&scalar);
        return number != nullptr && std::in_range<Number>(*number) ? std::optional(static_cast<Value>(*number))
                                                                   : std::nullopt;
    }
    Scalar scalarOf(const Value& value) const override
    {
        const auto number = static_cast<Number>(value);
        return isWord(number) ? Scalar(m_limits.word) : Scalar(static_cast<std::int64_t>(number));
    }
    bool accepts(const Value& value) const override
    {
        const auto number = static_cast<Number>(value);
        return isWord(number)
            || (std::cmp_less_equal(m_limits.lowest, number) && std::cmp_less_equal(number, m_limits.highest));
    }
    std::string textOf(const Value& value) const override
    {
        const auto number = static_cast<Number>(value);
        return isWord(number) ? inQuotes(m_limits.word) : std::to_string(number);
    }

private:
    struct Same {
        using type = Value;
    };
    using Number = typename std::conditional_t<std::is_enum_v<Value>, std::underlying_type<Value>, Same>::type;

    bool isWord(Number number) const { return !m_limits.word.empty() && std::cmp_equal(number, m_limits.wordsValue); }

    IntegerLimits m_limits;
};

std::string expectedFlag();
void describeFlag(Json& schema);

template <typename Value> // bool, or a byte in which every number but 0 is true
class FlagType final : public SimpleType<Value> {
public:
    std::string expected() const override { return expectedFlag(); }
    void describe(Json& schema, Json&) const override { describeFlag(schema); }

protected:
    std::optional<Value> valueIn(const Scalar& scalar) const override
    {
        const bool* const flag = std::get_if<bool>(&scalar);
        return flag != nullptr ? std::optional(static_cast<Value>(*flag ? 1 : 0)) : std::nullopt;
    }
    Scalar scalarOf(const Value& value) const override { return value != Value{}; }
    bool accepts(const Value&) const override { return true; }
    std::string textOf(const Value& value) const override { return value != Value{} ? "true" : "false"; }
};

/// One line: no character in it moves what stands beside it.
class LineType final : public SimpleType<std::string> {
public:
    LineType(std::size_t least, std::size_t most);
    std::string expected() const override;
    void describe(Json& schema, Json& definitions) const override;

protected:
    std::optional<std::string> valueIn(const Scalar& scalar) const override;
    Scalar scalarOf(const std::string& value) const override { return value; }
    bool accepts(const std::string& value) const override;
    std::string textOf(const std::string& value) const override { return inQuotes(value); }

private:
    std::size_t m_least;
    std::size_t m_most;
};

/// Any text, of several lines, too.
class TextType final : public SimpleType<std::string> {
public:
    std::string expected() const override { return "a text"; }
    void describe(Json& schema, Json& definitions) const override;

protected:
    std::optional<std::string> valueIn(const Scalar& scalar) const override;
    Scalar scalarOf(const std::string& value) const override { return value; }
    bool accepts(const std::string&) const override { return true; }
    std::string textOf(const std::string& value) const override { return inQuotes(value); }
};

/// A moment, as rfc3339 writes it.
class MomentType final : public SimpleType<TimePoint> {
public:
    std::string expected() const override { return "a moment in UTC such as 2026-01-02T03:04:05.678Z"; }
    void describe(Json& schema, Json& definitions) const override;

protected:
    std::optional<TimePoint> valueIn(const Scalar& scalar) const override;
    Scalar scalarOf(const TimePoint& value) const override { return rfc3339(value); }
    bool accepts(const TimePoint&) const override { return true; }
    std::string textOf(const TimePoint& value) const override { return inQuotes(rfc3339(value)); }
};

std::string expectedChoice(std::span<const std::string_view> names);
void describeChoice(Json& schema, std::span<const std::string_view> names);
std::optional<std::size_t> indexOf(const Scalar& scalar, std::span<const std::string_view> names);

/// Enumerators by their names, which stand in the same order.
template <typename Enumeration>
class ChoiceType final : public SimpleType<Enumeration> {
public:
    explicit ChoiceType(std::span<const std::string_view> names)
        : m_names(names)
    {
    }
    std::string expected() const override { return expectedChoice(m_names); }
    void describe(Json& schema, Json&) const override { describeChoice(schema, m_names); }

protected:
    std::optional<Enumeration> valueIn(const Scalar& scalar) const override
    {
        const auto index = indexOf(scalar, m_names);
        return index ? std::optional(static_cast<Enumeration>(*index)) : std::nullopt;
    }
    Scalar scalarOf(const Enumeration& value) const override
    {
        return std::string(m_names[static_cast<std::size_t>(value)]);
    }
    bool accepts(const Enumeration& value) const override { return static_cast<std::size_t>(value) < m_names.size(); }
    std::string textOf(const Enumeration& value) const override
    {
        return accepts(value) ? inQuotes(m_names[static_cast<std::size_t>(value)]) : "unknown";
    }

private:
    std::span<const std::string_view> m_names;
};

template <typename List>
class ListOf final : public ListType {
public:
    using ListType::ListType;
    void* add(void* list) const override { return &static_cast<List*>(list)->emplace_back(); }
    std::size_t size(const void* list) const override { return static_cast<const List*>(list)->size(); }
    const void* at(const void* list, std::size_t index) const override { return &(*static_cast<const List*>(list))[index]; }
};

} // namespace support
