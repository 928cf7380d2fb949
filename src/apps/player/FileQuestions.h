#pragma once

#include <QString>

class QWidget;

namespace pxvis::player {

class Player;

// Asks for files and folders, and gives the player what it gets.
struct FileQuestions
{
    Player& player;
    QWidget* parent;

    void OpenFiles() const;
    void AddFiles() const; // to the playlist
    void OpenFolder() const;
    QString SavePlaylist() const; // a line that tells how it went, "" if nothing was saved

private:
    QStringList AskForFiles(const QString& title) const;
};

}
