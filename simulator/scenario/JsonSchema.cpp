#include "simulator/scenario/JsonSchema.h"

#include "simulator/scenario/JsonText.h"
#include "simulator/scenario/SchemaCheck.h"
#include "simulator/scenario/SchemaExplanation.h"

#include <valijson/adapters/nlohmann_json_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validation_results.hpp>
#include <valijson/validator.hpp>

#include <algorithm>
#include <map>
#include <stdexcept>

namespace simulator {

namespace {

using nlohmann::json;

/// The validator writes a place as "<root>", "[channels]", "[0]".
JsonPlace placeOf(const std::vector<std::string>& context)
{
    JsonPlace place;
    for (std::size_t index = 1; index < context.size(); ++index) {
        place.push_back(context[index].substr(1, context[index].size() - 2));
    }
    return place;
}

void compile(const json& schema, valijson::Schema& compiled)
{
    try {
        valijson::SchemaParser(valijson::SchemaParser::kDraft7)
            .populateSchema(valijson::adapters::NlohmannJsonAdapter(schema), compiled);
    } catch (const std::exception& error) {
        throw std::invalid_argument(std::string("the schema: ") + error.what());
    }
}

/// The places that the validator refuses, and its own words about each.
std::map<JsonPlace, std::string> refusedPlaces(const json& document, const json& schema)
{
    valijson::Schema compiled;
    compile(schema, compiled);
    valijson::ValidationResults results;
    const valijson::adapters::NlohmannJsonAdapter target(document);
    std::map<JsonPlace, std::string> places;
    if (valijson::Validator().validate(compiled, target, &results)) {
        return places;
    }
    for (const valijson::ValidationResults::Error& error : results) {
        places.emplace(placeOf(error.context), error.description);
    }
    return places;
}

bool lies(const JsonPlace& inner, const JsonPlace& outer)
{
    return inner.size() > outer.size() && std::equal(outer.begin(), outer.end(), inner.begin());
}

} // namespace

std::vector<std::string> schemaFindings(const json& document, const json& schema)
{
    std::vector<std::string> findings;
    const std::map<JsonPlace, std::string> places = refusedPlaces(document, schema);
    for (auto place = places.begin(); place != places.end(); ++place) {
        const std::vector<std::string> reasons = explain(document, schema, place->first);
        findings.insert(findings.end(), reasons.begin(), reasons.end());
        // A place is refused for what is inside it, too: that speaks for itself, and comes next in the order of places.
        const auto next = std::next(place);
        if (reasons.empty() && (next == places.end() || !lies(next->first, place->first))) {
            findings.push_back(pathOf(document, place->first) + ": " + place->second);
        }
    }
    return findings;
}

std::vector<std::string> schemaFindings(std::string_view json, std::string_view schema)
{
    nlohmann::json parsedSchema;
    try {
        parsedSchema = parseJsonText(schema);
    } catch (const JsonTextError& error) {
        throw std::invalid_argument(std::string("the schema: ") + error.what());
    }
    try {
        return schemaFindings(parseJsonText(json), parsedSchema);
    } catch (const JsonTextError& error) {
        return {error.what()};
    }
}

} // namespace simulator
