#include "simulator/scenario/SchemaExplanation.h"

#include "simulator/scenario/JsonText.h"
#include "simulator/scenario/Suggestion.h"

#include <charconv>
#include <cstdint>

namespace simulator {

namespace {

using nlohmann::json;

/// Follows references. Null when the node is none or the reference leads nowhere.
const json* resolved(const json* node, const json& schema)
{
    for (int hops = 0; node != nullptr && node->is_object() && node->contains("$ref"); ++hops) {
        const std::string target = node->at("$ref").get<std::string>();
        constexpr int mostHops = 16;
        if (hops == mostHops || target.empty() || target.front() != '#') {
            return nullptr;
        }
        const json::json_pointer pointer(target.substr(1));
        node = schema.contains(pointer) ? &schema.at(pointer) : nullptr;
    }
    return node;
}

/// The text that says what a node is for: its own, or that of what it refers to.
std::string descriptionOf(const json* node, const json& schema)
{
    const json* target = resolved(node, schema);
    for (const json* one : {node, target}) {
        if (one != nullptr && one->is_object() && one->contains("description")) {
            return " (" + one->at("description").get<std::string>() + ")";
        }
    }
    return {};
}

std::string number(const json& value)
{
    char text[32];
    const auto end = value.is_number_float()
        ? std::to_chars(std::begin(text), std::end(text), value.get<double>(), std::chars_format::fixed).ptr
        : std::to_chars(std::begin(text), std::end(text), value.get<std::int64_t>()).ptr;
    return {std::begin(text), end};
}

/// " from 0 to 20", " of at least 1", or nothing, out of a pair of keywords.
std::string range(const json& node, const char* lowest, const char* highest)
{
    if (node.contains(lowest) && node.contains(highest)) {
        return (node[lowest] == node[highest] ? " of " : " from " + number(node[lowest]) + " to ") + number(node[highest]);
    }
    if (node.contains(lowest)) {
        return " of at least " + number(node[lowest]);
    }
    return node.contains(highest) ? " of at most " + number(node[highest]) : std::string();
}

/// " of 1 to 99", " of at least 1", " of at most 5", or nothing.
std::string count(const json& node, const char* least, const char* most)
{
    if (node.contains(least) && node.contains(most) && node[least] != node[most]) {
        return " of " + number(node[least]) + " to " + number(node[most]);
    }
    return range(node, least, most);
}

std::string listed(const std::vector<std::string>& items, const std::string& last)
{
    std::string text;
    for (std::size_t index = 0; index < items.size(); ++index) {
        text += (index == 0 ? "" : index + 1 == items.size() ? last : ", ") + items[index];
    }
    return text;
}

std::string ofType(const std::string& type, const json& node)
{
    if (type == "number" || type == "integer") {
        return (type == "number" ? "a number" : "an integer") + range(node, "minimum", "maximum");
    }
    if (type == "string") {
        const std::string length = count(node, "minLength", "maxLength");
        const std::string form = node.contains("pattern") ? " that matches " + node["pattern"].get<std::string>() : "";
        return "a text" + (length.empty() ? length : length + " characters") + form;
    }
    if (type == "array") {
        const std::string items = count(node, "minItems", "maxItems");
        return "a list" + (items.empty() ? items : items + " items");
    }
    if (type == "object") {
        return node.value("minProperties", 0) > 0 ? "an object that is not empty" : "an object";
    }
    return type == "boolean" ? "true or false" : type;
}

/// What would be right at a node, in words; empty when the node does not tell.
std::string expected(const json* node, const json& schema)
{
    node = resolved(node, schema);
    if (node == nullptr || !node->is_object()) {
        return {};
    }
    std::vector<std::string> choices;
    for (const char* const alternatives : {"anyOf", "oneOf"}) {
        for (const json& one : node->value(alternatives, json::array())) {
            choices.push_back(expected(&one, schema));
        }
    }
    for (const json& one : node->value("enum", json::array())) {
        choices.push_back(shown(one));
    }
    if (node->contains("const")) {
        choices.push_back(shown(node->at("const")));
    }
    if (choices.empty() && node->contains("type")) {
        const json& type = node->at("type");
        for (const json& one : type.is_array() ? type : json::array({type})) {
            choices.push_back(ofType(one.get<std::string>(), *node));
        }
    }
    return listed(choices, " or ");
}

/// A value and the node of the schema for it.
struct Spot {
    std::string path = "$";
    const json* value;
    const json* node;
};

std::vector<std::string_view> keysOf(const json& object)
{
    std::vector<std::string_view> keys;
    for (const auto& member : object.items()) {
        keys.emplace_back(member.key());
    }
    return keys;
}

std::string unknownKey(const std::string& path, const std::string& key, const std::vector<std::string_view>& known)
{
    const std::string is = memberPath(path, key) + ": is no known key; ";
    if (const auto name = nearest(key, known)) {
        return is + "did you mean '" + std::string(*name) + "'?";
    }
    return is + "known here: " + listed({known.begin(), known.end()}, ", ");
}

/// Keys that an object must have, those that others of its keys ask for included.
json requiredKeys(const json& object, const json& node)
{
    json keys = node.value("required", json::array());
    const json dependencies = node.value("dependencies", json::object());
    for (const auto& asking : dependencies.items()) {
        if (object.contains(asking.key()) && asking.value().is_array()) {
            keys.insert(keys.end(), asking.value().begin(), asking.value().end());
        }
    }
    return keys;
}

/// Keys that are missing, and keys that nobody knows.
std::vector<std::string> explainKeys(const Spot& spot, const json& node, const json& schema)
{
    std::vector<std::string> findings;
    const json properties = node.value("properties", json::object());
    for (const json& required : requiredKeys(*spot.value, node)) {
        const auto key = required.get<std::string>();
        if (!spot.value->contains(key)) {
            const json* missing = properties.contains(key) ? &properties.at(key) : nullptr;
            const std::string right = expected(missing, schema);
            findings.push_back(spot.path + ": lacks " + shown(required) + (right.empty() ? "" : "; must be ") + right
                + descriptionOf(missing, schema));
        }
    }
    if (node.value("additionalProperties", json(true)) == json(false)) {
        const std::vector<std::string_view> known = keysOf(properties);
        for (const auto& member : spot.value->items()) {
            if (!properties.contains(member.key())) {
                findings.push_back(unknownKey(spot.path, member.key(), known));
            }
        }
    }
    return findings;
}

bool isOfType(const json& value, const std::string& type)
{
    return type == value.type_name() || (type == "integer" && value.is_number_integer());
}

bool isOfNodesType(const json& value, const json& node)
{
    if (!node.contains("type")) {
        return true;
    }
    for (const json& one : node["type"].is_array() ? node["type"] : json::array({node["type"]})) {
        if (isOfType(value, one.get<std::string>())) {
            return true;
        }
    }
    return false;
}

bool within(double value, const json& node, const char* lowest, const char* highest)
{
    return (!node.contains(lowest) || value >= node[lowest].get<double>())
        && (!node.contains(highest) || value <= node[highest].get<double>());
}

bool isOfWrongSize(const json& value, const json& node)
{
    const auto size = static_cast<double>(value.size());
    return (value.is_array() && !within(size, node, "minItems", "maxItems"))
        || (value.is_object() && !within(size, node, "minProperties", "maxProperties"));
}

/// Whether the value itself, and not something inside it, is what the node refuses.
bool refusesItself(const json& value, const json& node)
{
    return !value.is_structured() || !isOfNodesType(value, node) || node.contains("anyOf") || node.contains("oneOf")
        || isOfWrongSize(value, node);
}

std::string is(const json& value, const json& node)
{
    if (!isOfNodesType(value, node) || !isOfWrongSize(value, node)) {
        return "is " + shown(value);
    }
    return "has " + std::to_string(value.size()) + (value.is_array() ? " items" : " keys");
}

Spot inside(const Spot& spot, const std::string& step, const json& schema)
{
    const json* node = resolved(spot.node, schema);
    const auto under = [node](const char* keyword) -> const json* {
        return node != nullptr && node->is_object() && node->contains(keyword) ? &node->at(keyword) : nullptr;
    };
    if (spot.value->is_array()) {
        const std::size_t index = std::stoul(step);
        return {elementPath(spot.path, index), &spot.value->at(index), under("items")};
    }
    const json* properties = under("properties");
    const json* member = properties != nullptr && properties->contains(step) ? &properties->at(step) : nullptr;
    return {memberPath(spot.path, step), &spot.value->at(step), member};
}

Spot locate(const json& document, const json& schema, const JsonPlace& place)
{
    Spot spot{"$", &document, &schema};
    for (const std::string& step : place) {
        spot = inside(spot, step, schema);
    }
    return spot;
}

} // namespace

std::vector<std::string> explain(const json& document, const json& schema, const JsonPlace& place)
{
    const Spot spot = locate(document, schema, place);
    const json* node = resolved(spot.node, schema);
    if (node == nullptr || !node->is_object()) {
        return {};
    }
    const json& value = *spot.value;
    if (refusesItself(value, *node)) {
        const std::string right = expected(spot.node, schema);
        return right.empty()
            ? std::vector<std::string>()
            : std::vector{spot.path + ": " + is(value, *node) + "; must be " + right + descriptionOf(spot.node, schema)};
    }
    return value.is_object() ? explainKeys(spot, *node, schema) : std::vector<std::string>();
}

std::string pathOf(const json& document, const JsonPlace& place)
{
    return locate(document, json::object(), place).path;
}

} // namespace simulator
