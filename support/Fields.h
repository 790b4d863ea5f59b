#pragma once

#include "support/Errors.h"
#include "support/Type.h"       // IWYU pragma: export
#include "support/ValueTypes.h" // IWYU pragma: export

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

// Records whose fields are told once, in a table. From it follow the reader of JSON text (readJson), the check of a record
// that a program has made (checkRecord), all messages, the JSON Schema and the tables of documents.
//
//     const Record<Drift>& driftRecord()
//     {
//         static const Record<Drift> record{"drift", "a swing to and fro, as a sine",
//             {
//                 {"reach_kHz", &Drift::reach_kHz, number(0, 10000000, "kHz"), "farthest from its frequency"},
//                 {"period_ms", &Drift::period_ms, number(0.001, 1000, "ms"), "of one swing there and back"},
//             }};
//         return record;
//     }

namespace support {

template <typename Owner>
class Record;

// How a table says what a field holds: each makes a type for the C++ type of the member.

struct NumberSpec {
    double lowest;
    double highest;
    std::string unit;

    template <typename Value>
    TypePointer typeFor() const
    {
        static_assert(std::is_same_v<Value, double>);
        return std::make_shared<NumberType>(lowest, highest, unit);
    }
};

struct IntegerSpec {
    IntegerLimits limits;

    /// A word that stands for a number beyond the limits.
    IntegerSpec orWord(std::string word, std::uint64_t value) const
    {
        IntegerSpec with = *this;
        with.limits.word = std::move(word);
        with.limits.wordsValue = value;
        return with;
    }

    template <typename Value>
    TypePointer typeFor() const
    {
        return std::make_shared<IntegerType<Value>>(limits);
    }
};

struct FlagSpec {
    template <typename Value>
    TypePointer typeFor() const
    {
        return std::make_shared<FlagType<Value>>();
    }
};

struct LineSpec {
    std::size_t least;
    std::size_t most;

    template <typename Value>
    TypePointer typeFor() const
    {
        static_assert(std::is_same_v<Value, std::string>);
        return std::make_shared<LineType>(least, most);
    }
};

template <typename Type> // one that has nothing to choose
struct TypeSpec {
    template <typename Value>
    TypePointer typeFor() const
    {
        return std::make_shared<Type>();
    }
};

struct ChoiceSpec {
    std::span<const std::string_view> names;

    template <typename Value>
    TypePointer typeFor() const
    {
        return std::make_shared<ChoiceType<Value>>(names);
    }
};

template <typename ItemSpec> // or a record
struct ListSpec {
    const ItemSpec& item; ///< until the table is made
    std::string sentence;
    std::size_t least;
    std::size_t most;

    template <typename Value>
    TypePointer typeFor() const
    {
        using Item = typename Value::value_type;
        return std::make_shared<ListOf<Value>>(item.template typeFor<Item>(), sentence, least, most);
    }
};

inline NumberSpec number(double lowest, double highest, std::string unit = {})
{
    return {lowest, highest, std::move(unit)};
}
inline IntegerSpec integer(std::int64_t lowest, std::int64_t highest, std::string unit = {})
{
    return {{lowest, highest, std::move(unit)}};
}
inline FlagSpec flag()
{
    return {};
}
inline TypeSpec<TextType> text()
{
    return {};
}
inline TypeSpec<MomentType> moment()
{
    return {};
}
inline LineSpec line(std::size_t least, std::size_t most)
{
    return {least, most};
}
inline ChoiceSpec choice(std::span<const std::string_view> names)
{
    return {names};
}
template <typename ItemSpec>
ListSpec<ItemSpec> list(const ItemSpec& item, std::size_t least, std::size_t most, std::string sentence)
{
    return {item, std::move(sentence), least, most};
}
template <typename Owner>
ListSpec<Record<Owner>> list(const Record<Owner>& item, std::size_t least, std::size_t most)
{
    return {item, item.sentence(), least, most};
}

template <typename T>
struct OptionalValue {
    static constexpr bool isOptional = false;
    using Value = T;
};
template <typename T>
struct OptionalValue<std::optional<T>> {
    static constexpr bool isOptional = true;
    using Value = T;
};

/// A field of a certain record.
template <typename Owner>
struct FieldOf : Field {
    /// @param accessor  a member, or what returns one from a record, const or not; a member that is a std::optional has no
    ///                  value where the field is not given
    template <typename Accessor, typename Spec>
    FieldOf(const std::string& theKey, Accessor accessor, const Spec& spec, const std::string& theSentence,
        Presence thePresence = required)
    {
        using Member = std::remove_cvref_t<std::invoke_result_t<Accessor, Owner&>>;
        using Value = typename OptionalValue<Member>::Value;
        key = theKey;
        type = spec.template typeFor<Value>();
        sentence = theSentence;
        presence = thePresence;
        open = [accessor](void* record) -> void* {
            Member& member = std::invoke(accessor, *static_cast<Owner*>(record));
            if constexpr (OptionalValue<Member>::isOptional) {
                return &member.emplace();
            } else {
                return &member;
            }
        };
        find = [accessor](const void* record) -> const void* {
            const Member& member = std::invoke(accessor, *static_cast<const Owner*>(record));
            if constexpr (OptionalValue<Member>::isOptional) {
                return member ? &*member : nullptr;
            } else {
                return &member;
            }
        };
        if (presence == Presence::optional && type->asRecord() == nullptr && type->asList() == nullptr) {
            const Owner untouched{};
            const void* const value = find(&untouched);
            fallback = value != nullptr ? type->shown(value) : std::string();
        }
    }

