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
#include <sstream>
#include <system_error>

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
        throw ScenarioError(file.string() + ": is a folder; must be a file");
    }
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        throw ScenarioError(file.string() + ": cannot be read: " + std::generic_category().message(errno));
    }
    return stream;
}

constexpr std::size_t largestScenario_MiB = 1;
constexpr std::size_t largestRecording_MiB = 256; // ten million bins and more

std::string readWhole(const std::filesystem::path& file, std::size_t largest_MiB)
{
    std::ifstream stream = openFile(file);
    try {
        return support::readToEnd(stream, largest_MiB);
    } catch (const std::runtime_error& error) {
        throw ScenarioError(file.string() + ": " + error.what());
    }
}

/// Recordings of built-in scenarios are built in as well.
Recording builtInRecording(const std::string& file)
{
    const embedded::Text* text = findIn(embedded::recordings(), std::filesystem::path(file).stem().string());
    if (text == nullptr) {
        throw ScenarioError(file + ": no such built-in recording");
    }
    std::istringstream stream{std::string(text->text)};
    return readRecordedSweep(stream, file);
}

[[noreturn]] void refuseName(const std::string& name)
{
    std::vector<std::string_view> known;
    for (const embedded::Text& one : builtInScenarios()) {
        known.push_back(one.name);
    }
    const auto near = nearest(name, known);
    throw ScenarioError(name + ": is neither a built-in scenario nor a file; "
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
        return parse(builtIn->text, nameOrFile + ".json", builtInRecording);
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
    return parse(text, file, [&folder](const std::string& recording) {
        std::istringstream stream(readWhole(folder / recording, largestRecording_MiB));
        return readRecordedSweep(stream, recording);
    });
}

} // namespace simulator
