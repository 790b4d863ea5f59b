#include "support/FieldsJson.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

namespace support {

namespace {

/// Whole numbers without a fraction.
Json limit(double value)
{
    constexpr double mostExact = 0x1p53;
    const bool isWhole = std::abs(value) <= mostExact && std::trunc(value) == value;
    return isWhole ? Json(static_cast<std::int64_t>(value)) : Json(value);
}

void describeObject(const RecordType& type, Json& schema, Json& definitions)
{
    schema["description"] = type.sentence();
    schema["type"] = "object";
    schema["additionalProperties"] = false;
    Json& required = schema["required"] = Json::array();
    for (const Field& field : type.fields()) {
        if (field.presence == Presence::required) {
            required.push_back(field.key);
        }
    }
    Json& properties = schema["properties"] = Json::object();
    for (const Field& field : type.fields()) {
        field.type->describe(properties[field.key], definitions);
        properties[field.key]["description"] = description(field);
    }
}

void collect(const Type& type, std::vector<const RecordType*>& records)
{
    if (const ListType* const list = type.asList()) {
        collect(list->item(), records);
    }
    const RecordType* const record = type.asRecord();
    if (record == nullptr || std::ranges::find(records, record) != records.end()) {
        return;
    }
    records.push_back(record);
    for (const Field& field : record->fields()) {
        collect(*field.type, records);
    }
}

/// What is expected, as a cell of a table has it: "0 to 20 dB", "1 to 40 characters", "at most 8 items: notch".
std::string brief(const Type& type)
{
    const std::string text = type.expected();
    const std::size_t begin = std::min(text.find(" from "), text.find(" of "));
    const std::string limits = begin == std::string::npos ? text : text.substr(text.find(' ', begin + 1) + 1);
    const ListType* const list = type.asList();
    const RecordType* const record = list != nullptr ? list->item().asRecord() : type.asRecord();
    return record == nullptr ? limits : list == nullptr ? record->name() : limits + ": " + record->name();
}

} // namespace

void RecordType::describe(Json& schema, Json& definitions) const
{
    if (!definitions.contains(m_name)) {
        definitions[m_name] = nullptr; // its place, before those of the records in it
        Json own;
        describeObject(*this, own, definitions);
        definitions[m_name] = std::move(own);
    }
    schema["$ref"] = "#/definitions/" + m_name;
}

void ListType::describe(Json& schema, Json& definitions) const
{
    schema["type"] = "array";
    if (m_least > 0) {
        schema["minItems"] = m_least;
    }
    schema["maxItems"] = m_most;
    m_item->describe(schema["items"], definitions);
    schema["items"]["description"] = m_sentence;
}

void NumberType::describe(Json& schema, Json&) const
{
    schema = {{"type", "number"}, {"minimum", limit(m_lowest)}, {"maximum", limit(m_highest)}};
}

void IntegerLimits::describe(Json& schema) const
{
    const Json number{{"type", "integer"}, {"minimum", lowest}, {"maximum", highest}};
    schema = word.empty() ? number : Json{{"anyOf", Json::array({number, {{"const", word}}})}};
}

void describeFlag(Json& schema)
{
    schema["type"] = "boolean";
}

void TextType::describe(Json& schema, Json&) const
{
    schema["type"] = "string";
}

void MomentType::describe(Json& schema, Json&) const
{
    schema = {{"type", "string"}, {"format", "date-time"}};
}

void LineType::describe(Json& schema, Json&) const
{
    schema["type"] = "string";
    if (m_least > 0) {
        schema["minLength"] = m_least;
    }
    schema["maxLength"] = m_most;
}

void describeChoice(Json& schema, std::span<const std::string_view> names)
{
    schema["enum"] = names;
}

std::string schemaText(const RecordType& type)
{
    Json definitions = Json::object();
    Json schema{{"$schema", "http://json-schema.org/draft-07/schema#"}, {"title", type.name()}};
    describeObject(type, schema, definitions);
    schema["definitions"] = std::move(definitions);
    constexpr int indent = 4;
    return schema.dump(indent) + "\n";
}

std::vector<const RecordType*> recordsIn(const RecordType& type)
{
    std::vector<const RecordType*> records;
    collect(type, records);
    return records;
}

std::string markdownTable(const RecordType& type)
{
    std::string table = "**" + type.name() + "**: " + type.sentence() + "\n\n|Key|Expected|What it is|\n|---|---|---|\n";
    for (const Field& field : type.fields()) {
        const bool isToTell = field.presence == Presence::optional && field.fallback.empty();
        table +=
            "|`" + field.key + "`|" + brief(*field.type) + (isToTell ? ", optional" : "") + "|" + description(field) + "|\n";
    }
    return table;
}

} // namespace support
