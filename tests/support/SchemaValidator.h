#pragma once

#include <nlohmann/json.hpp>
#include <valijson/adapters/nlohmann_json_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validator.hpp>

namespace tests {

/// Judges texts by a JSON Schema (draft-07) as an editor does, in another way than the program.
class SchemaValidator {
public:
    /// @throws when the schema is none
    explicit SchemaValidator(const nlohmann::json& schema)
    {
        valijson::SchemaParser(valijson::SchemaParser::kDraft7)
            .populateSchema(valijson::adapters::NlohmannJsonAdapter(schema), m_schema);
    }

    bool accepts(const nlohmann::json& document) const
    {
        return valijson::Validator().validate(m_schema, valijson::adapters::NlohmannJsonAdapter(document), nullptr);
    }

private:
    valijson::Schema m_schema;
};

} // namespace tests
