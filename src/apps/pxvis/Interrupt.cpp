#include "apps/pxvis/Interrupt.h"

#include <climits>
#include <csignal>
#include <cstring>
#include <iterator>
#include <unistd.h>

namespace pxvis {

namespace {

volatile std::sig_atomic_t g_requested = 0;
char g_unfinishedFile[PATH_MAX];
constexpr int signals[] = { SIGINT, SIGTERM, SIGHUP };
struct sigaction g_before[std::size(signals)];

void OnInterrupt(int)
{
    if (g_requested) {
        unlink(g_unfinishedFile);
        _exit(130);
    }
    g_requested = 1;
}

}

Interrupt::Interrupt(const std::string& unfinishedFile)
{
    g_requested = 0;
    g_unfinishedFile[0] = 0;
    if (unfinishedFile.size() < sizeof g_unfinishedFile)
        std::memcpy(g_unfinishedFile, unfinishedFile.c_str(), unfinishedFile.size() + 1);
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

bool Interrupt::Requested()
{
    return g_requested != 0;
}

}
