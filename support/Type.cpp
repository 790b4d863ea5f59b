#include "support/Type.h"

#include <algorithm>
#include <utility>

namespace support {

namespace {

/// A place in a record, as a path once somebody is told of it.
class Place {
public:
    explicit Place(const std::string& root)
        : m_root(&root)
    {
    }
    Place(const Place& parent, std::string_view key)
        : m_parent(&parent)
        , m_key(key)
    {
    }
    Place(const Place& parent, std::size_t index)
        : m_parent(&parent)
        , m_index(index)
    {
    }

    std::string path() const
    {
        if (m_parent == nullptr) {
            return *m_root;
        }
        return m_key.empty() ? elementPath(m_parent->path(), m_index) : memberPath(m_parent->path(), m_key);
    }

private:
    const std::string* m_root = nullptr;
    const Place* m_parent = nullptr;
    std::string_view m_key;
    std::size_t m_index = 0;
};

void checkFields(const RecordType& type, const void* record, const Place& place, Errors& errors);

void checkValue(const Type& type, const void* value, const std::string& what, const Place& place, Errors& errors)
{
    if (!type.isRight(value)) {
        const std::string is = type.asList() != nullptr ? ": has " : ": is ";
        errors.add(place.path() + is + type.shown(value) + "; must be " + type.expected() + " (" + what + ")");
    } else if (const RecordType* const record = type.asRecord()) {
        checkFields(*record, value, place, errors);
    } else if (const ListType* const list = type.asList()) {
        for (std::size_t index = 0; index < list->size(value) && !errors.isFull(); ++index) {
            checkValue(list->item(), list->at(value, index), list->sentence(), Place(place, index), errors);
        }
    }
}

void checkFields(const RecordType& type, const void* record, const Place& place, Errors& errors)
{
    const std::size_t before = errors.count();
    for (const Field& field : type.fields()) {
        const void* const value = field.find(record);
        if (value != nullptr && !errors.isFull()) {
            checkValue(*field.type, value, description(field), Place(place, field.key), errors);
        }
    }
    if (errors.count() != before) {
        return;
    }
    if (const std::optional<Wrong> wrong = type.broken(record)) {
        const std::string path = place.path();
        const std::string dot = path.empty() || wrong->path.empty() ? "" : ".";
        errors.add(path + dot + wrong->path + ": " + wrong->text);
    }
}

} // namespace

bool Type::read(const Scalar&, void*) const
{
    return false;
}

Scalar Type::scalar(const void*) const
{
    return nullptr;
}

std::string description(const Field& field)
{
    return field.sentence + (field.fallback.empty() ? "" : "; " + field.fallback + " unless given");
}

std::optional<Wrong> notAbove(std::string path, double lower, double upper, const std::string& name)
{
    if (!(lower > upper)) {
        return std::nullopt;
    }
    return Wrong{
        std::move(path), "is " + numberText(lower) + "; must not be above " + name + ", which is " + numberText(upper)};
}

RecordType::RecordType(std::string name, std::string sentence, std::vector<Field> fields, std::vector<Rule> rules)
    : m_name(std::move(name))
    , m_sentence(std::move(sentence))
    , m_fields(std::move(fields))
    , m_rules(std::move(rules))
{
}

const Field* RecordType::field(std::string_view key) const
{
    const auto found = std::ranges::find(m_fields, key, &Field::key);
    return found == m_fields.end() ? nullptr : &*found;
}

std::optional<Wrong> RecordType::broken(const void* record) const
{
    for (const Rule& rule : m_rules) {
        if (std::optional<Wrong> wrong = rule(record)) {
            return wrong;
        }
    }
    return std::nullopt;
}

ListType::ListType(TypePointer item, std::string sentence, std::size_t least, std::size_t most)
    : m_item(std::move(item))
    , m_sentence(std::move(sentence))
    , m_least(least)
    , m_most(most)
{
}

std::string ListType::expected() const
{
    return "a list of " + sizeText(m_least, m_most) + " items";
}

std::string ListType::shown(const void* list) const
{
    return std::to_string(size(list)) + " items";
}

void checkRecord(const RecordType& type, const void* record, const std::string& path, Errors& errors)
{
    checkFields(type, record, Place(path), errors);
}

} // namespace support
