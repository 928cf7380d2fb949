#pragma once

#include <QList>
#include <QStringList>
#include <QUrl>
#include <QWidget>

#include <functional>
#include <memory>

class QMenu;

namespace pxvis::player {

class VisualHost;

// The place where the visualization shows: loads libpxvis.so at run time and talks to it through
// the public contract alone. In full screen a second top-level window has the picture, which goes
// on as it was. Files can be dropped on both. Actions that are added to the area (addActions) have
// their shortcuts in full screen as well.
class DisplayArea : public QWidget
{
    Q_OBJECT

public:
    explicit DisplayArea(VisualHost& host, QWidget* parent = nullptr);
    ~DisplayArea() override;

    // Loads the library and makes its window. False with one line; the area then shows that line.
    // `library`: "" for the one of this installation.
    bool Start(const QString& library, QString& error);
    // Makes the visualization anew, which reads its settings afresh; the mode stays.
    void Restart();

    QStringList Modes() const; // "Cycle All", "Calm\Cycle All", "Calm\Tide" ...
    // Whether it is the name of a mode that plays several scripts in turns.
    bool IsCycle(const QString& mode) const;
    QString CurrentMode() const;
    void SetMode(const QString& mode);
    // Shows a script from anywhere, which is no mode and is not remembered, until another mode is
    // chosen. False if it can't be read; then it is asked for again until it can.
    bool ShowScriptFile(const QString& path);

    // What is wrong with the script that is shown, or is to be, in a line; "" if nothing is.
    QString ScriptFault() const;

    // Adds what the visualization offers.
    void AddTo(QMenu& menu);

    // A text over the picture at its lower edge for so long; an empty one takes it away.
    void ShowText(const QString& text, int milliseconds = 4000);

    // A text there for as long as no other is.
    void SetHint(const QString& text);

    // What each full screen has at its lower edge while the pointer moves.
    using MakeControls = std::function<QWidget*()>;
    void SetControls(MakeControls make);

    // Without a picture there is none, though FullScreenChanged comes.
    void SetFullScreen(bool fullScreen);
    bool IsFullScreen() const;
    // The window that the picture is in: the parent for dialogs and menus, which another window
    // would hide in full screen.
    QWidget* PictureWindow() const;

signals:
    void ModeChanged(); // by SetMode or by the visualization's menu
    void ScriptFileShown(); // one that couldn't be read before
    void FullScreenChanged();
    void DoubleClicked(); // outside of full screen
    void MenuAsked(const QPoint& globalPosition);
    void Dropped(const QList<QUrl>& urls);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void actionEvent(QActionEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    struct Display;

    bool MakeVisualization(QString& error);
    bool TryScriptFile();
    bool IsSeen() const;
    void UpdateSeen();
    void EnterFullScreen();
    void LeaveFullScreen();

    std::unique_ptr<Display> m_display;
};

}
