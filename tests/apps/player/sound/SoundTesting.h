#pragma once

#include "apps/player/sound/Playback.h"
#include "host/GStreamer.h"
#include "host/SongFile.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QStringList>
#include <QThread>
#include <doctest/doctest.h>

#include <cmath>
#include <functional>
#include <numbers>
#include <string>
#include <vector>

// The process's one event loop, with GStreamer begun.
inline QCoreApplication& Application()
{
    static int count = 1;
    static char name[] = "test";
    static char* arguments[] = { name, nullptr };
    static QCoreApplication application(count, arguments);
    std::string error;
    pxvis::host::InitializeGStreamer(error);
    return application;
}

// Lets the event loop run until the condition holds; false if it doesn't in that time.
inline bool WaitFor(const std::function<bool()>& condition, int milliseconds = 10000)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > milliseconds)
            return false;
        Application().processEvents();
        QThread::msleep(3);
    }
    return true;
}

inline void RunFor(int milliseconds)
{
    WaitFor([] { return false; }, milliseconds);
}

inline std::vector<float> Tone(double seconds, double frequency = 441, double gain = 0.5)
{
    std::vector<float> samples(2 * static_cast<size_t>(seconds * 44100));
    for (size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<float>(
            gain * std::sin(2 * std::numbers::pi * frequency * static_cast<double>(i / 2) / 44100));
    return samples;
}

inline QUrl WriteSong(const std::string& path, const std::vector<float>& samples,
    const std::string& encoder = "audio/x-raw,format=S16LE ! wavenc",
    const GstTagList* tags = nullptr)
{
    std::string error;
    const bool isWritten = WriteSongFile(path, samples, encoder, tags, error);
    INFO(error);
    REQUIRE(isWritten);
    return QUrl::fromLocalFile(QString::fromStdString(path));
}

// A playback whose signals are written down.
struct Listened
{
    explicit Listened(const char* sink = "fakesink sync=true")
        : playback((Application(), QString::fromLatin1(sink)))
    {
        using pxvis::player::Playback;
        QObject::connect(&playback, &Playback::SongChanged,
            [this] { events << "song " + playback.Song().fileName(); });
        QObject::connect(&playback, &Playback::Ended, [this] { events << "ended"; });
        QObject::connect(&playback, &Playback::Failed, [this](const QUrl& url, const QString& why) {
            events << "failed " + url.fileName();
            reason = why;
        });
        QObject::connect(&playback, &Playback::Seeked, [this] { events << "seeked"; });
        QObject::connect(
            &playback, &Playback::OutputLost, [this](const QString& why) { lost << why; });
        QObject::connect(&playback, &Playback::InfoChanged,
            [this](const pxvis::host::SongInfo& told) { info = told; });
    }

    bool WaitForStop(int milliseconds = 10000)
    {
        return WaitFor(
            [&] { return playback.State() == pxvis::player::PlayState::Stopped; }, milliseconds);
    }

    bool WaitForPosition(qint64 position)
    {
        return WaitFor([&] { return playback.Position() >= position; });
    }

    pxvis::player::Playback playback;
    QStringList events;
    QStringList lost;
    QString reason;
    pxvis::host::SongInfo info;
};
