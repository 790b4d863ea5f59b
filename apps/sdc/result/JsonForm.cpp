#include "apps/sdc/result/JsonForm.h"

#include "simulator/scenario/JsonText.h"
#include "support/Suggestion.h"
#include "support/Text.h"

#include <bitset>
#include <charconv>

namespace sdc {

namespace {

using nlohmann::json;

std::string numberText(double value)
{
    char text[64];
    return {std::begin(text), std::to_chars(std::begin(text), std::end(text), value, std::chars_format::fixed).ptr};
}

/// A number as JSON has it, without decimals where it has none.
Json plainNumber(double value)
{
    constexpr double exact = 9007199254740992.0;
    return value == std::floor(value) && std::abs(value) <= exact ? Json(static_cast<std::int64_t>(value)) : Json(value);
}

/// Reads what is expected into a record, piece by piece, and notes what is not expected.
class Reader : public simulator::JsonEvents {
public:
    Reader(std::string_view text, const Kind& kind, void* record)
        : JsonEvents(text)
        , m_root{&kind, record}
    {
    }

    void note(const std::string& error) { m_errors.push_back(error); }
    std::vector<std::string> takeErrors() { return std::move(m_errors); }

    bool null() override { return scalar(nullptr); }
    bool boolean(bool value) override { return scalar(value); }
    bool number_integer(json::number_integer_t value) override { return scalar(value); }
    bool number_unsigned(json::number_unsigned_t value) override { return scalar(value); }
    bool number_float(json::number_float_t value, const std::string&) override { return scalar(value); }
    bool string(std::string& value) override { return scalar(std::move(value)); }
    bool start_object(std::size_t) override { return open(true); }
    bool start_array(std::size_t) override { return open(false); }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }

    bool key(std::string& key) override
    {
        if (m_skipped > 0) {
            return true;
        }
        Level& level = m_levels.back();
        const std::span<const Field> fields = level.spot.kind->fields();
        const auto field = std::ranges::find(fields, std::string_view(key), &Field::key);
        level.field = nullptr;
        if (field == fields.end()) {
            return add(
                simulator::memberPath(path(), support::shown(key, 60)) + ": is no known key; " + knownKeys(key, fields));
        }
        level.field = &*field;
        const auto index = static_cast<std::size_t>(field - fields.begin());
        const bool isNew = !level.seen.test(index);
        level.seen.set(index);
        return isNew || add(path() + ": stands twice; keep one");
    }

private:
    /// What is expected somewhere, and where it goes. Of what stands behind an unknown key nothing is expected.
    struct Spot {
        const Kind* kind;
        void* value;
    };

    /// An object or a list that is being read.
    struct Level {
        Spot spot;
        const Field* field;   ///< of an object, its last key
        std::bitset<32> seen; ///< of an object, the keys that it has
        std::size_t count;    ///< of a list, the items that it has
    };

    bool add(const std::string& error)
    {
        note(error);
        return m_errors.size() <= mostErrors;
    }

    /// Of what comes next.
    Spot next()
    {
        if (m_levels.empty()) {
            return m_root;
        }
        Level& level = m_levels.back();
        if (const Kind* const items = level.spot.kind->items()) {
            ++level.count;
            return {items, level.spot.kind->append(level.spot.value)};
        }
        return level.field == nullptr ? Spot{nullptr, nullptr}
                                      : Spot{&level.field->kind, level.field->into(level.spot.value)};
    }

    bool scalar(const json& value)
    {
        if (m_skipped > 0) {
            return true;
        }
        const Spot spot = next();
        return spot.kind == nullptr || spot.kind->read(value, spot.value) || unexpected(*spot.kind, simulator::shown(value));
    }

    /// What is not expected to be opened is passed over to its end.
    bool open(bool isObject)
    {
        const Spot spot = m_skipped > 0 ? Spot{nullptr, nullptr} : next();
        if (spot.kind != nullptr && (isObject ? !spot.kind->fields().empty() : spot.kind->items() != nullptr)) {
            m_levels.push_back({spot, nullptr, {}, 0});
            return true;
        }
        ++m_skipped;
        return spot.kind == nullptr || unexpected(*spot.kind, isObject ? "an object" : "a list");
    }

    bool close()
    {
        if (m_skipped > 0) {
            --m_skipped;
            return true;
        }
        const Level level = m_levels.back();
        m_levels.pop_back();
        const Kind& kind = *level.spot.kind;
        const bool isLong = kind.items() == nullptr || level.count >= kind.least();
        return (isLong || add(path() + ": has " + std::to_string(level.count) + " items; must be " + kind.expected()))
            && addMissing(level);
    }

