#include "apps/player/display/TrackField.h"

#include "apps/player/display/VisualHost.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLocale>

#include <algorithm>
#include <array>
#include <string>

namespace pxvis::player {

namespace {

QString FromTag(const std::string& text)
{
    return QString::fromStdString(text);
}

QString Time(double seconds)
{
    if (!(seconds > 0))
        return {};
    const int whole = static_cast<int>(std::min(seconds, 2e9));
    const auto twoDigits = [](int number) { return QString("%1").arg(number, 2, 10, QChar('0')); };
    const int minutes = whole / 60 % 60;
    const QString rest = ':' + twoDigits(whole % 60);
    if (whole < 3600)
        return QString::number(minutes) + rest;
    return QString::number(whole / 3600) + ':' + twoDigits(minutes) + rest;
}

QString Date(const QDateTime& time)
{
    return time.isValid() ? QLocale().toString(time, QLocale::ShortFormat) : QString();
}

QString Number(int number)
{
    return number > 0 ? QString::number(number) : QString();
}

QString BitRate(const HostTrack& track)
{
    const int rate = (track.info.bitRate + 500) / 1000;
    return rate > 0
        ? QCoreApplication::translate("pxvis::player::TrackField", "%1 kbit/s").arg(rate)
        : QString();
}

QString FileSize(const HostTrack& track)
{
    const QFileInfo file(track.path);
    return file.isFile() ? QLocale().formattedDataSize(file.size()) : QString();
}

QString Created(const HostTrack& track)
{
    const QFileInfo file(track.path);
    return Date(file.birthTime().isValid() ? file.birthTime() : file.lastModified());
}

struct Field
{
    const char* name;
    QString (*text)(const HostTrack& track);
};

constexpr std::array fields {
    Field { "Artist", [](const HostTrack& track) { return FromTag(track.info.tags.artist); } },
    Field { "Album", [](const HostTrack& track) { return FromTag(track.info.tags.album); } },
    Field { "Name", [](const HostTrack& track) { return FromTag(track.info.tags.title); } },
    Field { "Date (year)", [](const HostTrack& track) { return FromTag(track.info.tags.year); } },
    Field { "Genre", [](const HostTrack& track) { return FromTag(track.info.tags.genre); } },
    Field { "Track #", [](const HostTrack& track) { return Number(track.info.tags.trackNumber); } },
    Field { "Comment", [](const HostTrack& track) { return FromTag(track.info.tags.notes); } },
    Field { "Notes", [](const HostTrack& track) { return FromTag(track.info.tags.notes); } },
    Field { "Lyrics", [](const HostTrack& track) { return FromTag(track.info.tags.lyrics); } },
    Field { "Filename", [](const HostTrack& track) { return QFileInfo(track.path).fileName(); } },
    Field { "Filename (path)", [](const HostTrack& track) { return track.path; } },
    Field { "File Type",
        [](const HostTrack& track) { return QFileInfo(track.path).suffix().toUpper(); } },
    Field { "File Size", FileSize },
    Field { "Bitrate", BitRate },
    Field { "Duration", [](const HostTrack& track) { return Time(track.info.durationSeconds); } },
    Field {
        "Number Plays", [](const HostTrack& track) { return QString::number(track.playCount); } },
    Field { "Last Played", [](const HostTrack& track) { return Date(track.lastPlayed); } },
    Field { "Date Created", Created },
    Field { "Rating", [](const HostTrack& track) { return Number(track.rating); } },
};

}

QString TrackField(const HostTrack& track, const QString& name)
{
    const auto* const field = std::find_if(fields.begin(), fields.end(),
        [&](const Field& known) { return name.compare(known.name, Qt::CaseInsensitive) == 0; });
    return field == fields.end() ? QString() : field->text(track);
}

}
