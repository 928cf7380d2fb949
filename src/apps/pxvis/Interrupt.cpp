#include "apps/pxvis/Interrupt.h"

#include <climits>
#include <csignal>
#include <cstring>
#include <iterator>
#include <unistd.h>

namespace pxvis {

namespace {

volatile std::sig_atomic_t g_requested = 0;
char g_files[2][PATH_MAX];
volatile std::sig_atomic_t g_fileCount = 0;
constexpr int signals[] = { SIGINT, SIGTERM, SIGHUP };
struct sigaction g_before[std::size(signals)];

void OnInterrupt(int)
{
    if (g_requested) {
        for (int i = 0; i < g_fileCount; ++i)
            unlink(g_files[i]);
        _exit(130);
    }
    g_requested = 1;
}

}

Interrupt::Interrupt()
{
    g_requested = 0;
    g_fileCount = 0;
    struct sigaction action = {};
    action.sa_handler = OnInterrupt;
    action.sa_flags = SA_RESTART;
    for (size_t i = 0; i < std::size(signals); ++i)
        sigaction(signals[i], &action, &g_before[i]);
}

Interrupt::~Interrupt()
{
    for (size_t i = 0; i < std::size(signals); ++i)
        sigaction(signals[i], &g_before[i], nullptr);
}

void Interrupt::RemoveAtEnd(const std::string& file)
{
    if (file.empty() || file.size() >= sizeof g_files[0] || g_fileCount == std::ssize(g_files))
        return;
    std::memcpy(g_files[g_fileCount], file.c_str(), file.size() + 1);
    g_fileCount = g_fileCount + 1; // the handler sees whole names only
}

bool Interrupt::Requested()
{
    return g_requested != 0;
}

}
