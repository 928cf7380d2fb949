#include "apps/player/display/DisplayArea.h"

#include "apps/player/display/FullScreenWindow.h"
#include "apps/player/display/PictureFrame.h"
#include "apps/player/display/UrlDrops.h"
#include "apps/player/display/VisualHost.h"
#include "apps/player/display/VisualLibrary.h"
#include "apps/player/display/VisualMenu.h"

#include <QActionEvent>
#include <QContextMenuEvent>
#include <QFileInfo>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QTimer>

#include <utility>

namespace pxvis::player {

namespace {

constexpr int scriptInterval = 1000; // ms, between two tries to read a script

}

struct DisplayArea::Display
{
    explicit Display(VisualHost& host)
        : host(host)
    {
    }

    VisualHost& host;
    VisualLibrary library;
    std::unique_ptr<IOQVisualization> visualization; // gone before its window and its host
    PictureFrame* frame = nullptr; // a child of the area, or of the full screen
    FullScreenWindow* fullScreen = nullptr; // owned; null outside of full screen
    QPointer<QWidget> watched; // the top-level window that the area is in
    QString fault; // why there is no picture
    QString scriptFile; // shown instead of a mode, or to be
    QTimer scriptTimer; // until it can be
    QString cycleWord; // in the library's language; "": not yet known
    QString text;
    QTimer textTimer;
    QString hint;
    MakeControls makeControls;
};

DisplayArea::DisplayArea(VisualHost& host, QWidget* parent)
    : QWidget(parent)
    , m_display(std::make_unique<Display>(host))
{
    Display& display = *m_display;
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccessibleName(tr("Visualization"));
    display.frame = new PictureFrame(this);
    display.frame->hide();
    display.textTimer.setSingleShot(true);
    connect(&display.textTimer, &QTimer::timeout, this, [this] { ShowText({}); });
    display.scriptTimer.setInterval(scriptInterval);
    connect(&display.scriptTimer, &QTimer::timeout, this, [this] {
        if (TryScriptFile())
            emit ScriptFileShown();
    });
    connect(display.frame, &PictureFrame::DoubleClicked, this, [this] {
        if (!m_display->fullScreen)
            emit DoubleClicked();
    });
    connect(display.frame, &PictureFrame::Resized, this, [this] { m_display->host.DrawAwhile(); });
    connect(display.frame, &PictureFrame::MenuAsked, this, &DisplayArea::MenuAsked);
    connect(new UrlDrops(*this), &UrlDrops::Dropped, this, &DisplayArea::Dropped);
    UpdateSeen();
}

DisplayArea::~DisplayArea()
{
    m_display->visualization.reset();
    m_display->frame->setParent(this);
    delete m_display->fullScreen;
}

bool DisplayArea::Start(const QString& library, QString& error)
{
    const bool isThere = m_display->library.Load(library, error) && MakeVisualization(error);
    m_display->fault = error;
    UpdateSeen();
    return isThere;
}

void DisplayArea::Restart()
{
    if (!m_display->library.IsLoaded())
        return;
    const QString mode = CurrentMode();
    // A mode that the settings didn't take is forgotten with the old visualization.
    if (MakeVisualization(m_display->fault) && !mode.isEmpty() && mode != CurrentMode())
        SetVisualProperty(*m_display->visualization, u"Current Mode", mode);
    TryScriptFile();
    UpdateSeen();
}

bool DisplayArea::MakeVisualization(QString& error)
{
    Display& display = *m_display;
    error.clear();
    display.cycleWord.clear();
    display.visualization.reset(); // the old one saves what it has before the new one reads
    display.visualization = display.library.Create(display.host);
    if (display.visualization && display.visualization->CreateWnd(display.frame->winId(), 0) == 0)
        display.visualization.reset();
    if (!display.visualization) {
        error = tr("The visualizations can't be shown here; pxvis.log tells why.");
        return false;
    }
    display.frame->RaiseText();
    return true;
}

QStringList DisplayArea::Modes() const
{
    if (!m_display->visualization)
        return {};
    QStringList modes
        = VisualProperty(*m_display->visualization, u"Modes").split('|', Qt::SkipEmptyParts);
    m_display->cycleWord = modes.value(0);
    return modes;
}

// The first mode is all scripts in turns; folders' modes of that kind end in the same words.
bool DisplayArea::IsCycle(const QString& mode) const
{
    if (m_display->cycleWord.isEmpty())
        Modes();
    const QString& word = m_display->cycleWord;
    return !word.isEmpty()
        && mode.sliced(mode.lastIndexOf('\\') + 1).compare(word, Qt::CaseInsensitive) == 0;
}

QString DisplayArea::CurrentMode() const
{
    return m_display->visualization ? VisualProperty(*m_display->visualization, u"Current Mode")
                                    : QString();
}

void DisplayArea::SetMode(const QString& mode)
{
    Display& display = *m_display;
    if (!display.visualization)
        return;
    display.scriptFile.clear();
    display.scriptTimer.stop();
    SetVisualProperty(*display.visualization, u"Current Mode", mode);
    display.host.DrawAwhile();
    emit ModeChanged();
}

bool DisplayArea::ShowScriptFile(const QString& path)
{
    if (!m_display->visualization || path.isEmpty())
        return false;
    m_display->scriptFile = QFileInfo(path).absoluteFilePath();
    return TryScriptFile();
}

// The visualization follows the file only once it has taken it.
bool DisplayArea::TryScriptFile()
{
    Display& display = *m_display;
    display.scriptTimer.stop();
    if (!display.visualization || display.scriptFile.isEmpty())
        return false;
    if (!SetVisualProperty(*display.visualization, u"Script File", display.scriptFile)) {
        display.scriptTimer.start();
        return false;
    }
    display.host.DrawAwhile();
    return true;
}

QString DisplayArea::ScriptFault() const
{
    return m_display->visualization ? VisualProperty(*m_display->visualization, u"Script Fault")
                                    : QString();
}

void DisplayArea::AddTo(QMenu& menu)
{
    if (!m_display->visualization)
        return;
    VisualMenu adapter(menu, [area = QPointer(this)](int32_t id, const QString& text) {
        if (!area || !area->m_display->visualization)
            return;
        const std::u16string units = text.toStdU16String();
        const VisMenuCommand command { id, units.c_str() };
        const QString before = area->CurrentMode();
        area->m_display->visualization->OnMenuCommand(&command);
        if (!area)
            return;
        Display& display = *area->m_display;
        const bool hasFileEnded = !display.scriptFile.isEmpty() && !display.scriptTimer.isActive()
            && VisualProperty(*display.visualization, u"Script File").isEmpty();
        if (!hasFileEnded && area->CurrentMode() == before)
            return;
        display.scriptFile.clear();
        display.scriptTimer.stop();
        emit area->ModeChanged();
    });
    m_display->visualization->BuildMenu(&adapter, 0);
}

void DisplayArea::ShowText(const QString& text, int milliseconds)
{
    Display& display = *m_display;
    display.text = text;
    display.frame->SetText(text.isEmpty() ? display.hint : text);
    if (text.isEmpty())
        display.textTimer.stop();
    else
        display.textTimer.start(milliseconds);
}

void DisplayArea::SetHint(const QString& text)
{
    Display& display = *m_display;
    if (text == display.hint)
        return;
    display.hint = text;
    if (display.text.isEmpty())
        display.frame->SetText(text);
}

void DisplayArea::SetControls(MakeControls make)
{
    m_display->makeControls = std::move(make);
}

bool DisplayArea::IsFullScreen() const
{
    return m_display->fullScreen != nullptr;
}

QWidget* DisplayArea::PictureWindow() const
{
    return m_display->fullScreen ? m_display->fullScreen : window();
}

void DisplayArea::SetFullScreen(bool fullScreen)
{
    if (fullScreen == IsFullScreen())
        return;
    if (!fullScreen)
        LeaveFullScreen();
    else if (m_display->visualization)
        EnterFullScreen();
    UpdateSeen();
    emit FullScreenChanged(); // also without a picture: whoever asked shows what is so
}

// The frame moves with all that is in it: a new window for the visualization would start the
// script anew, or another one of a cycle.
void DisplayArea::EnterFullScreen()
{
    auto* const full = new FullScreenWindow(*screen(), *m_display->frame);
    m_display->fullScreen = full;
    full->setWindowTitle(window()->windowTitle());
    full->setWindowIcon(window()->windowIcon());
    full->addActions(actions());
    if (m_display->makeControls)
        full->SetControls(m_display->makeControls());
    connect(full, &FullScreenWindow::LeaveAsked, this, [this] { SetFullScreen(false); });
    connect(full, &FullScreenWindow::MinimisedChanged, this, &DisplayArea::UpdateSeen);
    connect(new UrlDrops(*full), &UrlDrops::Dropped, this, &DisplayArea::Dropped);
    full->showFullScreen();
    full->activateWindow();
}

void DisplayArea::LeaveFullScreen()
{
    FullScreenWindow* const full = std::exchange(m_display->fullScreen, nullptr);
    full->Release();
    m_display->frame->setParent(this);
    m_display->frame->setGeometry(rect());
    full->hide();
    full->deleteLater(); // an event of its own may have led here
    window()->activateWindow();
}

bool DisplayArea::IsSeen() const
{
    return (m_display->fullScreen || isVisible()) && !PictureWindow()->isMinimized();
}

// A frame that is hidden makes the library draw nothing.
void DisplayArea::UpdateSeen()
{
    Display& display = *m_display;
    const bool isSeen = IsSeen() && display.visualization;
    display.frame->setVisible(isSeen);
    display.host.SetResting(!isSeen);
    if (isSeen)
        display.host.DrawAwhile();
    update();
}

bool DisplayArea::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_display->watched && event->type() == QEvent::WindowStateChange)
        UpdateSeen();
    return QWidget::eventFilter(watched, event);
}

