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

} // namespace

Json jsonOf(const RecordType& type, const void* record)
{
    Json object = Json::object();
    for (const Field& field : type.fields()) {
        if (const void* const value = field.find(record)) {
            object[field.key] = valueOf(*field.type, value);
        }
    }
    return object;
}

} // namespace support
