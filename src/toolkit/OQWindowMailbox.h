#pragma once

#include <cstdint>
#include <mutex>

class QObject;

// Where other threads leave what a window is to do. Shared by the window's object, which callers
// know, and its widget, which may go at any moment with its parent. Any thread.
class OQWindowMailbox
{
public:
    // The widget's thread only: from now on the widget receives, until it closes the mailbox again
    // or the next widget opens it.
    void Open(QObject* receiver);
    void Close(const QObject* receiver);

    // False while there is no widget.
    bool Post(uint32_t message, intptr_t p1, intptr_t p2);
    void Invalidate();

    // Behind a request of Invalidate that reached the widget: the next one counts anew.
    void OnInvalidated();

    // Numbers of the events that the widget receives. The first is an OQMessageEvent.
    static int MessageEvent();
    static int InvalidateEvent();

private:
    std::mutex m_lock;
    QObject* m_receiver = nullptr;
    bool m_invalidated = false;
};
