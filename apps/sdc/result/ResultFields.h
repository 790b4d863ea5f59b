#pragma once

#include "support/Errors.h"
#include "support/Fields.h"
#include "support/ValueTypes.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>

namespace sdc {

// What stands in more than one record of a result.

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

// What a controller's reading can be.
inline constexpr double lowestLevel_dBm = std::numeric_limits<std::int32_t>::min() / 100.0;
inline constexpr double highestLevel_dBm = std::numeric_limits<std::int32_t>::max() / 100.0;
inline constexpr std::size_t mostItems = 10'000'000; // more than a file can have

inline const auto word = support::integer(0, std::numeric_limits<std::uint32_t>::max());
inline const auto word64 = support::integer(0, std::numeric_limits<std::int64_t>::max());
inline const auto count =
    support::integer(std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max());
inline constexpr HundredthsSpec level{lowestLevel_dBm, highestLevel_dBm};
inline const auto text = support::text();
inline const auto moment = support::moment();

} // namespace sdc