    explicit FieldOf(Field field)
        : Field(std::move(field))
    {
    }
};

/// A field that may be given and that nobody reads.
template <typename Owner, typename Spec>
FieldOf<Owner> ignored(std::string key, const Spec& spec, std::string sentence)
{
    return FieldOf<Owner>(Field{std::move(key), spec.template typeFor<std::string>(), std::move(sentence),
        Presence::optional, {}, [](void*) -> void* { return nullptr; }, [](const void*) -> const void* { return nullptr; }});
}

/// The table of a record.
template <typename Owner>
class Record final : public RecordType {
public:
    using RuleOf = std::function<std::optional<Wrong>(const Owner&)>;

    Record(std::string name, std::string sentence, const std::vector<FieldOf<Owner>>& fields,
        const std::vector<RuleOf>& rules = {})
        : RecordType(std::move(name), std::move(sentence), {fields.begin(), fields.end()}, erased(rules))
    {
    }

    void check(const Owner& record, const std::string& path, Errors& errors) const
    {
        checkRecord(*this, &record, path, errors);
    }

    /// The record stands for itself where a table says what a field holds; it must outlive that table.
    template <typename Value>
    TypePointer typeFor() const
    {
        static_assert(std::is_same_v<Value, Owner>);
        return {TypePointer(), this};
    }

private:
    static std::vector<Rule> erased(const std::vector<RuleOf>& rules)
    {
        std::vector<Rule> all;
        all.reserve(rules.size());
        for (const RuleOf& rule : rules) {
            all.push_back([rule](const void* record) { return rule(*static_cast<const Owner*>(record)); });
        }
        return all;
    }
};

/// For a table: the record itself, for fields that are grouped in a file and not in the record.
inline constexpr auto whole = [](auto& record) -> auto&
{
    return record;
};

/// For a table: the member of a member.
template <typename Outer, typename Inner>
auto through(Outer outer, Inner inner)
{
    return [ outer, inner ](auto& record) -> auto&
    {
        return std::invoke(inner, std::invoke(outer, record));
    };
}

/// The fields of a record that is a part of another one, as fields of that.
template <typename Outer, typename Accessor>
std::vector<FieldOf<Outer>> fieldsWithin(const RecordType& inner, Accessor accessor)
{
    std::vector<FieldOf<Outer>> fields;
    for (Field field : inner.fields()) {
        field.open = [accessor, open = field.open](
                         void* outer) { return open(&std::invoke(accessor, *static_cast<Outer*>(outer))); };
        field.find = [accessor, find = field.find](
                         const void* outer) { return find(&std::invoke(accessor, *static_cast<const Outer*>(outer))); };
        fields.push_back(FieldOf<Outer>(std::move(field)));
    }
    return fields;
}

} // namespace support
