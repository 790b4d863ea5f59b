#include "apps/sdc/options/UsageText.h"

#include "apps/sdc/options/CommandLine.h"
#include "apps/sdc/options/Options.h"
#include "support/Suggestion.h"
#include "support/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>
#include <utility>

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

/// The commands below one that have an option, as in "'sdc plot', 'sdc compare'"; empty where none has.
std::string commandsWith(const std::string& option, const CLI::App& above)
{
    std::string names;
    const auto append = [&names](const std::string& more) { names += (names.empty() || more.empty() ? "" : ", ") + more; };
    for (const CLI::App* const command : above.get_subcommands({})) {
        append(command->get_option_no_throw(option) == nullptr ? "" : "'" + nameOf(*command) + "'");
        append(commandsWith(option, *command));
    }
    return names;
}

const CLI::App& programOf(const CLI::App& command)
{
    return command.get_parent() == nullptr ? command : programOf(*command.get_parent());
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
    const auto nearest = isLong ? support::nearest(std::string_view(name).substr(dashes.size()), known) : std::nullopt;
    const std::string hint = nearest ? "did you mean '" + dashes + std::string(*nearest) + "'?" : helpHint(command);
    const std::string others = commandsWith(name, programOf(command));
    return "unknown option '" + support::shown(name) + "'; " + (others.empty() ? hint : "it belongs to " + others);
}

std::string unknownCommand(const CLI::App& command, const std::string& word)
{
    std::vector<std::string_view> known;
    std::string list;
    for (const CLI::App* const subcommand : command.get_subcommands({})) {
        known.push_back(subcommand->get_name());
        list += (list.empty() ? "" : ", ") + subcommand->get_name();
    }
    return "unknown command '" + nameOf(command) + " " + support::shown(word) + "'"
        + suggestion(word, known, "; expected one of " + list);
}

/// Goes through the arguments as the parser does, from command to command.
class Walk {
public:
    explicit Walk(CLI::App& app)
        : m_command(&app)
    {
    }

    /// Goes on by a word. Returns what is wrong with it, if anything.
    std::optional<std::string> step(const std::string& word)
    {
        if (std::exchange(m_option, nullptr) != nullptr) {
            return std::nullopt; // its value
        }
        if (word.size() > 1 && word.front() == '-') {
            return stepIntoOption(word, word.substr(0, word.find('=')));
        }
        if (m_command->get_subcommands({}).empty()) {
            ++m_positionals;
            return std::nullopt;
        }
        return enter(word) ? std::nullopt : std::optional(unknownCommand(*m_command, word));
    }

    /// Goes on by words, up to one that is wrong. Returns what is wrong with it, if anything.
    std::optional<std::string> goThrough(const std::vector<std::string>& words)
    {
        for (const std::string& word : words) {
            if (word == "--" && !isValueNext()) {
                break;
            }
            if (auto unknown = step(word)) {
                return unknown;
            }
        }
        return std::nullopt;
    }

    CLI::App& command() const { return *m_command; }

    /// Whose value comes next: an option's, or a positional's; null where nothing is expected but options.
    CLI::Option* expected() const
    {
        const auto positionals = m_command->get_options([](const CLI::Option* option) { return option->get_positional(); });
        for (std::size_t index = 0; index < positionals.size() && m_option == nullptr; ++index) {
            const bool takesMany = positionals[index]->get_items_expected_max() > 1;
            if (index == m_positionals || (takesMany && index < m_positionals)) {
                return positionals[index];
            }
        }
        return m_option;
    }

    bool isValueNext() const { return m_option != nullptr; }

private:
    std::optional<std::string> stepIntoOption(const std::string& word, const std::string& name)
    {
        CLI::Option* const option = m_command->get_option_no_throw(name);
        if (option == nullptr) {
            return unknownOption(*m_command, name);
        }
        m_option = name == word && option->get_items_expected_min() > 0 ? option : nullptr;
        return std::nullopt;
    }

