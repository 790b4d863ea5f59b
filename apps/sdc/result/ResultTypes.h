#pragma once

#include "apps/sdc/result/ScanResult.h"
#include "support/Fields.h"
#include "support/Time.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <memory>
#include <optional>
#include <string>
#include <variant>

// Values that stand in results alone.

namespace sdc {

/// A number of at most two decimals, which the program counts in hundredths.
template <typename Value>
class HundredthsType final : public support::SimpleType<Value> {
public:
    HundredthsType(double lowest, double highest)
        : m_number(lowest, highest, "")
    {
    }
    std::string expected() const override { return m_number.expected() + " with at most two decimals"; }
    void describe(support::Json& schema, support::Json& definitions) const override
    {
        m_number.describe(schema, definitions);
    }

protected:
    std::optional<Value> valueIn(const support::Scalar& scalar) const override
    {
        constexpr double tolerance = 1e-4; // more than a number of two decimals is off as a binary fraction
        double number = 0.0;
        if (!m_number.read(scalar, &number) || std::abs(number * 100.0 - std::round(number * 100.0)) >= tolerance) {
            return std::nullopt;
        }
        return static_cast<Value>(std::llround(number * 100.0));
    }
    support::Scalar scalarOf(const Value& value) const override { return static_cast<double>(value) / 100.0; }
    bool accepts(const Value&) const override { return true; }
    std::string textOf(const Value& value) const override { return support::numberText(static_cast<double>(value) / 100.0); }

private:
    support::NumberType m_number;
};

struct HundredthsSpec {
    double lowest;
    double highest;

    template <typename Value>
    support::TypePointer typeFor() const
    {
        return std::make_shared<HundredthsType<Value>>(lowest, highest);
    }
};

/// A moment, as rfc3339 writes it.
class MomentType final : public support::SimpleType<TimePoint> {
public:
    std::string expected() const override { return "a moment in UTC such as 2026-01-02T03:04:05.678Z"; }
    void describe(support::Json& schema, support::Json&) const override
    {
        schema = {{"type", "string"}, {"format", "date-time"}};
    }

protected:
    std::optional<TimePoint> valueIn(const support::Scalar& scalar) const override
    {
        const auto* const text = std::get_if<std::string>(&scalar);
        return text == nullptr ? std::nullopt : support::parseRfc3339(*text);
    }
    support::Scalar scalarOf(const TimePoint& value) const override { return support::rfc3339(value); }
    bool accepts(const TimePoint&) const override { return true; }
    std::string textOf(const TimePoint& value) const override { return support::inQuotes(support::rfc3339(value)); }
};

/// Any text, of several lines, too.
class TextType final : public support::SimpleType<std::string> {
public:
    std::string expected() const override { return "a text"; }
    void describe(support::Json& schema, support::Json&) const override { schema["type"] = "string"; }

protected:
    std::optional<std::string> valueIn(const support::Scalar& scalar) const override
    {
        const auto* const text = std::get_if<std::string>(&scalar);
        return text == nullptr ? std::nullopt : std::optional(*text);
    }
    support::Scalar scalarOf(const std::string& value) const override { return value; }
    bool accepts(const std::string&) const override { return true; }
    std::string textOf(const std::string& value) const override { return support::inQuotes(value); }
};

template <typename Type>
struct TypeSpec {
    template <typename Value>
    support::TypePointer typeFor() const
    {
        return std::make_shared<Type>();
    }
};

} // namespace sdc
