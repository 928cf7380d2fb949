#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <QUrl>

#include <memory>

namespace pxvis::player {

// What the player remembers of songs and scripts, in an SQLite file: play counts, ratings, what was
// opened lately. A file that is damaged is put aside under another name, never deleted, and what
// can be read of it is taken over; where none can be written all is remembered until the end of the
// process. User-interface thread.
class SongLibrary
{
public:
    static constexpr int noRating = 0; // else 1 to 5
    static constexpr int never = -1; // of a script: not to be chosen

    explicit SongLibrary(const QString& path);
    ~SongLibrary();

    // What was wrong with the file, one line for the user; empty if nothing was.
    QString Warning() const;

    // The library of this user: $XDG_DATA_HOME/pxvis/library.sqlite.
    static QString DefaultPath();

    int PlayCount(const QUrl& song) const;
    QDateTime LastPlayed(const QUrl& song) const;
    void NotePlayed(const QUrl& song); // as PlayMeter has it
    int Rating(const QUrl& song) const;
    void SetRating(const QUrl& song, int rating);

    int ScriptRating(const QString& mode) const; // by the name of its mode
    void SetScriptRating(const QString& mode, int rating);

    QList<QUrl> Recent() const; // what was opened, the latest first; 20 at most
    void NoteOpened(const QUrl& url);
    void ClearRecent();

private:
    struct Database;

    std::unique_ptr<Database> m_database;
};

}
