#include "simulator/scenario/Scenario.h"

#include "simulator/scenario/JsonText.h"
#include "simulator/scenario/RecordedSweep.h"
#include "simulator/scenario/ScenarioReader.h"
#include "simulator/scenario/SchemaCheck.h"
#include "simulator/scenario/Suggestion.h"
#include "support/Text.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <system_error>
#include <utility>

namespace embedded {

std::span<const Text> scenarios();
std::span<const Text> recordings();
std::span<const Text> scenarioSchemas();

} // namespace embedded

namespace simulator {

namespace {

const embedded::Text* findIn(std::span<const embedded::Text> texts, std::string_view name)
{
    const auto text = std::find_if(texts.begin(), texts.end(), [name](const auto& one) { return one.name == name; });
    return text == texts.end() ? nullptr : &*text;
}

[[noreturn]] void refuse(const std::string& file, const std::vector<std::string>& findings)
{
    throw ScenarioError(support::listed(file, findings));
}

Scenario parse(std::string_view text, const std::string& file, const RecordingReader& readRecording)
try {
    static const nlohmann::json schema = parseJsonText(scenarioSchema());
    const nlohmann::json document = parseJsonText(text);
    if (const std::vector<std::string> findings = schemaFindings(document, schema); !findings.empty()) {
        refuse(file, findings);
    }
    ReadScenario read;
    try {
        read = readScenario(document, readRecording);
    } catch (const ScenarioError& error) {
        refuse(file, {error.what()});
    }
    if (const std::vector<std::string> findings = scenarioFindings(read); !findings.empty()) {
        refuse(file, findings);
    }
    Scenario scenario{read.name, read.description, read.sources, {}};
    for (ReadChannel& one : read.channels) {
        scenario.channels.push_back(std::move(one.channel));
    }
    return scenario;
} catch (const JsonTextError& error) {
    refuse(file, {error.what()});
}

std::ifstream openFile(const std::filesystem::path& file)
{
    std::error_code error;
    if (std::filesystem::is_directory(file, error)) {
        throw ScenarioError(support::shown(file.string()) + ": is a folder; must be a file");
    }
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        throw ScenarioError(support::shown(file.string()) + ": cannot be read: " + std::generic_category().message(errno));
    }
    return stream;
}

constexpr std::size_t largestScenario_MiB = 1;
constexpr std::size_t largestRecordings_MiB = 64; // ten million bins

std::string readWhole(const std::filesystem::path& file, std::size_t largest_MiB)
{
    std::ifstream stream = openFile(file);
    try {
        return support::readToEnd(stream, largest_MiB);
    } catch (const std::runtime_error& error) {
        throw ScenarioError(support::shown(file.string()) + ": " + error.what());
    }
}

/// The recordings that a scenario names. Each is read once, whoever shows it, and all of them together are bounded.
class Recordings {
public:
    /// @param textOf  finds a recording by its name
    explicit Recordings(std::function<std::string(const std::string& name)> textOf)
        : m_textOf(std::move(textOf))
    {
    }

    const Recording& operator()(const std::string& name)
    {
        const std::string key = std::filesystem::path(name).lexically_normal().string();
        const auto known = m_read.find(key);
        return known != m_read.end() ? known->second : m_read.emplace(key, read(name)).first->second;
    }

private:
    Recording read(const std::string& name)
    {
        const std::string text = m_textOf(name);
        m_bytes += text.size();
        if (m_bytes > largestRecordings_MiB << 20U) {
            throw ScenarioError(support::shown(name) + ": the recordings of the scenario are larger than "
                + std::to_string(largestRecordings_MiB) + " MiB together; must be smaller");
        }
        Recording recording = readRecordedSweep(text, support::shown(name), mostRecordedBins - m_bins);
        m_bins += recording.bins->count();
        return recording;
    }

    std::function<std::string(const std::string&)> m_textOf;
    std::map<std::string, Recording> m_read;
    std::size_t m_bytes = 0;
    std::size_t m_bins = 0;
};

/// Recordings of built-in scenarios are built in as well.
std::string builtInRecording(const std::string& file)
{
    const embedded::Text* text = findIn(embedded::recordings(), std::filesystem::path(file).stem().string());
    if (text == nullptr) {
        throw ScenarioError(support::shown(file) + ": no such built-in recording");
    }
    return std::string(text->text);
}

[[noreturn]] void refuseName(const std::string& name)
{
    std::vector<std::string_view> known;
    for (const embedded::Text& one : builtInScenarios()) {
        known.push_back(one.name);
    }
    const auto near = nearest(name, known);
    throw ScenarioError(support::shown(name) + ": is neither a built-in scenario nor a file; "
        + (near ? "did you mean '" + std::string(*near) + "'? " : std::string())
        + "'sdc scenarios list' lists the built-in ones");
}

} // namespace

std::span<const embedded::Text> builtInScenarios()
{
    return embedded::scenarios();
}

std::string_view scenarioSchema()
{
    return embedded::scenarioSchemas().front().text;
}

Scenario loadScenario(const std::string& nameOrFile)
{
    if (const embedded::Text* builtIn = findIn(builtInScenarios(), nameOrFile)) {
        return parse(builtIn->text, nameOrFile + ".json", Recordings(builtInRecording));
    }
    std::error_code error;
    if (nameOrFile.empty() || !std::filesystem::exists(nameOrFile, error)) {
        refuseName(nameOrFile);
    }
    return parseScenario(readWhole(nameOrFile, largestScenario_MiB), nameOrFile);
}

Scenario parseScenario(std::string_view text, const std::string& file)
{
    const std::filesystem::path folder = std::filesystem::path(file).parent_path();
    return parse(text, file,
        Recordings([&folder](const std::string& name) { return readWhole(folder / name, largestRecordings_MiB); }));
}

} // namespace simulator
