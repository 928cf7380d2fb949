#pragma once

#include <QList>
#include <QStringList>
#include <QUrl>
#include <QWidget>

#include <memory>

class QMenu;

namespace pxvis::player {

class VisualHost;

// The place where the visualization shows: loads libpxvis.so at run time and talks to it through
// the public contract alone. In full screen a second top-level window takes the picture over. Files
// can be dropped on both.
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
    static bool IsCycle(
        const QString& mode); // the name of a mode that plays several scripts in turns
    QString CurrentMode() const;
    void SetMode(const QString& mode);
    // Shows a script from anywhere, which is no mode and is not remembered.
    bool ShowScriptFile(const QString& path);

    // Adds what the visualization offers.
    void AddTo(QMenu& menu);

    // A text over the picture at its lower edge for so long; an empty one takes it away.
    void ShowText(const QString& text, int milliseconds = 4000);

    bool IsFullScreen() const;
    void SetFullScreen(bool fullScreen);

signals:
    void ModeChanged(); // by SetMode or by the visualization's menu
    void FullScreenChanged();
    void DoubleClicked();
    void MenuAsked(const QPoint& globalPosition);
    void Dropped(const QList<QUrl>& urls);

private:
    struct Display;

    std::unique_ptr<Display> m_display;
};

}
