#include "foundation/IOQNamedLocks.h"
#include "foundation/OQLog.h"
#include "siblings/tools/ToolsTesting.h"

#include <atomic>
#include <thread>
#include <vector>

TEST_CASE("Threads share the settings, the log and the translator")
{
    constexpr int threads = 4;
    constexpr int writes = 25;
    TestTools tools;
    IOQLog* log = tools->GetLog(1);
    {
        std::vector<std::jthread> running;
        for (int thread = 0; thread < threads; ++thread) {
            running.emplace_back([&, thread] {
                const OQString path = u"Shared\\" + OQString::FromUtf8(std::to_string(thread % 2));
                const auto key = tools.Key(path.GetText());
                for (int i = 0; i < writes; ++i) {
                    const OQString name
                        = OQString::FromUtf8(std::to_string(thread) + "-" + std::to_string(i));
                    key->SetInt(name.GetText(), i);
                    const OQFormatArgument argument(key->GetInt(name.GetText(), -1));
                    log->Write(OQLogError, u"Test", u"%d", &argument, 1);
                    TextOf([&](IOQDllString& text) { tools->GetTranslator(1)->GetLanguage(text); });
                }
            });
        }
    }
    for (int thread = 0; thread < threads; ++thread) {
        const auto key = tools.Key(thread % 2 ? u"Shared\\1" : u"Shared\\0", false);
        for (int i = 0; i < writes; ++i) {
            const OQString name
                = OQString::FromUtf8(std::to_string(thread) + "-" + std::to_string(i));
            CHECK(key->GetInt(name.GetText(), -1) == i);
        }
    }
    const std::string lines = tools.folder.Read("state/pxvis/pxvis.log");
    CHECK(std::count(lines.begin(), lines.end(), '\n') == threads * writes);
}

TEST_CASE("A lock by name has one holder among the threads of a process")
{
    constexpr int threads = 4;
    constexpr int turns = 25;
    TestTools tools;
    IOQNamedLocks* locks = tools->GetNamedLocks(1);
    std::atomic<int> inside = 0;
    std::atomic<int> taken = 0;
    {
        std::vector<std::jthread> running;
        for (int thread = 0; thread < threads; ++thread) {
            running.emplace_back([&] {
                for (int i = 0; i < turns; ++i) {
                    const std::unique_ptr<IOQNamedLock> held(locks->Acquire(u"One", 20'000));
                    CHECK(held);
                    CHECK(++inside == 1);
                    ++taken;
                    --inside;
                }
            });
        }
    }
    CHECK(taken == threads * turns);
}
