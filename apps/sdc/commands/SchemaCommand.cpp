#include "apps/sdc/commands/Commands.h"
#include "apps/sdc/compare/ComparisonForm.h"
#include "apps/sdc/options/Options.h"
#include "apps/sdc/options/UsageText.h"
#include "apps/sdc/result/PlanForm.h"
#include "apps/sdc/result/ResultForm.h"
#include "apps/sdc/tty/Screen.h"
#include "simulator/scenario/ScenarioRecord.h"
#include "support/Errors.h"
#include "support/Fields.h"
#include "support/FieldsJson.h"

#include <algorithm>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace sdc {

namespace {

/// A kind of JSON document that the program reads or writes.
struct Document {
    std::string_view name;
    const support::RecordType& (*record)();
};

constexpr Document documents[] = {
    {"result", []() -> const support::RecordType& { return resultRecord(); }},
    {"scenario", []() -> const support::RecordType& { return simulator::scenarioRecord(); }},
    {"plan", []() -> const support::RecordType& { return planDocumentRecord(); }},
    {"compare", []() -> const support::RecordType& { return comparisonRecord(); }},
};

std::vector<std::string_view> documentNames()
{
    std::vector<std::string_view> names;
    for (const Document& document : documents) {
        names.push_back(document.name);
    }
    return names;
}

} // namespace

void addSchema(CLI::App& app, Command& command)
{
    const std::vector<std::string_view> names = documentNames();
    const Words words(names.begin(), names.end());
    CLI::App& printing = *app.add_subcommand("schema", "Print the JSON Schema of what is read or written");
    const auto chosen = std::make_shared<const Document*>(nullptr);
    const auto store = [chosen, names, words](const std::string& name) {
        const auto* const found = std::ranges::find(documents, name, &Document::name);
        if (found == std::end(documents)) {
            throw CLI::ValidationError(invalid("document", name, support::joined(words)) + suggestion(name, names));
        }
        *chosen = found;
    };
    CLI::Option* const option = printing.add_option_function<std::string>("DOCUMENT", store, support::joined(words));
    offer(option->required()->type_name(""), words);
    printing.footer("The schemas are of draft-07.\n\n"
                    "Example:\n  sdc schema result > result.schema.json\n");
    printing.callback([chosen, &command] {
        command = [chosen] {
            return toStandardOutput([&](std::ostream& output) {
                output << support::schemaText((*chosen)->record());
                return EXIT_COMPLETE;
            });
        };
    });
}

} // namespace sdc
