#pragma once

#include <QString>
#include <QUrl>

namespace pxvis::player {

// A song as lists show it. Texts that aren't known are empty.
struct Song
{
    QUrl url;
    QString title; // as tagged; TitleOf gives something in any case
    QString artist;
    QString album;
    qint64 duration = -1; // ms; -1: not known
    bool isMissing = false; // there was no such file when it was looked for
    bool isRead = false; // its tags were looked for

    bool operator==(const Song&) const = default;
};

// The title, or else the file's name without its ending.
QString TitleOf(const Song& song);

}
