#pragma once

#include "apps/player/display/ScriptRotation.h"

#include <QObject>
#include <QString>
#include <QTimer>

namespace pxvis::player {

class DisplayArea;
class PlayerSettings;
class SongLibrary;

// Which script is shown: what the user chooses, or the player's rotation, which goes by his
// ratings. User-interface thread.
class ScriptShow : public QObject
{
    Q_OBJECT

public:
    static constexpr int leastInterval = 5; // s
    static constexpr int mostInterval = 3600; // s

    // All outlive it.
    ScriptShow(DisplayArea& area, SongLibrary& library, PlayerSettings& settings);

    // Once the area has its visualization. `file`: a script that is shown in place of the mode
    // and the rotation that were remembered, once it can be; "" for none.
    void Start(const QString& file);

    void Choose(const QString& mode);
    void Next();
    void Back();

    bool CanGoBack() const { return m_rotation.CanGoBack(); }

    QString Name() const; // of what is shown, for people
    QString Folder() const; // the same; "" if it lies in none

    bool IsFile() const { return !m_file.isEmpty(); } // no mode

    QString Fault() const { return m_fault; } // what is wrong with it, in a line; "": nothing

    // Only a script on its own can be rated.
    bool CanRate() const;
    int Rating() const;
    void Rate(int rating);

    bool IsRotating() const { return m_rotation.IsOn(); }

    void SetRotating(bool on);
    int Interval() const; // s
    void SetInterval(int seconds);

    void SetHeld(bool held) { m_rotation.SetHeld(held); } // nothing plays, or nobody sees it

signals:
    void Changed(); // another script, or its rating
    void Shown(); // another script
    void RotatingChanged();
    void FaultChanged();

private:
    void OnModeChanged();
    void LookForFault();

    DisplayArea& m_area;
    SongLibrary& m_library;
    PlayerSettings& m_settings;
    ScriptRotation m_rotation;
    bool m_isStarting = false;
    QString m_file; // that is shown in place of a mode, once it can be read
    bool m_isRotationsChoice = false;
    QTimer m_look; // since files change
    QString m_fault;
};

}