    bool enter(const std::string& word)
    {
        for (CLI::App* const subcommand : m_command->get_subcommands({})) {
            if (subcommand->get_name() == word) {
                m_command = subcommand;
                return true;
            }
        }
        return false;
    }

    CLI::App* m_command;
    CLI::Option* m_option = nullptr; ///< whose value comes next
    std::size_t m_positionals = 0;   ///< that have been passed
};

Words commandsOf(const CLI::App& command)
{
    Words names;
    for (const CLI::App* const subcommand : command.get_subcommands({})) {
        names.push_back(subcommand->get_name());
    }
    return names;
}

/// All values of an option that is written with an =, in front of each the option.
Words valuesBehind(const std::string& option, CLI::App& command)
{
    CLI::Option* const known = command.get_option_no_throw(option);
    Words all;
    for (const std::string& word : known == nullptr ? Words() : offeredFor(*known)) {
        all.push_back(word == anyFile || word.empty() ? word : option + "=" + word);
    }
    return all;
}

/// All that could stand where a walk has come to, whatever its beginning.
Words candidatesAt(const Walk& walk, const std::string& begun)
{
    const bool isOption = begun.starts_with('-');
    if (const std::size_t equals = begun.find('='); begun.starts_with("--") && equals != std::string::npos) {
        return valuesBehind(begun.substr(0, equals), walk.command());
    }
    CLI::Option* const expected = walk.expected();
    Words all = expected == nullptr || (isOption && !walk.isValueNext()) ? Words() : offeredFor(*expected);
    const bool isFile = std::ranges::find(all, anyFile) != all.end();
    if (walk.isValueNext() || (isFile && !isOption)) {
        return all;
    }
    std::ranges::copy(commandsOf(walk.command()), std::back_inserter(all));
    for (const CLI::Option* const option : walk.command().get_options()) {
        for (const std::string& name : option->get_lnames()) {
            all.push_back("--" + name);
        }
    }
    return all;
}

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
        return "unexpected word '" + support::shown(app.remaining(true).front()) + "'; " + helpHint(command);
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
    const std::optional<std::string_view> nearest = support::nearest(word, known);
    return nearest ? "; did you mean '" + std::string(*nearest) + "'?" : otherwise;
}

void requireKnown(CLI::App& app, const std::vector<std::string>& arguments)
{
    Walk walk(app);
    if (const auto unknown = walk.goThrough(arguments)) {
        throw UsageError(*unknown);
    }
}

std::string exitStatusHelp(const std::string& beginning, std::span<const ExitStatusText> texts)
{
    constexpr std::size_t columns = 80;
    std::string text = beginning;
    std::size_t lineBegin = 0;
    for (const auto& [status, meaning] : texts) {
        const bool isLast = status == texts.back().status;
        const std::string item = fmt::format("{} {}{}", static_cast<int>(status), meaning, isLast ? "." : ",");
        const bool fits = text.size() - lineBegin + 1 + item.size() <= columns;
        lineBegin = fits ? lineBegin : text.size() + 1;
        text += (fits ? " " : "\n") + item;
    }
    return text;
}

std::string explain(CLI::App& app, const std::vector<std::string>& arguments, const CLI::ParseError& error)
{
    Walk walk(app);
    const auto unknown = walk.goThrough(arguments);
    return unknown ? *unknown : reword(app, walk.command(), error);
}

std::string completions(CLI::App& app, const std::vector<std::string>& arguments)
{
    Walk walk(app);
    const bool isHelp = arguments.size() > 1 && arguments.front() == helpCommand;
    for (std::size_t index = isHelp ? 1 : 0; index + 1 < arguments.size(); ++index) {
        if (walk.step(arguments[index])) {
            return "";
        }
    }
    const std::string begun = arguments.empty() ? "" : arguments.back();
    std::string lines;
    for (const std::string& word : isHelp ? commandsOf(walk.command()) : candidatesAt(walk, begun)) {
        lines += !word.empty() && (word.starts_with(begun) || word == anyFile) ? word + "\n" : "";
    }
    return lines;
}

} // namespace sdc
