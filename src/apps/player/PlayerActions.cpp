#include "apps/player/PlayerActions.h"

#include "apps/player/PlayerIcons.h"

namespace pxvis::player {

PlayerActions::PlayerActions(QObject* parent)
    : QObject(parent)
{
    const QString file = tr("Files");
    openFiles = Add(file, tr("&Open Files…"), { QKeySequence(Qt::CTRL | Qt::Key_O) });
    openFolder = Add(file, tr("Open &Folder…"), { QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_O) });
    addFiles = Add(file, tr("&Add to the Playlist…"), { QKeySequence(Qt::CTRL | Qt::Key_D) });
    savePlaylist = Add(file, tr("&Save Playlist…"), { QKeySequence(Qt::CTRL | Qt::Key_S) });
    settings = Add(file, tr("Se&ttings"), { QKeySequence(Qt::CTRL | Qt::Key_Comma) });
    quit = Add(file, tr("&Quit"), { QKeySequence(Qt::CTRL | Qt::Key_Q) });

    const QString playback = tr("Playback");
    play = Add(playback, tr("&Play"),
        { Qt::Key_Space, Qt::Key_MediaTogglePlayPause, Qt::Key_MediaPlay, Qt::Key_MediaPause });
    stop = Add(
        playback, tr("S&top"), { QKeySequence(Qt::CTRL | Qt::Key_Period), Qt::Key_MediaStop });
    nextSong = Add(playback, tr("&Next Song"),
        { Qt::Key_N, QKeySequence(Qt::CTRL | Qt::Key_Right), Qt::Key_MediaNext });
    previousSong = Add(playback, tr("P&revious Song"),
        { Qt::Key_P, QKeySequence(Qt::CTRL | Qt::Key_Left), Qt::Key_MediaPrevious });
    seekForward = Add(playback, tr("5 Seconds &Forward"), { Qt::Key_Right });
    seekBack = Add(playback, tr("5 Seconds &Back"), { Qt::Key_Left });
    volumeUp = Add(playback, tr("&Louder"), { Qt::Key_Up });
    volumeDown = Add(playback, tr("&Quieter"), { Qt::Key_Down });
    mute = Add(playback, tr("&Mute"), { Qt::Key_M });
    mute->setCheckable(true);
    shuffle = Add(playback, tr("&Shuffle"), { QKeySequence(Qt::CTRL | Qt::Key_U) });
    shuffle->setCheckable(true);
    repeat = Add(playback, tr("R&epeat"), { QKeySequence(Qt::CTRL | Qt::Key_T) });
    repeat->setCheckable(true);
    listen = Add(playback, tr("&What the Computer Plays"), { QKeySequence(Qt::CTRL | Qt::Key_L) });
    listen->setCheckable(true);

    AddVisuals();

    const QString view = tr("View");
    fullScreen = Add(view, tr("&Full Screen"), { Qt::Key_F11, Qt::Key_F });
    fullScreen->setCheckable(true);
    leaveFullScreen = Add(view, tr("Leave Full Screen"), { Qt::Key_Escape });
    leaveFullScreen->setEnabled(false); // Esc is others' until then
    playlist = Add(view, tr("&Playlist"), { Qt::Key_L });
    playlist->setCheckable(true);
    statusBar = Add(view, tr("&Status Bar"), { QKeySequence(Qt::CTRL | Qt::Key_B) });
    statusBar->setCheckable(true);
    levels = Add(view, tr("&Level and Beat"), { Qt::Key_V });
    levels->setCheckable(true);

    const QString help = tr("Help");
    shortcuts = Add(help, tr("&Keyboard Shortcuts"), { Qt::Key_F1 });
    about = Add(help, tr("&About"));
    AddIcons();
}

void PlayerActions::AddVisuals()
{
    const QString visuals = tr("Visuals");
    nextScript = Add(visuals, tr("&Next Script"), { Qt::Key_S });
    previousScript = Add(visuals, tr("Previous &Script"), { Qt::Key_B });
    rotation = Add(visuals, tr("Change by &Rating"), { Qt::Key_R });
    rotation->setCheckable(true);
    rotation->setStatusTip(tr("Another script follows by itself, one with more stars more often; "
                              "the settings tell after how long"));
    constexpr Qt::Key keys[] = { Qt::Key_0, Qt::Key_1, Qt::Key_2, Qt::Key_3, Qt::Key_4, Qt::Key_5 };
    for (int i = 1; i < 6; ++i)
        rate[i] = Add(visuals, tr("Rate %1").arg(QString(i, QChar(0x2605))), { keys[i] });
    rate[0] = Add(visuals, tr("No Rating"), { keys[0] });
    rateNever = Add(visuals, tr("Never Show It"), { Qt::Key_X });
    for (QAction* action : rate)
        action->setCheckable(true);
    rateNever->setCheckable(true);
}

void PlayerActions::AddIcons()
{
    previousSong->setIcon(MakeIcon(IconShape::PreviousSong));
    nextSong->setIcon(MakeIcon(IconShape::NextSong));
    previousScript->setIcon(MakeIcon(IconShape::PreviousScript));
    nextScript->setIcon(MakeIcon(IconShape::NextScript));
    mute->setIcon(MakeIcon(IconShape::Volume, IconShape::Muted));
    shuffle->setIcon(MakeIcon(IconShape::Shuffle));
    playlist->setIcon(MakeIcon(IconShape::List));
    fullScreen->setIcon(MakeIcon(IconShape::FullScreen));
    ShowPlaying(false, false);
    ShowRepeat(RepeatMode::None);
    for (const Entry& entry : m_all)
        entry.action->setIconVisibleInMenu(false);
}

void PlayerActions::ShowPlaying(bool isPlaying, bool isAtEnd)
{
    play->setText(isPlaying ? tr("&Pause") : isAtEnd ? tr("&Play Again") : tr("&Play"));
    play->setIcon(MakeIcon(isPlaying ? IconShape::Pause : IconShape::Play));
}

void PlayerActions::ShowRepeat(RepeatMode mode)
{
    repeat->setChecked(mode != RepeatMode::None);
    repeat->setIcon(MakeIcon(mode == RepeatMode::One ? IconShape::RepeatOne : IconShape::Repeat));
    repeat->setText(mode == RepeatMode::One ? tr("R&epeat the Song")
            : mode == RepeatMode::All       ? tr("R&epeat the List")
                                            : tr("R&epeat"));
}

QAction* PlayerActions::Add(
    const QString& group, const QString& text, const QList<QKeySequence>& keys)
{
    auto* action = new QAction(text, this);
    action->setShortcuts(keys);
    action->setShortcutContext(Qt::ApplicationShortcut);
    m_all.append({ group, action });
    return action;
}

}
