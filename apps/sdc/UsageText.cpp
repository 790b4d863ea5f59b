#include "apps/sdc/UsageText.h"

#include "simulator/scenario/Suggestion.h"
#include "support/Text.h"

#include <optional>

namespace sdc {

namespace {

/// "sdc scenarios show"
std::string nameOf(const CLI::App& command)
{
    const CLI::App* const parent = command.get_parent();
    return (parent == nullptr ? "" : nameOf(*parent) + " ") + command.get_name();
}

std::string helpHint(const CLI::App& command)
{
    return "'" + nameOf(command) + " --help' tells more";
}

/// The dashes are no part of the comparison: short names would all be alike.
std::string unknownOption(const CLI::App& command, const std::string& name)
{
    const std::string dashes = "--";
    std::vector<std::string_view> known;
    for (const CLI::Option* const option : command.get_options()) {
        known.insert(known.end(), option->get_lnames().begin(), option->get_lnames().end());
    }
    const bool isLong = name.starts_with(dashes);
    const auto nearest = isLong ? simulator::nearest(std::string_view(name).substr(dashes.size()), known) : std::nullopt;
    const std::string hint = nearest ? "did you mean '" + dashes + std::string(*nearest) + "'?" : helpHint(command);
    return "unknown option '" + support::shown(name) + "'; " + hint;
}

std::string unknownCommand(const CLI::App& command, const std::string& word)
{
    std::vector<std::string_view> known;
    std::string list;
    for (const CLI::App* const subcommand : command.get_subcommands({})) {
        known.push_back(subcommand->get_name());
        list += (list.empty() ? "" : ", ") + subcommand->get_name();
    }
    return "'" + nameOf(command) + "' has no command '" + support::shown(word) + "'"
        + suggestion(word, known, "; there are " + list);
}

/// Goes through the arguments as the parser does, from command to command.
class Walk {
public:
    explicit Walk(const CLI::App& app)
        : m_command(&app)
    {
    }

    /// What is wrong with the words; nothing when all are known.
    std::optional<std::string> complaint(const std::vector<std::string>& words)
    {
        for (std::size_t i = 0; i < words.size() && words[i] != "--"; ++i) {
            const std::string& word = words[i];
            if (word.size() > 1 && word.front() == '-') {
                const std::string name = word.substr(0, word.find('='));
                const CLI::Option* const option = m_command->get_option_no_throw(name);
                if (option == nullptr) {
                    return unknownOption(*m_command, name);
                }
                const bool isValueNext = name == word && option->get_items_expected_min() > 0;
                i += isValueNext ? 1U : 0U;
            } else if (!m_command->get_subcommands({}).empty() && !enter(word)) {
                return unknownCommand(*m_command, word);
            }
        }
        return std::nullopt;
    }

    const CLI::App& command() const { return *m_command; }

private:
    bool enter(const std::string& word)
    {
        for (const CLI::App* const subcommand : m_command->get_subcommands({})) {
            if (subcommand->get_name() == word) {
                m_command = subcommand;
                return true;
            }
        }
        return false;
    }

    const CLI::App* m_command;
};

template <typename Kind>
bool is(const CLI::ParseError& error)
{
    return dynamic_cast<const Kind*>(&error) != nullptr;
}

std::string rewordMismatch(const std::string& text)
{
    const std::string option = text.substr(0, text.find_first_of(": "));
    if (text.find("flag override") != std::string::npos) {
        return (option.starts_with('-') ? "" : "--") + option + ": takes no value";
    }
    if (text.find("missing") != std::string::npos) {
        return option + ": needs a value behind it";
    }
    return option + ": is given more than once";
}

/// The parser's own words where they are good, better ones where they are not.
std::string reword(const CLI::App& app, const CLI::App& command, const CLI::ParseError& error)
{
    std::string text = error.what();
    if (is<CLI::ValidationError>(error)) {
        return text;
    }
    if (is<CLI::ExtrasError>(error) && !app.remaining(true).empty()) {
        return "'" + support::shown(app.remaining(true).front()) + "' is one word too many; " + helpHint(command);
    }
    if (is<CLI::ArgumentMismatch>(error)) {
        return rewordMismatch(text) + "; " + helpHint(command);
    }
    if (is<CLI::RequiredError>(error)) {
        std::string missing = command.get_subcommands({}).empty() ? text.substr(0, text.find(' ')) : "a command";
        if (const std::size_t bar = missing.find('|'); bar != std::string::npos) {
            missing.replace(bar, 1, " or ");
        }
        return "'" + nameOf(command) + "' needs " + missing + " behind it; " + helpHint(command);
    }
    return text + "; " + helpHint(command);
}

} // namespace

std::string suggestion(const std::string& word, std::span<const std::string_view> known, const std::string& otherwise)
{
    const std::optional<std::string_view> nearest = simulator::nearest(word, known);
    return nearest ? "; did you mean '" + std::string(*nearest) + "'?" : otherwise;
}

std::string explain(const CLI::App& app, const std::vector<std::string>& arguments, const CLI::ParseError& error)
{
    Walk walk(app);
    const std::optional<std::string> unknown = walk.complaint(arguments);
    return unknown ? *unknown : reword(app, walk.command(), error);
}

} // namespace sdc
