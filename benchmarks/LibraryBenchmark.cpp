// What it takes to load the module's library and to unload it, beside an empty one.

#include <benchmark/benchmark.h>

#include <dlfcn.h>

namespace {

void load(benchmark::State& state, const char* library)
{
    for ([[maybe_unused]] auto _ : state) {
        void* const handle = dlopen(library, RTLD_NOW | RTLD_LOCAL);
        if (handle == nullptr || dlclose(handle) != 0) {
            state.SkipWithError(dlerror());
            return;
        }
    }
}

BENCHMARK_CAPTURE(load, module, SDC_LIBRARY)->Name("library/module")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(load, empty, SDC_EMPTY_LIBRARY)->Name("library/empty")->Unit(benchmark::kMicrosecond);

} // namespace
