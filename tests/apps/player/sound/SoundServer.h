#pragma once

#include "ChildProcess.h"
#include "TestFolder.h"
#include "apps/player/sound/SoundTesting.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

// A PulseAudio of the test's own with outputs that nobody hears, "null1" being the default. All
// clients of this process use it.
class SoundServer
{
public:
    SoundServer()
    {
        setenv("PULSE_SERVER", ("unix:" + m_folder.Path("sock")).c_str(), 1);
        setenv("PULSE_RUNTIME_PATH", m_folder.Path("run").c_str(), 1);
    }

    ~SoundServer()
    {
        unsetenv("PULSE_SERVER");
        unsetenv("PULSE_RUNTIME_PATH");
    }

    // False, and a message, where there is none to be had.
    bool Start()
    {
        m_process = std::make_unique<ChildProcess>(
            std::vector<std::string> { "pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1",
                "-L",
                "module-native-protocol-unix auth-anonymous=1 socket=" + m_folder.Path("sock"),
                "-L", "module-null-sink sink_name=null1" },
            m_folder.Path("log"));
        const bool runs
            = WaitFor([&] { return Ask("info").find("null1") != std::string::npos; }, 20000);
        if (!runs)
            MESSAGE("skipped: pulseaudio can't be started: " << m_folder.Read("log"));
        return runs;
    }

    void Kill() { m_process.reset(); }

    // What pactl answers.
    static std::string Ask(const std::string& question)
    {
        std::string answer;
        FILE* pipe = popen(("LC_ALL=C timeout 5 pactl " + question + " 2>&1").c_str(), "r");
        std::array<char, 4096> part;
        while (const size_t size = pipe ? fread(part.data(), 1, part.size(), pipe) : 0)
            answer.append(part.data(), size);
        if (pipe)
            pclose(pipe);
        return answer;
    }

private:
    TestFolder m_folder;
    std::unique_ptr<ChildProcess> m_process;
};