    bool addMissing(const Level& level)
    {
        std::size_t index = 0;
        return std::ranges::all_of(level.spot.kind->fields(), [&](const Field& field) {
            return level.seen.test(index++) || !field.isRequired
                || add(
                    path() + ": lacks \"" + std::string(field.key) + "\"; must be " + field.kind.expected() + about(field));
        });
    }

    bool unexpected(const Kind& kind, const std::string& is)
    {
        const Field* const field = m_levels.empty() ? nullptr : m_levels.back().field;
        return add(path() + ": is " + is + "; must be " + kind.expected() + (field == nullptr ? "" : about(*field)));
    }

    static std::string about(const Field& field)
    {
        return field.description.empty() ? "" : " (" + std::string(field.description) + ")";
    }

    static std::string knownKeys(const std::string& key, std::span<const Field> fields)
    {
        std::vector<std::string_view> known;
        std::string list;
        for (const Field& field : fields) {
            known.push_back(field.key);
            list += (list.empty() ? "" : ", ") + std::string(field.key);
        }
        const auto nearest = support::nearest(key, known);
        return nearest ? "did you mean '" + std::string(*nearest) + "'?" : "known here: " + list;
    }

    /// Of what is being read.
    std::string path() const
    {
        std::string path = "$";
        for (const Level& level : m_levels) {
            if (level.field != nullptr) {
                path = simulator::memberPath(path, std::string(level.field->key));
            } else if (level.count > 0) {
                path = simulator::elementPath(path, level.count - 1);
            }
        }
        return path;
    }

    Spot m_root;
    std::vector<Level> m_levels; ///< from the outermost to the innermost
    std::size_t m_skipped = 0;   ///< levels that nobody expects
    std::vector<std::string> m_errors;
};

} // namespace

Json ObjectKind::schema() const
{
    Json schema{{"type", "object"}, {"required", Json::array()}, {"additionalProperties", false}};
    for (const Field& field : m_fields) {
        const std::string key(field.key);
        if (field.isRequired) {
            schema["required"].push_back(key);
        }
        schema["properties"][key] = field.kind.schema();
        schema["properties"][key]["description"] = field.description;
    }
    return schema;
}

Json ObjectKind::write(const void* record) const
{
    Json json = Json::object();
    for (const Field& field : m_fields) {
        if (const void* const value = field.from(record)) {
            json[std::string(field.key)] = field.kind.write(value);
        }
    }
    return json;
}

std::string Range::expected(const std::string& what) const
{
    if (m_lowest == m_highest) {
        return numberText(m_lowest);
    }
    if (std::isfinite(m_lowest) && std::isfinite(m_highest)) {
        return what + " from " + numberText(m_lowest) + " to " + numberText(m_highest);
    }
    return what + (std::isfinite(m_lowest) ? " of at least " + numberText(m_lowest) : "");
}

Json Range::schema(const char* type) const
{
    Json schema{{"type", type}};
    if (std::isfinite(m_lowest)) {
        schema["minimum"] = plainNumber(m_lowest);
    }
    if (std::isfinite(m_highest)) {
        schema["maximum"] = plainNumber(m_highest);
    }
    return schema;
}

bool NumberKind::read(const json& json, void* value) const
{
    const bool isExpected = json.is_number() && m_range.contains(json.get<double>());
    *static_cast<double*>(value) = isExpected ? json.get<double>() : 0.0;
    return isExpected;
}

std::string TextKind::expected() const
{
    return m_least == 0 ? "a text" : "a text of at least " + std::to_string(m_least) + " characters";
}

Json TextKind::schema() const
{
    Json schema{{"type", "string"}};
    if (m_least > 0) {
        schema["minLength"] = m_least;
    }
    return schema;
}

bool TextKind::read(const json& json, void* value) const
{
    const bool isExpected = json.is_string() && json.get_ref<const std::string&>().size() >= m_least;
    *static_cast<std::string*>(value) = isExpected ? json.get<std::string>() : "";
    return isExpected;
}

std::vector<std::string> readJson(std::string_view text, const Kind& kind, void* record)
{
    Reader reader(text, kind, record);
    try {
        reader.read();
    } catch (const simulator::JsonTextError& error) {
        reader.note(error.what());
    }
    return reader.takeErrors();
}

} // namespace sdc
