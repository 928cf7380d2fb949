#include "apps/player/MainWindow.h"

#include "apps/player/AboutDialog.h"
#include "apps/player/FileQuestions.h"
#include "apps/player/InvitationPage.h"
#include "apps/player/MainMenus.h"
#include "apps/player/Player.h"
#include "apps/player/PlaylistView.h"
#include "apps/player/SettingsDialog.h"
#include "apps/player/ShortcutsDialog.h"
#include "apps/player/StatusLine.h"
#include "apps/player/TransportBar.h"
#include "apps/player/display/DisplayArea.h"
#include "os/InstallPlaces.h"

#include <QCloseEvent>
#include <QDockWidget>
#include <QFile>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QStackedWidget>
#include <QWindow>

#include <cmath>

namespace pxvis::player {

namespace {

constexpr char geometrySetting[] = "Window";
constexpr char stateSetting[] = "Window Parts";
constexpr int stateVersion = 1; // of the parts that there are
constexpr char statusSetting[] = "Status Bar";
constexpr char levelsSetting[] = "Levels";
constexpr int messageTime = 6000; // ms, over the picture
constexpr int silenceToRest = 8; // s
constexpr int songTextTime = 4000; // ms
constexpr qint64 seekStep = 5000; // ms
constexpr double volumeStep = 0.05;

QString SongText(const QString& title, const QString& artist)
{
    const bool isTold // by the name of a file without a title
        = title.startsWith(artist + QStringLiteral(" - "), Qt::CaseInsensitive);
    return artist.isEmpty() || isTold ? title : QStringLiteral("%1 – %2").arg(title, artist);
}

}

MainWindow::MainWindow(Player& player)
    : m_player(player)
    , m_area(new DisplayArea(player.Host()))
    , m_show(*m_area, player.Library(), player.Settings())
{
    setWindowTitle(QStringLiteral("pxvis"));
    resize(QSize(1120, 760).boundedTo(screen()->availableSize() * 0.9)); // and its frame
    MakeParts();
    m_second.setInterval(1000);
    connect(&m_second, &QTimer::timeout, this, &MainWindow::NoteSilence);
    ConnectPlayer();
    ConnectFileActions();
    ConnectSoundActions();
    ConnectVisualActions();
    ConnectViewActions();
    RestoreLayout();
    UpdateStatus();
    UpdateRating();
    UpdatePage();
    m_area->setFocus();
}

MainWindow::~MainWindow()
{
    m_list->disconnect(this); // it tells that it goes when all of this is gone
    m_area->SetFullScreen(false);
}

void MainWindow::MakeParts()
{
    m_invitation = new InvitationPage(m_actions);
    m_pages = new QStackedWidget;
    m_pages->addWidget(m_area);
    m_pages->addWidget(m_invitation);
    m_area->setMinimumSize(240, 135);
    m_area->setFocusPolicy(Qt::ClickFocus);
    m_area->setAccessibleName(tr("Picture"));
    m_area->SetControls([this] { return new TransportBar(m_player, m_show, m_actions); });
    setCentralWidget(m_pages);
    AddTransport();

    m_list = new QDockWidget(tr("Playlist"));
    m_list->setObjectName(QStringLiteral("playlist"));
    m_list->setWidget(new PlaylistView(m_player, m_actions));
    m_list->setFeatures(QDockWidget::DockWidgetClosable | QDockWidget::DockWidgetMovable);
    m_list->setAllowedAreas(Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea);
    addDockWidget(Qt::RightDockWidgetArea, m_list);
    m_list->hide();

    m_status = new StatusLine(m_player);
    setStatusBar(m_status);
    MainMenus { m_player, m_actions, m_show, *m_area }.AddTo(*menuBar());
    for (const PlayerActions::Entry& entry : m_actions.All())
        addAction(entry.action); // so that its keys hold while no menu shows it
}

// Below all else: it needs the width that the playlist would take from it.
void MainWindow::AddTransport()
{
    auto* dock = new QDockWidget;
    dock->setObjectName(QStringLiteral("transport"));
    dock->setTitleBarWidget(new QWidget);
    dock->setFeatures(QDockWidget::NoDockWidgetFeatures);
    dock->setWidget(new TransportBar(m_player, m_show, m_actions));
    dock->toggleViewAction()->setVisible(false);
    addDockWidget(Qt::BottomDockWidgetArea, dock);
}

void MainWindow::ConnectPlayer()
{
    connect(&m_player, &Player::StatusChanged, this, &MainWindow::UpdateStatus);
    connect(&m_player, &Player::ListeningChanged, this, &MainWindow::UpdateStatus);
    connect(&m_player, &Player::TrackChanged, this, [this] {
        UpdatePage();
        if (m_songTextTime.isValid() && !m_songTextTime.hasExpired(songTextTime))
            ShowSongText(); // what it is called has only just been read
    });
    connect(&m_player, &Player::SongStarted, this, [this] {
        m_songText.clear();
        m_songTextTime.start();
        ShowSongText();
    });
    connect(&m_player, &Player::Message, this, &MainWindow::Say);
    connect(&m_player, &Player::OutputLost, this, &MainWindow::ShowOutput);
    connect(&m_player, &Player::RaiseAsked, this, [this] {
        show();
        QWidget* shown = m_area->PictureWindow();
        shown->setWindowState(shown->windowState() & ~Qt::WindowMinimized);
        shown->raise();
        shown->activateWindow();
    });
    connect(&m_player, &Player::QuitAsked, this, &MainWindow::close);
    connect(&m_player, &Player::FullScreenAsked, m_area, &DisplayArea::SetFullScreen);

    connect(m_area, &DisplayArea::Dropped, &m_player, &Player::Open);
    connect(m_invitation, &InvitationPage::Dropped, &m_player, &Player::Open);
    connect(m_invitation, &InvitationPage::ListenAsked, this, [this] { m_player.Listen({}); });
    connect(m_invitation, &InvitationPage::DemoAsked, this, &MainWindow::PlayDemo);
    connect(m_area, &DisplayArea::MenuAsked, this, &MainWindow::ShowContextMenu);
    connect(m_area, &DisplayArea::DoubleClicked, this, [this] { m_area->SetFullScreen(true); });
    connect(m_area, &DisplayArea::FullScreenChanged, this, [this] {
        const bool isFull = m_area->IsFullScreen();
        m_actions.fullScreen->setChecked(isFull);
        m_actions.leaveFullScreen->setEnabled(isFull);
        m_actions.statusBar->setEnabled(!isFull);
        m_actions.levels->setEnabled(!isFull);
        m_player.NoteFullScreen(isFull);
        UpdateSeen();
    });
    connect(&m_show, &ScriptShow::Changed, this, &MainWindow::UpdateRating);
    connect(&m_show, &ScriptShow::RotatingChanged, this, &MainWindow::UpdateRating);
    connect(&m_show, &ScriptShow::Shown, this, [this] { m_area->ShowText(m_show.Name()); });
    connect(&m_show, &ScriptShow::FaultChanged, this, &MainWindow::ShowFault);
}

void MainWindow::ConnectFileActions()
{
    connect(m_actions.openFiles, &QAction::triggered, this, [this] {
        FileQuestions { m_player, m_area->PictureWindow() }.OpenFiles();
    });
    connect(m_actions.addFiles, &QAction::triggered, this, [this] {
        FileQuestions { m_player, m_area->PictureWindow() }.AddFiles();
    });
    connect(m_actions.openFolder, &QAction::triggered, this, [this] {
        FileQuestions { m_player, m_area->PictureWindow() }.OpenFolder();
    });
    connect(m_actions.savePlaylist, &QAction::triggered, this, [this] {
        Say(FileQuestions { m_player, m_area->PictureWindow() }.SavePlaylist());
    });
    connect(m_actions.settings, &QAction::triggered, this, &MainWindow::ShowSettings);
    connect(m_actions.quit, &QAction::triggered, this, &MainWindow::close);
    connect(m_actions.shortcuts, &QAction::triggered, this,
        [this] { ShortcutsDialog(m_actions, m_area->PictureWindow()).exec(); });
    connect(m_actions.about, &QAction::triggered, this,
        [this] { AboutDialog(m_area->PictureWindow()).exec(); });
}

void MainWindow::ConnectSoundActions()
{
    connect(m_actions.play, &QAction::triggered, &m_player, &Player::TogglePlay);
    connect(m_actions.stop, &QAction::triggered, &m_player, &Player::Stop);
    connect(m_actions.nextSong, &QAction::triggered, &m_player, &Player::Next);
    connect(m_actions.previousSong, &QAction::triggered, &m_player, &Player::Previous);
    const auto seek = [this](qint64 step) {
        m_player.SeekBy(step);
        ShowInFullScreen(TimeText(m_player.Position() / 1000));
    };
    connect(m_actions.seekBack, &QAction::triggered, this, [seek] { seek(-seekStep); });
    connect(m_actions.seekForward, &QAction::triggered, this, [seek] { seek(seekStep); });
    const auto change = [this](double step) {
        m_player.SetVolume(m_player.Status().volume + step);
        ShowInFullScreen(tr("Volume %1 %").arg(std::lround(m_player.Status().volume * 100)));
    };
    connect(m_actions.volumeUp, &QAction::triggered, this, [change] { change(volumeStep); });
    connect(m_actions.volumeDown, &QAction::triggered, this, [change] { change(-volumeStep); });
    connect(m_actions.mute, &QAction::triggered, this, [this](bool on) {
        m_player.SetMuted(on);
        ShowInFullScreen(on ? tr("Muted") : tr("Not muted"));
    });
    connect(m_actions.shuffle, &QAction::triggered, &m_player, &Player::SetShuffled);
    connect(m_actions.repeat, &QAction::triggered, this, [this] {
        Playlist& songs = m_player.Songs();
        songs.SetRepeat(songs.Repeat() == RepeatMode::None ? RepeatMode::All
                : songs.Repeat() == RepeatMode::All        ? RepeatMode::One
                                                           : RepeatMode::None);
        UpdateStatus();
    });
    connect(m_actions.listen, &QAction::triggered, this, [this](bool on) {
        if (on)
            m_player.Listen({});
        else
            m_player.StopListening();
    });
}

void MainWindow::ConnectVisualActions()
{
    connect(m_actions.nextScript, &QAction::triggered, &m_show, &ScriptShow::Next);
    connect(m_actions.previousScript, &QAction::triggered, &m_show, &ScriptShow::Back);
    connect(m_actions.rotation, &QAction::triggered, this, [this](bool on) {
        m_show.SetRotating(on);
        m_area->ShowText(on ? tr("Scripts change by rating") : tr("This script stays"));
    });
    const auto rate = [this](int rating) {
        const QString name = m_show.Name(); // another may follow one that is never to be shown
        m_show.Rate(rating);
        UpdateRating();
        const QString stars(rating, QChar(0x2605));
        m_area->ShowText(rating == SongLibrary::never ? tr("%1 won't be chosen").arg(name)
                : rating == SongLibrary::noRating     ? tr("%1: no rating").arg(name)
                                                      : name + ' ' + stars);
    };
    for (int stars = 0; stars < static_cast<int>(m_actions.rate.size()); ++stars)
        connect(m_actions.rate[stars], &QAction::triggered, this, [rate, stars] { rate(stars); });
    connect(m_actions.rateNever, &QAction::triggered, this, [rate] { rate(SongLibrary::never); });
}

void MainWindow::ConnectViewActions()
{
    connect(m_actions.fullScreen, &QAction::triggered, m_area, &DisplayArea::SetFullScreen);
    connect(m_actions.leaveFullScreen, &QAction::triggered, this,
        [this] { m_area->SetFullScreen(false); });
    connect(m_actions.playlist, &QAction::triggered, this, [this](bool on) {
        m_list->setVisible(on || m_area->IsFullScreen());
        m_area->SetFullScreen(false); // nothing of it would be seen there
    });
    connect(m_list, &QDockWidget::visibilityChanged, this,
        [this] { m_actions.playlist->setChecked(!m_list->isHidden()); });
    connect(m_actions.statusBar, &QAction::triggered, m_status, &StatusLine::setVisible);
    connect(m_actions.levels, &QAction::triggered, this, [this](bool on) {
        m_status->SetLevelsShown(on);
        if (on && !m_status->isVisible())
            m_actions.statusBar->trigger();
    });
}

void MainWindow::Start(const QString& script)
{
    QString fault;
    if (!m_area->Start({}, fault)) {
        m_hasScript = true; // the area tells the fault
        Say(fault);
    } else {
        m_hasScript = !script.isEmpty();
        m_show.Start(script);
    }
    UpdatePage();
}

void MainWindow::PlayDemo()
{
    const QString song = QFile::decodeName(os::GetInstallPlaces().data.c_str())
        + QStringLiteral("/demo/pxvis-demo.opus");
    m_player.Open({ QUrl::fromLocalFile(song) });
}

void MainWindow::Say(const QString& text)
{
    if (text.isEmpty())
        return;
    m_status->Say(text);
    if (!m_status->isVisible() || m_area->IsFullScreen())
        m_area->ShowText(text, messageTime);
}

void MainWindow::UpdateStatus()
{
    const PlayerStatus status = m_player.Status();
    const bool isPlaying = status.state == PlayerStatus::State::Playing;
    const bool isAtEnd = m_player.IsAtEnd();
    m_actions.ShowPlaying(isPlaying, isAtEnd);
    m_area->SetHint(!isAtEnd
            ? QString()
            : tr("The end · %1 plays again")
                  .arg(m_actions.play->shortcut().toString(QKeySequence::NativeText)));
    m_actions.play->setEnabled(status.canPlay);
    m_actions.stop->setEnabled(status.state != PlayerStatus::State::Stopped
        || m_player.IsListening() || m_player.IsSkipping());
    m_actions.nextSong->setEnabled(status.canGoNext);
    m_actions.previousSong->setEnabled(status.trackNumber >= 0); // begins the first anew
    m_actions.seekBack->setEnabled(status.canSeek);
    m_actions.seekForward->setEnabled(status.canSeek);
    m_actions.mute->setChecked(m_player.IsMuted());
    m_actions.shuffle->setChecked(status.isShuffled);
    m_actions.ShowRepeat(m_player.Songs().Repeat());
    m_actions.listen->setChecked(m_player.IsListening() && m_player.ListeningDevice().isEmpty());
    m_actions.savePlaylist->setEnabled(status.canPlay);
    const QString song = SongText(status.title, status.artist);
    setWindowTitle(m_player.IsListening() ? tr("Listening – pxvis")
            : song.isEmpty()              ? QStringLiteral("pxvis")
                                          : tr("%1 – pxvis").arg(song));
    UpdatePage();
    UpdateSeen();
}

void MainWindow::UpdateRating()
{
    const bool canRate = m_show.CanRate();
    const int rating = m_show.Rating();
    for (int stars = 0; stars < static_cast<int>(m_actions.rate.size()); ++stars) {
        m_actions.rate[stars]->setEnabled(canRate);
        m_actions.rate[stars]->setChecked(canRate && rating == stars);
    }
    m_actions.rateNever->setEnabled(canRate);
    m_actions.rateNever->setChecked(canRate && rating == SongLibrary::never);
    m_actions.rotation->setChecked(m_show.IsRotating());
    m_actions.previousScript->setEnabled(m_show.CanGoBack());
}

void MainWindow::UpdatePage()
{
    const bool isInviting
        = m_player.Songs().Count() == 0 && !m_player.IsListening() && !m_hasScript;
    QWidget* page = isInviting ? static_cast<QWidget*>(m_invitation) : m_area;
    if (m_pages->currentWidget() == page)
        return;
    m_pages->setCurrentWidget(page);
    if (!isInviting)
        m_area->setFocus();
}

// What only matters while somebody looks stands still otherwise.
void MainWindow::UpdateSeen()
{
    const QWindow* window = windowHandle();
    const bool isSeen = m_area->IsFullScreen()
        || (isVisible() && !isMinimized() && window && window->isExposed());
    const bool isHeard
        = m_player.IsListening() || m_player.Status().state == PlayerStatus::State::Playing;
    m_player.SetSeen(isSeen);
    if (!isSeen || !isHeard)
        m_second.stop();
    else if (!m_second.isActive())
        m_second.start();
    m_show.SetHeld(!isSeen || !isHeard || m_silentSeconds >= silenceToRest);
    m_status->SetActive(isSeen && isHeard);
}

// The pictures rest by themselves when it is silent, and then none shall follow another.
void MainWindow::NoteSilence()
{
    m_silentSeconds = m_player.Host().Level() > 0 ? 0 : m_silentSeconds + 1;
    if (m_silentSeconds == 0 || m_silentSeconds == silenceToRest)
        UpdateSeen();
    if (m_silentSeconds == silenceToRest && m_player.IsListening())
        m_area->ShowText(tr("Nothing is to be heard"), messageTime);
}

// Over the picture, too, where an author looks, or where there is no line for it.
void MainWindow::ShowFault()
{
    const QString fault = m_show.Fault();
    m_status->SetNotice(StatusLine::Notice::Script, fault);
    const bool isLineSeen = m_status->isVisible() || m_area->IsFullScreen();
    if (m_show.IsFile() || (!isLineSeen && !fault.isEmpty()))
        m_area->ShowText(fault.isEmpty() ? m_show.Name() : fault, messageTime);
}

void MainWindow::ShowOutput(const QString& fault)
{
    m_status->SetNotice(StatusLine::Notice::Sound, fault);
    if (!fault.isEmpty() && !m_status->isVisible())
        m_area->ShowText(fault, messageTime);
}

void MainWindow::ShowSongText()
{
    const PlayerStatus status = m_player.Status();
    const QString text = m_player.IsListening() ? tr("Listening: %1").arg(m_player.ListeningName())
                                                : SongText(status.title, status.artist);
    if (text.isEmpty() || text == m_songText)
        return;
    m_songText = text;
    m_area->ShowText(text, songTextTime);
}

void MainWindow::ShowInFullScreen(const QString& text)
{
    if (m_area->IsFullScreen())
        m_area->ShowText(text, 1500);
}

void MainWindow::RestoreLayout()
{
    const PlayerSettings& settings = m_player.Settings();
    const auto bytes = [&settings](const char* name) {
        return QByteArray::fromBase64(settings.Text(name).toLatin1());
    };
    restoreGeometry(bytes(geometrySetting));
    restoreState(bytes(stateSetting), stateVersion);
    m_actions.statusBar->setChecked(settings.Number(statusSetting, 1) != 0);
    m_status->setVisible(m_actions.statusBar->isChecked());
    m_actions.levels->setChecked(settings.Number(levelsSetting, 0) != 0);
    m_status->SetLevelsShown(m_actions.levels->isChecked());
}

void MainWindow::KeepLayout()
{
    PlayerSettings& settings = m_player.Settings();
    settings.SetText(geometrySetting, QString::fromLatin1(saveGeometry().toBase64()));
    settings.SetText(stateSetting, QString::fromLatin1(saveState(stateVersion).toBase64()));
    settings.SetNumber(statusSetting, m_actions.statusBar->isChecked());
    settings.SetNumber(levelsSetting, m_actions.levels->isChecked());
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    m_area->SetFullScreen(false);
    KeepLayout();
    m_player.Remember();
    event->accept();
}

void MainWindow::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange)
        UpdateSeen();
}

void MainWindow::showEvent(QShowEvent* event)
{
    QMainWindow::showEvent(event);
    windowHandle()->installEventFilter(this);
    UpdateSeen();
}

void MainWindow::hideEvent(QHideEvent* event)
{
    QMainWindow::hideEvent(event);
    UpdateSeen();
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event)
{
    const bool goesOn = QMainWindow::eventFilter(watched, event);
    if (watched == windowHandle() && event->type() == QEvent::Expose)
        UpdateSeen();
    return goesOn;
}

void MainWindow::ShowSettings()
{
    if (!m_settings)
        m_settings = new SettingsDialog(m_player, m_show, *m_area, this);
    m_settings->show();
    m_settings->raise();
    m_settings->activateWindow();
}

void MainWindow::ShowContextMenu(const QPoint& globalPosition)
{
    QMenu menu(m_area->PictureWindow());
    MainMenus { m_player, m_actions, m_show, *m_area }.AddContext(menu);
    menu.exec(globalPosition);
}

}
