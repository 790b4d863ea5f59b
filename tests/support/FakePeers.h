#pragma once

#include "tests/support/CallLog.h"

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "Platform/Radio/IFrameFormat.h"
#include "Platform/Radio/IFrequencyController.h"
#include "Platform/Radio/IRadio.h"
#include "Platform/Radio/IRadioCapability.h"
#include "Platform/Radio/IRssiHandler.h"
#include "Platform/Radio/ISystemPowerController.h"

#include <functional>
#include <memory>
#include <string>

namespace support {

/// The fakes below log every call, then run its hook if one is set (which may throw, wait or change the answers), then
/// answer. Set answers and hooks while no scan runs.
class FakeSystemPowerController : public ISystemPowerController {};

class FakeFrameFormat : public IFrameFormat {
public:
    explicit FakeFrameFormat(CallLog& log)
        : m_log(log)
    {
    }

    std::uint32_t getChannelSpacing() override
    {
        m_log.add("IFrameFormat.getChannelSpacing");
        if (onGetChannelSpacing) {
            onGetChannelSpacing();
        }
        return channelSpacing_kHz;
    }

    std::uint32_t channelSpacing_kHz = 28000;
    std::function<void()> onGetChannelSpacing;

private:
    CallLog& m_log;
};

class FakeFrequencyController : public IFrequencyController {
public:
    explicit FakeFrequencyController(CallLog& log)
        : m_log(log)
    {
    }

    std::uint32_t getRxFrequency() override
    {
        m_log.add("IFrequencyController.getRxFrequency");
        if (onGetRxFrequency) {
            onGetRxFrequency();
        }
        return rxFrequency_kHz;
    }

    std::int32_t setRxFrequency(std::uint32_t frequency_kHz, bool flag) override
    {
        m_log.add("IFrequencyController.setRxFrequency " + std::to_string(frequency_kHz) + (flag ? " true" : " false"));
        return onSetRxFrequency ? onSetRxFrequency(frequency_kHz) : 0;
    }

    std::uint32_t rxFrequency_kHz = 18000000;
    std::function<void()> onGetRxFrequency;
    std::function<std::int32_t(std::uint32_t frequency_kHz)> onSetRxFrequency;

private:
    CallLog& m_log;
};

class FakeRssiHandler : public IRssiHandler {
public:
    explicit FakeRssiHandler(CallLog& log)
        : m_log(log)
    {
    }

    std::int32_t readRssi(std::int32_t& rssi) override
    {
        m_log.add("IRssiHandler.readRssi");
        if (onReadRssi) {
            return onReadRssi(rssi);
        }
        rssi = answer;
        return 0;
    }

    std::int32_t answer = -4500;
    std::function<std::int32_t(std::int32_t& rssi)> onReadRssi;

private:
    CallLog& m_log;
};

class FakeRadioCapability : public IRadioCapability {
public:
    explicit FakeRadioCapability(CallLog& log)
        : m_log(log)
    {
    }

    RadioFrequencyParameters getFrequencyParameters() override
    {
        m_log.add("IRadioCapability.getFrequencyParameters");
        if (onGetFrequencyParameters) {
            onGetFrequencyParameters();
        }
        return parameters;
    }

    /// 18 GHz band, 17700000 to 19700000 kHz, raster of 250 kHz from 17000000 kHz; the words not to be read are set too.
    RadioFrequencyParameters parameters{18, {1, 2, 3}, 17700000, 19700000, 250, 7, 17000000, {9, 10}, 2800, 10800};
    std::function<void()> onGetFrequencyParameters;

private:
    CallLog& m_log;
};

/// The radio and, through it, all properties providers that it has handed out: they answer from the radio's members.
class FakeRadio : public IRadio {
public:
    explicit FakeRadio(CallLog& log)
        : m_log(log)
    {
    }

    std::unique_ptr<IRadioPropertiesProvider> createPropertiesProvider() override
    {
        m_log.add("IRadio.createPropertiesProvider");
        if (onCreatePropertiesProvider) {
            onCreatePropertiesProvider();
        }
        return std::make_unique<Provider>(*this);
    }

    SDCProperties properties{};
    std::string typeText = "KLM6";
    std::int32_t propertiesResult = 0;
    std::function<void()> onCreatePropertiesProvider;
    std::function<void()> onGetProperties;
    std::function<void()> onGetUnitInfo;

private:
    class Provider : public IRadioPropertiesProvider {
    public:
        explicit Provider(FakeRadio& radio)
            : m_radio(radio)
        {
        }
        ~Provider() override { m_radio.m_log.add("provider.destroyed"); }

        std::int32_t getProperties(SDCProperties& record) override
        {
            m_radio.m_log.add("provider.getProperties");
            if (m_radio.onGetProperties) {
                m_radio.onGetProperties();
            }
            record = m_radio.properties;
            return m_radio.propertiesResult;
        }

        void getUnitInfo(UnitInfo& unitInfo) override
        {
            m_radio.m_log.add("provider.getUnitInfo with \"" + unitInfo.typeText + "\"");
            if (m_radio.onGetUnitInfo) {
                m_radio.onGetUnitInfo();
            }
            unitInfo.typeText = m_radio.typeText;
        }

    private:
        FakeRadio& m_radio;
    };

    CallLog& m_log;
};

/// One set of peers, as other modules would register it for a channel.
class FakePeers {
public:
    explicit FakePeers(CallLog& log);
    ~FakePeers();
    FakePeers(const FakePeers&) = delete;
    FakePeers& operator=(const FakePeers&) = delete;

    /// Registers all six for a channel, or all but one of them.
    void registerFor(std::uint32_t channel, const IInterface* butNot = nullptr);
    void unregister();

    FakeSystemPowerController systemPowerController;
    FakeFrameFormat frameFormat;
    FakeFrequencyController frequencyController;
    FakeRssiHandler rssiHandler;
    FakeRadioCapability radioCapability;
    FakeRadio radio;

private:
    std::vector<std::string> m_names;
};

} // namespace support
