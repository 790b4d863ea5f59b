#pragma once

#include "support/Errors.h"
#include "support/Fields.h"

#include <string>
#include <string_view>
#include <vector>

namespace support {

/// Reads a record out of a JSON text in UTF-8, in which comments may stand. The record is judged while the text is read:
/// what is too long, too deep or unknown is not kept, and after the first few errors reading ends.
///
/// @param errors  takes what is wrong: "PATH: is 21; must be ...", or "line 3, column 5: ..." where the text is no JSON
void readJson(std::string_view text, const RecordType& type, void* record, Errors& errors);

template <typename Owner>
void readJson(std::string_view text, const Record<Owner>& type, Owner& record, Errors& errors)
{
    readJson(text, static_cast<const RecordType&>(type), &record, errors);
}

/// A record as JSON, its keys in the order of the table. Fields that need not be given and say what holds without them are
/// left out.
Json jsonOf(const RecordType& type, const void* record);

/// The JSON Schema (draft-07) of texts that hold a record, as a text that ends in a line break.
std::string schemaText(const RecordType& type);

/// A record, and all records that its fields hold, each once, the outermost first.
std::vector<const RecordType*> recordsIn(const RecordType& type);

/// The fields of a record as a table in Markdown.
std::string markdownTable(const RecordType& type);

} // namespace support
