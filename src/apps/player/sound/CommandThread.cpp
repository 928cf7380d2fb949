#include "apps/player/sound/CommandThread.h"

#include "os/Thread.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <utility>

namespace pxvis::player {

struct CommandThread::State
{
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::function<void()>> commands;
    bool isFinished = false; // no more come
    bool hasEnded = false;
};

CommandThread::CommandThread()
    : m_state(std::make_shared<State>())
{
    os::Thread thread;
    auto* own = new std::shared_ptr<State>(m_state);
    if (thread.Start(Run, own) != 0) {
        delete own;
        m_state->isFinished = m_state->hasEnded = true;
    }
    thread.Detach();
}

CommandThread::~CommandThread()
{
    Finish();
}

void CommandThread::Run(void* context)
{
    const std::unique_ptr<std::shared_ptr<State>> own(
        static_cast<std::shared_ptr<State>*>(context));
    State& state = **own;
    std::unique_lock lock(state.mutex);
    for (;;) {
        state.changed.wait(lock, [&] { return state.isFinished || !state.commands.empty(); });
        if (state.commands.empty())
            break;
        std::function<void()> command = std::move(state.commands.front());
        state.commands.pop_front();
        lock.unlock();
        command();
        command = nullptr; // what it holds is released without the lock
        lock.lock();
    }
    state.hasEnded = true;
    state.changed.notify_all();
}

void CommandThread::Post(std::function<void()> command)
{
    const std::lock_guard lock(m_state->mutex);
    if (m_state->isFinished)
        return;
    m_state->commands.push_back(std::move(command));
    m_state->changed.notify_all();
}

void CommandThread::Finish()
{
    const std::lock_guard lock(m_state->mutex);
    m_state->isFinished = true;
    m_state->changed.notify_all();
}

bool CommandThread::WaitForEnd(int milliseconds)
{
    std::unique_lock lock(m_state->mutex);
    return m_state->changed.wait_for(
        lock, std::chrono::milliseconds(milliseconds), [&] { return m_state->hasEnded; });
}

}