void DisplayArea::actionEvent(QActionEvent* event)
{
    QWidget::actionEvent(event);
    if (!m_display->fullScreen)
        return;
    if (event->type() == QEvent::ActionAdded)
        m_display->fullScreen->insertAction(event->before(), event->action());
    else if (event->type() == QEvent::ActionRemoved)
        m_display->fullScreen->removeAction(event->action());
}

void DisplayArea::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    const QString text
        = m_display->fullScreen ? tr("The picture is in full screen.") : m_display->fault;
    constexpr int margin = 16;
    painter.setPen(Qt::lightGray);
    painter.drawText(rect().marginsRemoved({ margin, margin, margin, margin }),
        Qt::AlignCenter | Qt::TextWordWrap, text);
}

void DisplayArea::resizeEvent(QResizeEvent*)
{
    if (!m_display->fullScreen)
        m_display->frame->setGeometry(rect());
}

void DisplayArea::showEvent(QShowEvent*)
{
    Display& display = *m_display;
    if (display.watched != window()) {
        if (display.watched)
            display.watched->removeEventFilter(this);
        display.watched = window();
        display.watched->installEventFilter(this);
    }
    UpdateSeen();
}

void DisplayArea::hideEvent(QHideEvent*)
{
    UpdateSeen();
}

void DisplayArea::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        emit DoubleClicked();
}

void DisplayArea::contextMenuEvent(QContextMenuEvent* event)
{
    emit MenuAsked(event->globalPos());
}

}
