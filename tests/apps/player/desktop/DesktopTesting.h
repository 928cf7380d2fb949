#pragma once

#include "SessionBus.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QElapsedTimer>
#include <QStringList>

#include <functional>

// An application on a bus of its own, where the tested object and the test meet.
struct BusApplication
{
    int count = 1;
    char name[5] = "test";
    char* arguments[2] = { name, nullptr };
    QCoreApplication application { count, arguments };
    SessionBus bus;

    static bool WaitUntil(const std::function<bool()>& isSo, int milliseconds = 30000)
    {
        QElapsedTimer time;
        time.start();
        while (!isSo()) {
            if (time.elapsed() > milliseconds)
                return false;
            QCoreApplication::processEvents(
                QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 5);
        }
        return true;
    }
};

// A service of the desktop's, which notes its calls: "Method argument argument".
class FakeService : public QDBusVirtualObject
{
public:
    FakeService(QDBusConnection connection, const QString& service, const QString& path)
        : m_connection(connection)
        , m_service(service)
    {
        m_connection.registerVirtualObject(path, this);
        Start();
    }

    void Start() { m_connection.registerService(m_service); }

    void Stop() { m_connection.unregisterService(m_service); }

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override
    {
        QString call = message.member();
        for (const QVariant& argument : message.arguments())
            call += ' ' + argument.toString();
        calls += call;
        if (answers)
            connection.send(message.createReply(++answered));
        else
            unanswered = message;
        return true;
    }

    void AnswerNow() { m_connection.send(unanswered.createReply(++answered)); }

    QStringList calls;
    bool answers = true;
    uint answered = 0; // what the last answer was
    QDBusMessage unanswered;

private:
    QDBusConnection m_connection;
    QString m_service;
};
