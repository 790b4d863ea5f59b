#pragma once

// IWYU pragma: private, include "support/Fields.h"

#include "support/Errors.h"

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

// What the tables of Fields.h are made of, whatever the C++ types of the records.

namespace support {

/// A value of JSON that holds no others.
using Scalar = std::variant<std::nullptr_t, bool, std::int64_t, double, std::string>;

using Json = nlohmann::ordered_json; ///< of schemas, whose keys stand in the order of the table

class RecordType;
class ListType;

/// What may stand at a place. A value is behind a pointer to the C++ type that the table was made for.
class Type {
public:
    Type() = default;
    virtual ~Type() = default;
    Type(const Type&) = delete;
    Type& operator=(const Type&) = delete;

    virtual std::string expected() const = 0; ///< such as "a number from 0 to 20 dB"

    /// Writes its JSON Schema.
    /// @param definitions  takes the schemas of records that it refers to
    virtual void describe(Json& schema, Json& definitions) const = 0;

    /// Stores a value; nothing is stored where `into` is null.
    /// @return whether it is what is expected
    virtual bool read(const Scalar& value, void* into) const;

    /// What read() takes, of a value that holds no others.
    virtual Scalar scalar(const void* value) const;

    virtual bool isRight(const void* value) const = 0; ///< the value itself, not what is inside it
    virtual std::string shown(const void* value) const = 0;

    virtual const RecordType* asRecord() const { return nullptr; }
    virtual const ListType* asList() const { return nullptr; }
};

using TypePointer = std::shared_ptr<const Type>;

enum class Presence : std::uint8_t { required, optional };
inline constexpr Presence required = Presence::required;
inline constexpr Presence optional = Presence::optional;

/// A field of a record, whatever the record.
struct Field {
    std::string key;
    TypePointer type;
    std::string sentence; ///< what it is; not a whole one, without a full stop
    Presence presence = required;
    std::string fallback{};                       ///< the value where it is not given; empty where there is none to show
    std::function<void*(void*)> open;             ///< the place of its value in a record, made if need be
    std::function<const void*(const void*)> find; ///< the same; null where the record has none
};

/// Its sentence, and what holds where it is not given.
std::string description(const Field& field);

/// What a rule says against a record.
struct Wrong {
    std::string path; ///< within the record, such as "channels[1].number"; empty: the record itself
    std::string text; ///< what is wrong and what would be right
};

/// For a rule: nothing when `lower` does not lie above `upper`.
/// @param path   of the lower one
/// @param upper  the other one's value, and its name in the message
std::optional<Wrong> notAbove(std::string path, double lower, double upper, const std::string& name = "the highest");

/// A record, whatever its C++ type.
class RecordType : public Type {
public:
    using Rule = std::function<std::optional<Wrong>(const void*)>;

    const std::string& name() const { return m_name; }
    const std::string& sentence() const { return m_sentence; }
    const std::vector<Field>& fields() const { return m_fields; }
    const Field* field(std::string_view key) const;

    /// Of several rules that are broken the first: the others may follow from it.
    std::optional<Wrong> broken(const void* record) const;

    std::string expected() const override { return "an object"; }
    void describe(Json& schema, Json& definitions) const override;
    bool isRight(const void*) const override { return true; }
    std::string shown(const void*) const override { return "an object"; }
    const RecordType* asRecord() const override { return this; }

protected:
    RecordType(std::string name, std::string sentence, std::vector<Field> fields, std::vector<Rule> rules);

private:
    std::string m_name;
    std::string m_sentence;
    std::vector<Field> m_fields;
    std::vector<Rule> m_rules;
};

/// A list, whatever its C++ type.
class ListType : public Type {
public:
    ListType(TypePointer item, std::string sentence, std::size_t least, std::size_t most);

    const Type& item() const { return *m_item; }
    const std::string& sentence() const { return m_sentence; } ///< of each item
    std::size_t most() const { return m_most; }

    virtual void* add(void* list) const = 0; ///< an item at the end
    virtual std::size_t size(const void* list) const = 0;
    virtual const void* at(const void* list, std::size_t index) const = 0;

    std::string expected() const override;
    void describe(Json& schema, Json& definitions) const override;
    bool isRight(const void* list) const override { return isRightSize(size(list)); }
    bool isRightSize(std::size_t size) const { return m_least <= size && size <= m_most; }
    std::string shown(const void* list) const override;
    const ListType* asList() const override { return this; }

private:
    TypePointer m_item;
    std::string m_sentence;
    std::size_t m_least;
    std::size_t m_most;
};

/// What is wrong with a record that a program has made: the first few errors, each "PATH: is 21; must be ...".
/// @param path  of the record itself, for errors
void checkRecord(const RecordType& type, const void* record, const std::string& path, Errors& errors);

} // namespace support
