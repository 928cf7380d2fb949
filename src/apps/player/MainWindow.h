#pragma once

#include "apps/player/PlayerActions.h"
#include "apps/player/ScriptShow.h"

#include <QElapsedTimer>
#include <QMainWindow>
#include <QTimer>

class QDockWidget;
class QStackedWidget;

namespace pxvis::player {

class DisplayArea;
class InvitationPage;
class Player;
class SettingsDialog;
class StatusLine;

// The player's window: the picture, the controls below it, the playlist beside it.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(Player& player); // which outlives it
    ~MainWindow() override;

    // Loads the visualizations; a fault is said in the window. `script`: a file to be shown, or "".
    void Start(const QString& script);

    void PlayDemo();
    void Say(const QString& text);

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void MakeParts();
    void AddTransport();
    void ConnectPlayer();
    void ConnectFileActions();
    void ConnectSoundActions();
    void ConnectVisualActions();
    void ConnectViewActions();
    void RestoreLayout();
    void KeepLayout();

    void UpdateStatus(); // of the actions and titles, after the player's
    void UpdateRating();
    void UpdatePage();
    void UpdateSeen();
    void NoteSilence();
    void ShowFault();
    void ShowOutput(const QString& fault);
    void ShowSongText();
    void ShowInFullScreen(const QString& text); // where no control shows it

    void ShowSettings();
    void ShowContextMenu(const QPoint& globalPosition);

    Player& m_player;
    PlayerActions m_actions;
    DisplayArea* m_area;
    ScriptShow m_show;
    QStackedWidget* m_pages;
    InvitationPage* m_invitation;
    QDockWidget* m_list;
    StatusLine* m_status;
    SettingsDialog* m_settings = nullptr; // made when it is asked for
    QString m_songText; // over the picture
    QElapsedTimer m_songTextTime; // since the song began
    QTimer m_second; // while something is heard and seen
    int m_silentSeconds = 0;
    bool m_hasScript = false; // shown by name, without a song
};

}
