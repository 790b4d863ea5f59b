#include "apps/sdc/console/Console.h"

#include "apps/sdc/options/UsageText.h"
#include "simulator/Radios.h"
#include "support/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace sdc {

using support::shown;

Console::Console(const Site& site, const ConsoleSetup& setup, std::ostream& output, std::ostream& errors)
    : m_site(site)
    , m_clock(host::makeClock(setup.speed))
    , m_radios(site.radios(*m_clock))
    , m_terminal(m_radios.channels(), *m_clock)
    , m_setup(setup)
    , m_channel(setup.channel)
    , m_output(output)
    , m_errors(errors)
{
    m_terminal.controller(m_channel); // throws for a channel that there is not
    m_trace.emplace(setup.traceLevel);
}

const std::vector<Console::Verb>& Console::verbs()
{
    static const std::vector<Verb> all{
        {"channel-scan-start", "", 0, "start a channel scan", &Console::start},
        {"sub-band-scan-start", "", 0, "start a sub-band scan", &Console::start},
        {"scan-stop", "", 0, "stop the scan", &Console::stop},
        {"get-status", "", 0, "status and progress", &Console::status},
        {"get-result", "[COUNT]", 1, "the samples, or the first COUNT of them", &Console::result},
        {"get-scan-properties", "", 0, "ask the radio for its properties; the next start uses them", &Console::properties},
        {"wait", "", 0, "wait until the scan has ended and the receiver is back", &Console::wait},
        {"save", "FILE", 1, "write the last scan: .csv, .sweep, .txt (table), .svg, .png, else JSON", &Console::save,
            &Console::fileNames},
        {"plot", "[FILE]", 1, "draw the last scan, here or into a file: .svg, .png or .txt", &Console::plot,
            &Console::fileNames},
        {"hold", "", 0, "stop the clock: a scan stays in its settle delay", &Console::hold},
        {"release", "", 0, "let the clock go on", &Console::release},
        {"channel", "[NUMBER]", 1, "the radio channel that commands go to", &Console::channel, &Console::channelNumbers},
        {"fault", "OPERATION ACTION [CALLS [VALUE]]", 4, "make the next calls of a radio operation go wrong",
            &Console::fault, &Console::faultWords},
        {"trace", "LEVEL", 1, "show the controllers' trace up to a level, 0 to 7, on standard error", &Console::trace,
            &Console::traceLevels},
        {"help", "", 0, "this list", &Console::help},
        {"quit", "", 0, "end; so does the end of the input", &Console::quit},
    };
    return all;
}

ExitStatus Console::obey(LineSource& lines)
{
    m_lines = &lines;
    std::size_t number = 0;
    while (!m_isOver && m_output.flush()) {
        const std::optional<std::string> line = lines.next();
        if (!line) {
            break;
        }
        m_line = lines.isTyped() ? 0 : ++number;
        if (m_setup.isEchoed && !lines.isTyped()) {
            m_output << prompt << shown(*line) << '\n';
        }
        obey(*line);
    }
    endScans();
    return m_status;
}

void Console::obey(const std::string& line)
{
    try {
        if (line.size() > longestLine) {
            throw InvalidLine(fmt::format("the line is too long; expected {} bytes at most", longestLine));
        }
        const Words words = wordsOf(line);
        if (!words.empty()) {
            act(words);
        }
    } catch (const ConsoleError& error) {
        tellError(error.what(), error.status());
    } catch (const std::out_of_range& noChannel) {
        tellError(noChannel.what(), EXIT_USAGE);
    } catch (const std::runtime_error& thrown) { // by a peer, through the controller
        tellError(std::string("the call ended with an exception: ") + thrown.what(), EXIT_FAILED);
    }
}

void Console::act(const Words& words)
{
    const auto verb = std::ranges::find(verbs(), words.front(), &Verb::name);
    if (verb == verbs().end()) {
        std::vector<std::string_view> names;
        std::ranges::transform(verbs(), std::back_inserter(names), &Verb::name);
        throw InvalidLine("unknown command '" + shown(words.front()) + "'"
            + suggestion(words.front(), names, "; 'help' lists the commands"));
    }
    if (words.size() - 1 > verb->mostArguments) {
        throw InvalidLine("too many words; expected: " + std::string(verb->name) + " " + verb->arguments);
    }
    (this->*verb->action)(words);
}

/// What was answered before is seen before, where both go to one place.
void Console::tell(const std::string& text) const
{
    constexpr std::size_t longestText = 1000;
    m_output << std::flush;
    m_errors << "sdc: " << (m_line > 0 ? "line " + std::to_string(m_line) + ": " : "") << shown(text, longestText) << '\n'
             << std::flush;
}

void Console::tellError(const std::string& text, ExitStatus status)
{
    tell(text);
    m_status = m_status == EXIT_COMPLETE ? status : m_status;
    m_isOver = m_isOver || m_setup.endsAtError;
}

Completion Console::complete(const std::string& begun) const
{
    SplitLine split = splitLine(begun);
    if (split.hasRemark) {
        return {};
    }
    Completion completion{.begin = split.endsInWord ? split.lastBegins : begun.size(), .words = {}};
    if (!split.endsInWord) {
        split.words.emplace_back();
    }
    completion.words = offered(split.words);
    std::erase_if(completion.words, [&](const std::string& word) { return !word.starts_with(split.words.back()); });
    return completion;
}

/// In the place of the last word, the beginning of which need not be that of all.
Words Console::offered(const Words& words) const
{
    Words all;
    if (words.size() == 1) {
        std::ranges::transform(verbs(), std::back_inserter(all), &Verb::name);
        return all;
    }
    const auto verb = std::ranges::find(verbs(), words.front(), &Verb::name);
    const bool isOffering = verb != verbs().end() && verb->offer != nullptr && words.size() - 1 <= verb->mostArguments;
    return isOffering ? (this->*verb->offer)(words) : all;
}

void Console::help(const Words&)
{
    constexpr std::size_t width = 80;
    constexpr std::size_t column = 21; // of what it does; a usage that is longer has a line of its own
    for (const Verb& verb : verbs()) {
        std::string usage = std::string(verb.name) + (*verb.arguments != '\0' ? " " : "") + verb.arguments;
        if (usage.size() + 1 >= column) {
            m_output << usage << '\n';
            usage.clear();
        }
        for (const std::string& line : support::wrapped({verb.help}, width - column)) {
            m_output << fmt::format("{:<{}}{}\n", std::exchange(usage, ""), column, line);
        }
    }
}

void Console::quit(const Words&)
{
    m_isOver = true;
}

} // namespace sdc
