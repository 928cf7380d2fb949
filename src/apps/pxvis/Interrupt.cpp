#include "apps/pxvis/Interrupt.h"

#include <climits>
#include <csignal>
#include <cstring>
#include <unistd.h>

namespace pxvis {

namespace {

volatile std::sig_atomic_t g_requested = 0;
char g_unfinishedFile[PATH_MAX];
struct sigaction g_before;

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
    sigaction(SIGINT, &action, &g_before);
}

Interrupt::~Interrupt()
{
    sigaction(SIGINT, &g_before, nullptr);
}

bool Interrupt::Requested()
{
    return g_requested != 0;
}

}
