#pragma once

#include <QString>
#include <QUrl>

#include <string>

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

// A text of a stranger's as one line of bearable length, for lists and tips.
QString LineOf(const QString& text);

// For a tool tip, which takes a text with marks in it as one with markup otherwise.
QString ToolTipOf(const QString& text);

// "m:ss", "h:mm:ss" from an hour on; empty below 0.
QString DurationText(qint64 duration);

// Of a local file, in the system's bytes, which need not be UTF-8; empty for other addresses.
std::string PathOf(const QUrl& url);
QUrl UrlOf(const std::string& path);

}
