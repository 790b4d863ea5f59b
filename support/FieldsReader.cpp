#include "support/FieldsJson.h"
#include "support/Suggestion.h"
#include "support/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <optional>
#include <utility>
#include <variant>

namespace support {

namespace {

using nlohmann::json;

std::string textOf(const Scalar& scalar)
{
    struct Writer {
        std::string operator()(std::nullptr_t) const { return "null"; }
        std::string operator()(bool value) const { return value ? "true" : "false"; }
        std::string operator()(std::int64_t value) const { return std::to_string(value); }
        std::string operator()(double value) const { return json(value).dump(); }
        std::string operator()(const std::string& value) const { return inQuotes(value); }
    };
    return std::visit(Writer{}, scalar);
}

/// What is to stand where the reader is.
struct Slot {
    const Type* type = nullptr; ///< null: whatever it is, it is skipped
    void* into = nullptr;
};

/// An object or a list that has begun.
struct Open {
    const RecordType* record; ///< null: a list
    const ListType* list;
    void* into;
    std::size_t errorsBefore;
    const Field* field = nullptr; ///< whose value comes next
    std::vector<bool> given{};    ///< of each field of the record
    std::size_t items = 0;        ///< of the list, those that are too many not counted
    bool isTooLong = false;
};

/// The parser's own words without what stands before them: its name, and its way to tell a place.
std::string_view reasonIn(std::string_view message)
{
    message.remove_prefix(std::min(message.find("] ") + 2, message.size()));
    return message.starts_with("parse error") ? message.substr(message.find(": ") + 2) : message;
}

/// How far the parser has come, and how far it may go before the next value: of all that it has read since the last one it
/// makes several copies when it finds an error.
struct Progress {
    static constexpr std::ptrdiff_t most = 1 << 16;

    explicit Progress(const char* begin)
        : at(begin)
    {
    }
    void extend() { limit = at + most; }

    const char* at;
    const char* limit = at + most;
};

struct NoValue {};

/// The characters of a text as the parser takes them. Throws NoValue at the limit.
class Characters {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    Characters(const char* at, Progress& progress)
        : m_at(at)
        , m_progress(&progress)
    {
    }
    reference operator*() const { return *m_at; }
    Characters& operator++()
    {
        m_progress->at = ++m_at;
        if (m_at == m_progress->limit) {
            throw NoValue();
        }
        return *this;
    }
    bool operator==(const Characters& other) const { return m_at == other.m_at; }

private:
    const char* m_at;
    Progress* m_progress;
};

/// Judges and stores each value as the parser comes to it. The parser stops where a handler returns false.
class Reader : public nlohmann::json_sax<json> {
public:
    Reader(std::string_view text, const RecordType& type, void* record, Errors& errors)
        : m_text(text)
        , m_progress(text.data())
        , m_type(type)
        , m_record(record)
        , m_errors(errors)
    {
    }

    bool null() override { return scalar(nullptr); }
    bool boolean(bool value) override { return scalar(value); }
    bool number_integer(json::number_integer_t value) override { return scalar(value); }
    bool number_unsigned(json::number_unsigned_t value) override
    {
        constexpr auto largest = static_cast<json::number_unsigned_t>(std::numeric_limits<std::int64_t>::max());
        return value > largest ? scalar(static_cast<double>(value)) : scalar(static_cast<std::int64_t>(value));
    }
    bool number_float(json::number_float_t value, const std::string&) override { return scalar(value); }
    bool string(std::string& value) override { return scalar(std::move(value)); }
    bool binary(json::binary_t&) override { return false; }

    bool start_object(std::size_t) override
    {
        return begin("an object", [](const Type& type) { return type.asRecord() != nullptr; });
    }
    bool start_array(std::size_t) override
    {
        return begin("a list", [](const Type& type) { return type.asList() != nullptr; });
    }

    bool key(std::string& name) override
    {
        m_progress.extend();
        if (m_skipped > 0) {
            return true;
        }
        Open& object = m_open.back();
        object.field = object.record->field(name);
        if (object.field == nullptr) {
            return wrong(memberPath(path(m_open.size() - 1), name) + ": unknown key; " + knownFor(name, *object.record));
        }
        const auto index = static_cast<std::size_t>(object.field - object.record->fields().data());
        if (object.given[index]) {
            object.field = nullptr;
            return wrong(memberPath(path(m_open.size() - 1), name) + ": stands twice; keep one");
        }
        object.given[index] = true;
        return true;
    }

    bool end_object() override
    {
        return end([this](const Open& object) { return finish(object); });
    }
    bool end_array() override
    {
        return end([this](const Open& list) { return finishList(list); });
    }

    bool parse_error(std::size_t position, const std::string&, const nlohmann::detail::exception& error) override
    {
        m_errors.add(placeOf(position) + shown(reasonIn(error.what())));
        return false;
    }

    void parse()
    {
        constexpr bool wholeText = true;
        constexpr bool withComments = true;
        const char* const begin = m_text.data();
        try {
            nlohmann::json::sax_parse(Characters(begin, m_progress), Characters(begin + m_text.size(), m_progress), this,
                json::input_format_t::json, wholeText, withComments);
        } catch (const NoValue&) {
            const auto position = static_cast<std::size_t>(m_progress.limit - Progress::most - begin);
            m_errors.add(placeOf(position + 1) + "more than " + std::to_string(Progress::most)
                + " characters without an end of a value; must be fewer");
        }
    }

private:
    bool wrong(std::string error)
    {
        m_errors.add(std::move(error));
        return !m_errors.isFull();
    }

