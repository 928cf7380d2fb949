#pragma once

#include "foundation/OQChar.h"
#include "toolkit/OQDisplayConnection.h"
#include "toolkit/OQWindowMailbox.h"

#include <QImage>
#include <QPointer>
#include <QWidget>
#include <QWindow>

#include <memory>
#include <string>

struct xcb_connection_t;
class OQBasicWnd;

// The widget behind an OQBasicWnd: a native window that fills a window of the host's. Where that is
// a widget of this very Qt it is an ordinary child, and goes with it; elsewhere it hangs in a
// foreign window, of which Qt learns nothing, so that its size and end are watched apart. Internal.
class OQWindowWidget final : public QWidget, private IOQParentEvents
{
public:
    explicit OQWindowWidget(std::shared_ptr<OQWindowMailbox> mailbox);
    ~OQWindowWidget() override;

    // Makes the native window, hidden. False if there is no such parent.
    bool Embed(uint32_t parent, const OQChar* className);

    // From now on the window's object hears of every event.
    void Connect(OQBasicWnd& wnd);
    // And from now on of none.
    void Disconnect();

    // Deletes it, at once or when its event is handled; where Qt may not be called, it stays.
    static void Release(OQWindowWidget* widget);

    // Some widget of ours is handling an event, further up the stack.
    static bool IsInEvent();
    static bool IsInPaint(); // which no other paint may come into

    OQSize GetDeviceSize() const;
    uint32_t GetHandle() const;
    void TakeKeyboardFocus();
    void LetInputThrough();
    void SetTitle(const QString& title);

    void SetPaintDue();

    bool IsPaintDue() const { return m_paintDue; }

    // The stretched picture of the last paint, kept so that the next one needs no memory.
    QImage& GetPicture() { return m_picture; }

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void EmptyInputShape(xcb_connection_t* connection);
    void OnParentSize(const OQSize& size) override;
    void OnParentDestroyed() override;

    bool EmbedForeign(uint32_t parent);
    void MarkWindow(); // title and class name
    void FillParent();

    OQBasicWnd* m_wnd = nullptr; // null while it isn't connected
    std::shared_ptr<OQWindowMailbox> m_mailbox;
    std::unique_ptr<QWindow> m_foreignParent; // null: a child of a widget
    OQSize m_foreignSize;
    bool m_letsInputThrough = false;
    std::string m_className; // UTF-8
    QString m_title;
    QImage m_picture;
    int m_eventDepth = 0;
    bool m_painting = false;
    bool m_paintDue = false;
};
