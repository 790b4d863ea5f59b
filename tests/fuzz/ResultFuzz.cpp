// Saved results: named with what is wrong in them, or read, written and drawn.

#include "apps/sdc/compare/Comparison.h"
#include "apps/sdc/compare/ComparisonForm.h"
#include "apps/sdc/compare/ComparisonText.h"
#include "apps/sdc/formats/Formats.h"
#include "apps/sdc/plot/Plot.h"
#include "apps/sdc/result/ResultFile.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <string_view>

namespace {

std::string textOf(const sdc::ScanResult& result)
{
    std::ostringstream text;
    sdc::writeJson(text, result);
    return text.str();
}

/// What is written of a result is a result, and written the same way again.
bool isKept(const sdc::ScanResult& result)
{
    const std::string text = textOf(result);
    return textOf(sdc::parseResult(text, "output.json")) == text;
}

bool isError(const std::string& text)
{
    constexpr std::size_t longest = 11 * 1000; // lines of the first few errors
    return text.starts_with("input.json: ") && text.size() < longest && text.find('\033') == std::string::npos;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    bool isRight = false;
    try {
        const auto result = sdc::parseResult({reinterpret_cast<const char*>(data), size}, "input.json");
        isRight = isKept(result) && !sdc::plotProgram(result, {}).empty();
        std::ostringstream comparison;
        const sdc::Comparison same = sdc::compare({"a", result}, {"b", result}, {});
        isRight = isRight && !same.isDifferent();
        sdc::writeComparison(comparison, same);
        sdc::writeComparisonJson(comparison, same);
    } catch (const sdc::ResultError& error) {
        isRight = isRight || isError(error.what()); // a result without samples has nothing to compare
    }
    if (!isRight) {
        std::fputs("neither a result nor errors that can be shown\n", stderr);
        std::abort();
    }
    return 0;
}