    /// "line 3, column 5: ", where the parser has read so many bytes; the first of each is 1.
    std::string placeOf(std::size_t position) const
    {
        const std::string_view before = m_text.substr(0, std::min(position == 0 ? 0 : position - 1, m_text.size()));
        const auto line = std::ranges::count(before, '\n') + 1;
        const std::size_t column = before.size() - (before.rfind('\n') + 1) + 1; // npos + 1 is 0
        return "line " + std::to_string(line) + ", column " + std::to_string(column) + ": ";
    }

    /// Of what is being read, or of the innermost so many that have begun.
    std::string path(std::size_t depth) const
    {
        std::string path = "$";
        for (std::size_t level = 0; level < depth; ++level) {
            const Open& one = m_open[level];
            path = one.record == nullptr ? elementPath(path, one.items - 1) : memberPath(path, one.field->key);
        }
        return path;
    }
    std::string path() const
    {
        const bool atKnown = !m_open.empty() && m_open.back().record != nullptr && m_open.back().field == nullptr;
        return path(m_open.size() - (atKnown ? 1 : 0));
    }

    static std::string knownFor(const std::string& name, const RecordType& record)
    {
        std::vector<std::string_view> known;
        std::ranges::transform(record.fields(), std::back_inserter(known), &Field::key);
        if (const auto meant = nearest(name, known)) {
            return "did you mean '" + std::string(*meant) + "'?";
        }
        return "known here: " + joined({known.begin(), known.end()}, ", ");
    }

    Slot next()
    {
        if (m_open.empty()) {
            return {&m_type, m_record};
        }
        Open& parent = m_open.back();
        if (parent.record != nullptr) {
            return parent.field == nullptr ? Slot{} : Slot{parent.field->type.get(), parent.field->open(parent.into)};
        }
        if (parent.items == parent.list->most()) {
            parent.isTooLong = true;
            return {};
        }
        ++parent.items;
        return {&parent.list->item(), parent.list->add(parent.into)};
    }

    /// Of the value that is expected, or that has just ended.
    std::string what() const
    {
        if (m_open.empty()) {
            return m_type.sentence();
        }
        return m_open.back().record != nullptr ? description(*m_open.back().field) : m_open.back().list->sentence();
    }

    bool notExpected(const std::string& value, const Type& type)
    {
        return wrong(path() + ": is " + value + "; must be " + type.expected() + " (" + what() + ")");
    }

    bool scalar(const Scalar& value)
    {
        m_progress.extend();
        if (m_skipped > 0) {
            return true;
        }
        const Slot slot = next();
        return slot.type == nullptr || slot.type->read(value, slot.into) || notExpected(textOf(value), *slot.type);
    }

    template <typename IsExpected>
    bool begin(const char* is, IsExpected isExpected)
    {
        m_progress.extend();
        if (m_skipped > 0) {
            ++m_skipped;
            return true;
        }
        const Slot slot = next();
        if (slot.type == nullptr || !isExpected(*slot.type)) {
            m_skipped = 1;
            return slot.type == nullptr || notExpected(is, *slot.type);
        }
        const RecordType* const record = slot.type->asRecord();
        m_open.push_back({record, slot.type->asList(), slot.into, m_errors.count()});
        m_open.back().given.resize(record == nullptr ? 0 : record->fields().size());
        return true;
    }

    template <typename Finish>
    bool end(Finish finish)
    {
        m_progress.extend();
        if (m_skipped > 0) {
            --m_skipped;
            return true;
        }
        const Open ended = std::move(m_open.back());
        m_open.pop_back();
        return finish(ended);
    }

    bool finish(const Open& object)
    {
        const std::vector<Field>& fields = object.record->fields();
        for (std::size_t index = 0; index < fields.size(); ++index) {
            const Field& field = fields[index];
            if (field.presence == Presence::required && !object.given[index]
                && !wrong(path() + ": lacks " + inQuotes(field.key) + "; must be " + field.type->expected() + " ("
                    + description(field) + ")")) {
                return false;
            }
        }
        const auto broken = m_errors.count() == object.errorsBefore ? object.record->broken(object.into) : std::nullopt;
        return !broken || wrong(path() + (broken->path.empty() ? "" : ".") + broken->path + ": " + broken->text);
    }

    bool finishList(const Open& list)
    {
        const bool isRight = !list.isTooLong && list.list->isRightSize(list.items);
        const std::string has = (list.isTooLong ? "more than " : "") + std::to_string(list.items) + " items";
        return isRight || wrong(path() + ": has " + has + "; must be " + list.list->expected() + " (" + what() + ")");
    }

    std::string_view m_text;
    Progress m_progress;
    const RecordType& m_type;
    void* m_record;
    Errors& m_errors;
    std::vector<Open> m_open;  ///< from the outermost to the innermost; only the innermost one grows
    std::size_t m_skipped = 0; ///< objects and lists that have begun and that nobody asks for
};

} // namespace

void readJson(std::string_view text, const RecordType& type, void* record, Errors& errors)
{
    if (text.find('\0') != std::string_view::npos) {
        errors.add("holds a NUL byte; must be text in UTF-8");
        return;
    }
    if (std::ranges::all_of(text, [](unsigned char one) { return std::isspace(one) != 0; })) {
        errors.add("is empty; must be a JSON object");
        return;
    }
    Reader(text, type, record, errors).parse();
}

} // namespace support
