// The module library as a host treats it that was not linked with it: loaded, used, unloaded, and loaded again.

#include "tests/support/ControllerInspector.h"
#include "tests/support/FakePeers.h"
#include "tests/support/Waiting.h"

#include "host/Clock.h"
#include "host/ModuleManager.h"
#include "host/Trace.h"

#include "Platform/Host/InterfaceBroker.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <mutex>
#include <new>
#include <string>
#include <vector>

namespace {

constexpr RadioChannel channel{7};

bool isMapped()
{
    std::ifstream maps("/proc/self/maps");
    std::string line;
    while (std::getline(maps, line)) {
        if (line.find("libZrpSpectrumDiagnosticsController.so") != std::string::npos) {
            return true;
        }
    }
    return false;
}

/// The library for as long as it lives.
class LoadedLibrary {
public:
    LoadedLibrary()
        : m_handle(dlopen(SDC_LIBRARY, RTLD_NOW | RTLD_LOCAL))
        , m_error(m_handle == nullptr ? dlerror() : "")
    {
    }
    ~LoadedLibrary() { EXPECT_TRUE(m_handle != nullptr && dlclose(m_handle) == 0); }
    LoadedLibrary(const LoadedLibrary&) = delete;
    LoadedLibrary& operator=(const LoadedLibrary&) = delete;

    void* symbol(const char* name) const { return m_handle == nullptr ? nullptr : dlsym(m_handle, name); }
    const std::string& error() const { return m_error; }

private:
    void* m_handle;
    std::string m_error;
};

/// A controller in memory of the host's, built by the library's constructor and destroyed through its virtual destructor.
class LoadedController {
public:
    explicit LoadedController(void* constructorSymbol)
    {
        using Constructor = void (*)(void* memory, RadioChannel);
        reinterpret_cast<Constructor>(constructorSymbol)(m_memory, channel);
    }
    ~LoadedController() { module().~ModuleInterface(); }
    LoadedController(const LoadedController&) = delete;
    LoadedController& operator=(const LoadedController&) = delete;

    ModuleInterface& module() { return controller(); }

    /// Starts a scan at a moment when the worker waits or has not begun, so that its wake-up cannot be lost.
    std::int32_t startScan(ISpectrumDiagnosticsController& interface)
    {
        const std::lock_guard<std::mutex> workerWaits(ControllerInspector(controller()).m_mutex());
        return interface.setCommand(SDC_CMD_CHANNEL_SCAN_START, 0);
    }

private:
    SpectrumDiagnosticsController& controller()
    {
        return *std::launder(reinterpret_cast<SpectrumDiagnosticsController*>(m_memory));
    }

    alignas(SpectrumDiagnosticsController) unsigned char m_memory[sizeof(SpectrumDiagnosticsController)];
};

class Load : public testing::Test {
protected:
    /// The controller's interface as any other module finds it.
    static ISpectrumDiagnosticsController* published()
    {
        const auto& interfaces = InterfaceBroker::getInstance().interfaces();
        const auto entry = interfaces.find("ISpectrumDiagnosticsController_7");
        return entry == interfaces.end() ? nullptr : dynamic_cast<ISpectrumDiagnosticsController*>(entry->second);
    }

    /// Loads the library, brings a controller up, scans with it, and takes both down again.
    void loadAndScan()
    {
        const LoadedLibrary library;
        void* const constructorSymbol = library.symbol("_ZN29SpectrumDiagnosticsControllerC1E12RadioChannel");
        ASSERT_NE(constructorSymbol, nullptr) << library.error();
        EXPECT_TRUE(isMapped());
        expectTraceComponent();
        LoadedController controller(constructorSymbol);
        ASSERT_EQ(controller.module().onModuleInit(), 0U);
        ISpectrumDiagnosticsController* const interface = published();
        ASSERT_NE(interface, nullptr);
        ASSERT_EQ(controller.startScan(*interface), SDC_RC_OK);
        EXPECT_TRUE(tests::eventually([&] { return interface->getStatus() == SDC_STATUS_CHANNEL_SCAN_FINISHED; }));
        expectSamples(*interface);
    }

    /// The library's own: this program has none.
    static void expectTraceComponent()
    {
        const std::vector<host::TraceComponentInfo> components = host::trace::components();
        ASSERT_EQ(components.size(), 1U);
        EXPECT_EQ(components[0].name, "ZRP.SDC");
        EXPECT_EQ(components[0].defaultLevel, 3U);
        EXPECT_EQ(components[0].hdrOption, 256U);
    }

    void expectSamples(ISpectrumDiagnosticsController& interface) const
    {
        std::int32_t count = 1000;
        std::vector<SDCResult> samples(1000);
        ASSERT_EQ(interface.getResult(&count, samples.data()), SDC_RC_OK);
        ASSERT_GT(count, 1);
        samples.resize(static_cast<std::size_t>(count));
        const auto isReading = [this](const SDCResult& sample) { return sample.rssi == peers.rssiHandler.answer; };
        EXPECT_TRUE(std::ranges::all_of(samples, isReading));
        EXPECT_EQ(peers.frequencyController.receiver_kHz, peers.frequencyController.rxFrequency_kHz);
    }

    tests::FakePeers peers;

private:
    host::VirtualClock m_clock;
    host::SleepServiceInForce m_sleepInForce{m_clock};
};

TEST_F(Load, libraryCanBeUsedAndUnloadedAHundredTimes)
{
    peers.registerFor(7);
    const auto published = InterfaceBroker::getInstance().interfaces().size();
    EXPECT_TRUE(host::trace::components().empty());
    for (int round = 1; round <= 100 && !HasFailure(); ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        EXPECT_FALSE(isMapped());
        loadAndScan();
        EXPECT_FALSE(isMapped());
        EXPECT_EQ(InterfaceBroker::getInstance().interfaces().size(), published);
        EXPECT_TRUE(host::ModuleManager::instance().modules().empty());
    }
}

} // namespace
