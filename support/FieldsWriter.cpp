#include "support/FieldsJson.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <variant>

namespace support {

namespace {

Json valueOf(const Type& type, const void* value)
{
    if (const RecordType* const record = type.asRecord()) {
        return jsonOf(*record, value);
    }
    if (const ListType* const list = type.asList()) {
        Json items = Json::array();
        for (std::size_t index = 0; index < list->size(value); ++index) {
            items.push_back(valueOf(list->item(), list->at(value, index)));
        }
        return items;
    }
    return std::visit([](const auto& scalar) { return Json(scalar); }, type.scalar(value));
}

/// Of a field that need not be given: whether it says what holds without it.
bool isAsWithout(const Field& field, const void* value)
{
    if (field.presence == Presence::required) {
        return false;
    }
    if (const RecordType* const record = field.type->asRecord()) {
        return jsonOf(*record, value).empty();
    }
    const ListType* const list = field.type->asList();
    return list != nullptr ? list->size(value) == 0 : !field.fallback.empty() && field.type->shown(value) == field.fallback;
}

} // namespace

Json jsonOf(const RecordType& type, const void* record)
{
    Json object = Json::object();
    for (const Field& field : type.fields()) {
        const void* const value = field.find(record);
        if (value != nullptr && !isAsWithout(field, value)) {
            object[field.key] = valueOf(*field.type, value);
        }
    }
    return object;
}

} // namespace support
