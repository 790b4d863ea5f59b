#include "tests/support/Callbacks.h"

#include "host/ModuleManager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>

namespace {

using host::ModuleManager;
using host::PhaseFailure;
using testing::ElementsAre;
using testing::IsEmpty;

using Calls = std::vector<std::string>;

/// Writes down its callbacks; answers 0, or what it is told to.
class RecordingModule : public ModuleInterface {
public:
    RecordingModule(const std::string& name, Calls& calls)
        : ModuleInterface(1, name, 0, 0, nullptr, 0)
        , m_calls(calls)
    {
    }

    std::map<std::string, unsigned int> answers;

    unsigned int onModuleRegisterStorageObjects() override { return answer("onModuleRegisterStorageObjects"); }
    unsigned int onModuleInit() override { return answer("onModuleInit"); }
    unsigned int onPhaseModuleStorageObjectsRetrieved() override { return answer("onPhaseModuleStorageObjectsRetrieved"); }
    unsigned int onModuleRegisterImTi() override { return answer("onModuleRegisterImTi"); }
    unsigned int onPhasePreFrameformatLoad() override { return answer("onPhasePreFrameformatLoad"); }
    unsigned int onPhaseFrameformatLoad() override { return answer("onPhaseFrameformatLoad"); }
    unsigned int onPhasePostFrameformatLoad() override { return answer("onPhasePostFrameformatLoad"); }
    unsigned int onPhaseEndFrameformatLoad() override { return answer("onPhaseEndFrameformatLoad"); }
    unsigned int onPhaseStart() override { return answer("onPhaseStart"); }
    unsigned int onPhaseStop() override { return answer("onPhaseStop"); }

private:
    unsigned int answer(const std::string& phase)
    {
        m_calls.push_back(moduleName() + "." + phase);
        const auto told = answers.find(phase);
        return told == answers.end() ? 0 : told->second;
    }

    Calls& m_calls;
};

const Calls startPhases = {"onModuleRegisterStorageObjects", "onModuleInit", "onPhaseModuleStorageObjectsRetrieved",
    "onModuleRegisterImTi", "onPhasePreFrameformatLoad", "onPhaseFrameformatLoad", "onPhasePostFrameformatLoad",
    "onPhaseEndFrameformatLoad", "onPhaseStart"};

std::vector<std::string> asTexts(const std::vector<PhaseFailure>& failures)
{
    std::vector<std::string> texts;
    for (const PhaseFailure& failure : failures) {
        texts.push_back(failure.module + "." + failure.phase + "=" + std::to_string(failure.result));
    }
    return texts;
}

class Modules : public testing::Test {
protected:
    ModuleManager& manager = ModuleManager::instance();
    Calls calls;
};

TEST_F(Modules, areListedInTheOrderOfTheirConstructionWhileTheyLive)
{
    ASSERT_THAT(manager.modules(), IsEmpty());
    auto first = std::make_unique<RecordingModule>("first", calls);
    const RecordingModule second("second", calls);
    EXPECT_THAT(manager.modules(), ElementsAre(first.get(), &second));
    first.reset();
    EXPECT_THAT(manager.modules(), ElementsAre(&second));
}

TEST_F(Modules, goThroughEachStartPhaseTogether)
{
    const RecordingModule first("first", calls);
    const RecordingModule second("second", calls);
    EXPECT_THAT(manager.start(), IsEmpty());
    Calls expected;
    for (const std::string& phase : startPhases) {
        expected.push_back("first." + phase);
        expected.push_back("second." + phase);
    }
    EXPECT_EQ(calls, expected);
}

TEST_F(Modules, areLeftOutOfThePhasesAfterOneThatTheyFailed)
{
    for (std::size_t failing = 0; failing < startPhases.size(); ++failing) {
        calls.clear();
        RecordingModule bad("bad", calls);
        const RecordingModule good("good", calls);
        bad.answers[startPhases[failing]] = 32768;
        EXPECT_THAT(asTexts(manager.start()), ElementsAre("bad." + startPhases[failing] + "=32768"));
        Calls expected;
        for (std::size_t phase = 0; phase < startPhases.size(); ++phase) {
            if (phase <= failing) {
                expected.push_back("bad." + startPhases[phase]);
            }
            expected.push_back("good." + startPhases[phase]);
        }
        EXPECT_EQ(calls, expected);
    }
}

TEST_F(Modules, failByAnAnswerOf32768OrMoreOnly)
{
    RecordingModule one("one", calls);
    RecordingModule two("two", calls);
    one.answers["onModuleInit"] = 32767;
    two.answers["onModuleInit"] = 4294967295U;
    EXPECT_THAT(asTexts(manager.start()), ElementsAre("two.onModuleInit=4294967295"));
}

TEST_F(Modules, stopInReverseOrderAFailedOneToo)
{
    RecordingModule first("first", calls);
    RecordingModule second("second", calls);
    const RecordingModule third("third", calls);
    first.answers["onModuleInit"] = 32768;
    second.answers["onPhaseStop"] = 32770;
    manager.start();
    calls.clear();
    EXPECT_THAT(asTexts(manager.stop()), ElementsAre("second.onPhaseStop=32770"));
    EXPECT_THAT(calls, ElementsAre("third.onPhaseStop", "second.onPhaseStop", "first.onPhaseStop"));
}

class PlainModule : public ModuleInterface {
public:
    using ModuleInterface::ModuleInterface;
};

TEST(PlainModule, keepsWhatItWasConstructedWith)
{
    constexpr std::uint32_t values[] = {11, 16};
    const PlainModule module(126007, "name", 7, 3, values, 2);
    EXPECT_EQ(module.moduleId(), 126007U);
    EXPECT_EQ(module.moduleName(), "name");
    EXPECT_EQ(module.radioChannel(), 7U);
    EXPECT_EQ(module.options(), 3U);
    EXPECT_EQ(module.values(), values);
    EXPECT_EQ(module.nrOfValues(), 2U);
}

TEST(PlainModule, answersEveryCallbackWithSuccess)
{
    PlainModule module(1, "name", 0, 0, nullptr, 0);
    EXPECT_EQ(module.onPhaseActivation(1, CALLBACK_PRIORITY_LAST), 0U);
    EXPECT_EQ(module.onModuleInit(), 0U);
    EXPECT_EQ(module.onPhaseStop(), 0U);
    for (const auto callback : tests::inheritedCallbacks) {
        EXPECT_EQ((module.*callback)(), 0U);
    }
}

} // namespace
