#pragma once

#include "VisTesting.h"

#include <pxvis/IOQMenu.h>
#include <pxvis/IOQVisualization.h>
#include <pxvis/IOQVisualizationHost.h>

#include <cstdio>

#include <map>
#include <memory>
#include <string>

// A host that a test sets as it likes, and what it counts.
struct TestHost final : IOQVisualizationHost
{
    struct Connection final : IOQHostConnection
    {
        explicit Connection(TestHost& host)
            : host(host)
        {
        }

        ~Connection() override { ++host.connectionsEnded; }

        void Refresh() override { }

        const int8_t* GetWaveform() override { return nullptr; }

        const uint8_t* GetSpectrum() override { return nullptr; }

        char16_t* GetProperty(const char16_t* name) override
        {
            if (std::u16string(name) == u"Legacy Data Object" && host.givesData) {
                ++host.dataGiven;
                host.audio = new TestAudio;
                host.audio->onRefresh = host.onRefresh;
                char digits[32];
                std::snprintf(digits, sizeof digits, "0x%llX",
                    static_cast<unsigned long long>(reinterpret_cast<uintptr_t>(host.audio)));
                const std::string text = digits;
                return SysAllocString(std::u16string(text.begin(), text.end()).c_str());
            }
            const auto property = host.properties.find(name);
            return property == host.properties.end() ? nullptr
                                                     : SysAllocString(property->second.c_str());
        }

        const void* GetCoverImage() override { return nullptr; }

        TestHost& host;
    };

    IOQHostConnection* Connect(OQVisualizationBase*) override
    {
        ++connections;
        return refusesConnection ? nullptr : new Connection(*this);
    }

    std::map<std::u16string, std::u16string> properties;
    TestAudio* audio = nullptr; // the newest one; the engine's
    std::function<void()> onRefresh; // of each audio object from now on
    bool givesData = true;
    bool refusesConnection = false;
    int connections = 0;
    int connectionsEnded = 0;
    int dataGiven = 0;
};

inline std::u16string PropertyOf(IOQVisualization& visualization, const char16_t* name)
{
    const std::unique_ptr<char16_t, decltype(&SysFreeString)> text(
        visualization.GetProperty(name), SysFreeString);
    return text ? std::u16string(text.get()) : u"(null)";
}
