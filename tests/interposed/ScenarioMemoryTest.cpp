// What it takes to judge a scenario, however it is made: memory in proportion to the text, whether it can work or not.

#include "simulator/scenario/Scenario.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <malloc.h>
#include <new>
#include <string>

namespace {

std::atomic<std::size_t> inUse{0};
std::atomic<std::size_t> most{0};

void* allocate(std::size_t size)
{
    void* const memory = std::malloc(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    const std::size_t now = inUse += malloc_usable_size(memory);
    most = std::max(most.load(), now);
    return memory;
}

void release(void* memory) noexcept
{
    inUse -= malloc_usable_size(memory);
    std::free(memory);
}

} // namespace

void* operator new(std::size_t size)
{
    return allocate(size);
}
void* operator new[](std::size_t size)
{
    return allocate(size);
}
void operator delete(void* memory) noexcept
{
    release(memory);
}
void operator delete[](void* memory) noexcept
{
    release(memory);
}
void operator delete(void* memory, std::size_t) noexcept
{
    release(memory);
}
void operator delete[](void* memory, std::size_t) noexcept
{
    release(memory);
}

namespace {

std::string repeated(const std::string& begin, const std::string& piece, const std::string& end)
{
    constexpr std::size_t mebibyte = 1U << 20U;
    std::string text = begin;
    while (text.size() + piece.size() + end.size() < mebibyte) {
        text += piece;
    }
    return text + end;
}

/// The default scenario with other emitters, which takes as many channels as there is room for.
std::string withEmitters(const std::string& emitters)
{
    const std::string built(std::ranges::find(simulator::builtInScenarios(), "6l-clean", &embedded::Text::name)->text);
    const std::size_t channel = built.find('{', built.find("\"channels\""));
    const std::size_t list = built.find('{', built.find("\"emitters\""));
    const std::string before = built.substr(channel, list - channel);
    const std::size_t number = before.find("1,");
    std::string text = built.substr(0, channel);
    for (int index = 0; index < 256 && text.size() + before.size() + emitters.size() < (1U << 20U); ++index) {
        text += index == 0 ? "" : ",";
        text += before.substr(0, number) + std::to_string(index) + before.substr(number + 1) + emitters + "}";
    }
    return text + "]}";
}

TEST(JudgingAScenario, takesNoMoreThanTenTimesItsSize)
{
    std::string carriers = R"({"carriers": [)";
    std::string rows = carriers;
    for (int index = 0; index < 30; ++index) {
        const std::string carrier = R"({"centre_kHz":1,"level_dBm":1,"symbol_rate_kBd":1,"roll_off":1)";
        carriers += (index == 0 ? "" : ",") + carrier + "}";
        rows += (index == 0 ? "" : ",") + carrier + R"(,"row":{"count":1000,"spacing_kHz":1}})";
    }
    const std::string texts[] = {
        withEmitters(carriers + "]}"),
        withEmitters(rows + "]}"),
        repeated("", "[", ""),
        repeated("", R"({"name":)", ""),
        repeated(R"({"a":[)", "{},", "{}]}"),
        repeated(R"({"sources":[)", "0,", "0]}"),
        repeated(R"({"sources":[)", R"("",)", R"(""]})"),
        repeated(R"({"channels":[)", "{},", "{}]}"),
        repeated("{", R"("a":0,)", R"("b":0})"),
        repeated(R"({"name":")", "a", R"("})"),
        repeated(R"({"name":")", R"(\u009B)", R"("})"),
    };
    int good = 0;
    for (const std::string& text : texts) {
        most = inUse.load();
        const std::size_t before = most;
        try {
            simulator::parseScenario(text, "input.json");
            ++good;
        } catch (const simulator::ScenarioError& error) {
            EXPECT_LT(std::string_view(error.what()).size(), 5000U);
        }
        EXPECT_LT(most - before, 10 * text.size()) << text.substr(0, 60);
    }
    EXPECT_EQ(good, 2);
}

} // namespace
