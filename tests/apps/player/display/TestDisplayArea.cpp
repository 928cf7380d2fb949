#include "ChildProcess.h"
#include "apps/player/display/DisplayDesk.h"

#include <doctest/doctest.h>

#include <QAction>
#include <QDropEvent>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QPointer>

using namespace pxvis::player;

namespace {

constexpr uint32_t red = DisplayDesk::red;
constexpr uint32_t blue = DisplayDesk::blue;
constexpr uint32_t green = DisplayDesk::green;
constexpr uint32_t white = 0xffffff;

}

TEST_CASE("The area shows the mode that is chosen, at each size")
{
    InProcessOfItsOwn([] {
        DisplayDesk desk;
        DisplayArea& area = desk.area;
        int changes = 0;
        QObject::connect(&area, &DisplayArea::ModeChanged, [&] { ++changes; });
        REQUIRE(desk.Open());
        area.setGeometry(0, 0, 480, 390);
        CHECK(desk.RunUntil([&] { return desk.IsShown(red); }));
        area.SetMode("Test\\Blue");
        CHECK(desk.RunUntil([&] { return desk.IsShown(blue); }));
        CHECK(changes == 2);
        CHECK(area.CurrentMode() == "Test\\Blue");
        const QStringList modes = area.Modes();
        CHECK(modes.contains("Test\\Red"));
        CHECK(area.IsCycle(modes.value(0)));
        CHECK(area.IsCycle("Test\\" + modes.value(0)));
        CHECK_FALSE(area.IsCycle("Test\\Red"));
        CHECK_FALSE(area.IsCycle(""));

        area.Restart();
        CHECK(area.CurrentMode() == "Test\\Blue");
        CHECK(desk.RunUntil([&] { return desk.IsShown(blue); }));
    });
}

TEST_CASE("A script from anywhere is shown instead of the mode, which stays what it was")
{
    InProcessOfItsOwn([] {
        DisplayDesk desk;
        DisplayArea& area = desk.area;
        REQUIRE(desk.Open());
        desk.AddScript("mine.pxv", "0x1030E0");
        int lateFiles = 0;
        QObject::connect(&area, &DisplayArea::ScriptFileShown, [&] { ++lateFiles; });
        CHECK_FALSE(area.ShowScriptFile(desk.home.Path("late.pxv").c_str()));
        area.Restart();
        desk.AddScript("late.pxv", "0x1030E0");
        CHECK(desk.RunUntil([&] { return lateFiles == 1 && desk.IsShown(blue); }));
        CHECK_FALSE(area.ShowScriptFile(desk.home.Path("unwanted.pxv").c_str()));
        area.SetMode("Test\\Red");
        desk.AddScript("unwanted.pxv", "0x1030E0");
        desk.Run(1200);
        CHECK(desk.IsShown(red));
        CHECK(lateFiles == 1);

        CHECK(area.ShowScriptFile(desk.home.Path("mine.pxv").c_str()));
        CHECK(desk.RunUntil([&] { return desk.IsShown(blue); }));
        area.SetFullScreen(true);
        CHECK(desk.RunUntil([&] { return desk.IsShown(blue); }));
        area.Restart();
        CHECK(desk.RunUntil([&] { return desk.IsShown(blue); }));
        CHECK(area.CurrentMode() == "Test\\Red");
        area.SetMode("Test\\Red");
        CHECK(desk.RunUntil([&] { return desk.IsShown(red); }));
        area.Restart();
        CHECK(desk.RunUntil([&] { return desk.IsShown(red); }));
    });
}

TEST_CASE("Full screen takes the picture over and gives it back, however it is left")
{
    InProcessOfItsOwn([] {
        DisplayDesk desk(true);
        DisplayArea& area = desk.area;
        int changes = 0;
        QObject::connect(&area, &DisplayArea::FullScreenChanged, [&] { ++changes; });
        bool isShortcutTaken = false;
        QAction shared("Pause");
        shared.setShortcut(QKeySequence("Ctrl+P"));
        QObject::connect(&shared, &QAction::triggered, [&] { isShortcutTaken = true; });
        area.addAction(&shared);
        area.SetFullScreen(true);
        CHECK_FALSE(area.IsFullScreen()); // nothing to show
        CHECK(changes == 1);
        REQUIRE(desk.Open());

        const auto isFull = [&] {
            return area.PictureWindow()->size() == QSize(1280, 1024) && desk.IsShown(red);
        };
        const std::function<void()> ways[] = {
            [&] {
                desk.Do({ "key", "Escape" });
            },
            [&] {
                desk.Do({ "click", "--repeat", "2", "--delay", "60", "1" });
            },
            [&] { area.PictureWindow()->close(); },
            [&] { area.SetFullScreen(false); },
        };
        for (const auto& leave : ways) {
            area.SetFullScreen(true);
            CHECK(area.IsFullScreen());
            CHECK(area.PictureWindow() != &desk.window);
            CHECK(desk.RunUntil(isFull));
            CHECK(desk.RunUntil([&] { return area.PictureWindow()->isActiveWindow(); }));
            isShortcutTaken = false;
            desk.Do({ "key", "ctrl+p" });
            CHECK(desk.RunUntil([&] { return isShortcutTaken; }));
            leave();
            CHECK(desk.RunUntil([&] { return !area.IsFullScreen(); }));
            CHECK(desk.RunUntil([&] { return desk.IsShown(red); }));
            CHECK(QApplication::topLevelWidgets().size() == 1);
        }
        CHECK(changes == 9);
    });
}

TEST_CASE("In full screen the pointer and the controls come with the hand and go by themselves")
{
    InProcessOfItsOwn([] {
        DisplayDesk desk(true);
        DisplayArea& area = desk.area;
        REQUIRE(desk.Open());
        QPointer<QWidget> bar;
        area.SetControls([&] { return bar = new QLabel("controls"); });
        area.SetFullScreen(true);
        REQUIRE(bar);
        CHECK(desk.RunUntil([&] { return desk.IsShown(red); })); // which nobody moved the hand for
        QWidget* const frame = area.PictureWindow()->childAt(5, 5);
        REQUIRE(frame);
        const auto areShown = [&](bool shown) {
            const ScreenPixels pixels = desk.Pixels(*area.PictureWindow());
            return (pixels.At(1000, 1020) != red) == shown && bar->isVisible() == shown
                && (frame->cursor().shape() != Qt::BlankCursor) == shown;
        };
        desk.Do({ "mousemove", "300", "300" });
        CHECK(desk.RunUntil([&] { return areShown(true); }));
        CHECK(desk.RunUntil([&] { return areShown(false); }));
        desk.Do({ "mousemove", "400", "1020" });
        CHECK(desk.RunUntil([&] { return areShown(true); }));
        desk.Run(4500);
        CHECK(areShown(true)); // in use
        desk.Do({ "mousemove", "400", "300" });
        CHECK(desk.RunUntil([&] { return areShown(false); }));
        area.SetFullScreen(false);
        CHECK(desk.RunUntil([&] { return !bar; }));
    });
}

TEST_CASE("What is shown goes on through full screen, also one script of a cycle")
{
    InProcessOfItsOwn([] {
        DisplayDesk desk(true);
        DisplayArea& area = desk.area;
        QObject::connect(&area, &DisplayArea::DoubleClicked, [&] { area.SetFullScreen(true); });
        REQUIRE(desk.Open());
        desk.AddScript("other.pxv", "0x40C040");
        REQUIRE(area.ShowScriptFile(desk.home.Path("other.pxv").c_str()));
        REQUIRE(desk.RunUntil([&] { return desk.IsShown(green); }));
        area.SetMode("Test\\" + area.Modes().value(0));
        REQUIRE(desk.RunUntil([&] { return desk.IsShown(red) || desk.IsShown(blue); }));
        const uint32_t color = desk.IsShown(red) ? red : blue;
        for (int turn = 0; turn < 4; ++turn) {
            desk.Do({ "mousemove", "300", "300", "click", "--repeat", "2", "--delay", "60", "1" });
            CHECK(desk.RunUntil([&] { return area.IsFullScreen() == (turn % 2 == 0); }));
            CHECK(desk.RunUntil([&] { return desk.IsShown(color); }));
            desk.Run(500); // else it were one double click more
        }
    });
}

TEST_CASE("A text lies at the lower left edge of the picture and goes again")
{
    InProcessOfItsOwn([] {
        DisplayDesk desk;
        DisplayArea& area = desk.area;
        REQUIRE(desk.Open());
        const auto isText = [&](bool isExpected) {
            const QWidget& seen = *area.PictureWindow();
            const ScreenPixels pixels = desk.Pixels(seen);
            const QRect rect = area.IsFullScreen() ? seen.rect() : area.geometry();
            const int text = pixels.Count(
                white, rect.left(), rect.bottom() - 50, rect.left() + 120, rect.bottom());
            // The picture is all around.
            return (text > 20) == isExpected && pixels.At(rect.left() + 2, rect.bottom() - 2) == red
                && pixels.At(rect.center().x(), rect.bottom() - 20) == red;
        };
        area.ShowText("Calm\\Tide", 60'000);
        CHECK(desk.RunUntil([&] { return isText(true); }));
        area.setGeometry(20, 10, 440, 350);
        CHECK(desk.RunUntil([&] { return isText(true); }));
        area.SetFullScreen(true);
        CHECK(desk.RunUntil([&] { return isText(true); }));
        area.SetFullScreen(false);
        CHECK(desk.RunUntil([&] { return isText(true); }));
        area.ShowText(QString(5000, 'W'), 300);
        CHECK(desk.RunUntil(
            [&] { return desk.Pixels(desk.window).At(area.geometry().center().x(), 340) != red; }));
        CHECK(desk.RunUntil([&] { return desk.IsShown(red); }));
    });
}

TEST_CASE("Where there is no picture, the area tells why, and takes all calls")
{
    InProcessOfItsOwn([] {
        DisplayDesk desk;
        DisplayArea& area = desk.area;
        desk.window.show();
        QString error;
        CHECK_FALSE(area.Start(desk.home.Path("libpxvis.so").c_str(), error));
        CHECK(error.contains("libpxvis.so"));
        CHECK_FALSE(error.contains('\n'));
        CHECK(desk.RunUntil([&] {
            const ScreenPixels pixels = desk.Pixels(desk.window);
            return pixels.At(60, 40) == 0 && pixels.Count(0, 50, 30, 450, 330) < 400 * 300 - 100;
        }));
        QMenu menu;
        area.AddTo(menu);
        CHECK(menu.isEmpty());
        area.SetMode("Test\\Red");
        area.SetFullScreen(true);
        area.ShowText("Text");
        area.Restart();
        CHECK_FALSE(area.ShowScriptFile("/"));
        CHECK(area.Modes().isEmpty());
        CHECK_FALSE(area.IsCycle("Cycle All"));
        CHECK(area.CurrentMode() == "");
    });
}

TEST_CASE("Nothing is drawn that nobody sees, and only a moment of what nobody hears")
{
    InProcessOfItsOwn([] {
        DisplayDesk desk(true);
        DisplayArea& area = desk.area;
        REQUIRE(desk.Open());
        const auto isDrawn = [&](int milliseconds) {
            const int before = desk.sound.taken;
            desk.Run(milliseconds);
            return desk.sound.taken > before + 2;
        };
        const auto isDrawnSoon = [&] {
            const int before = desk.sound.taken;
            return desk.RunUntil([&] { return desk.sound.taken > before + 2; });
        };
        CHECK(isDrawnSoon());
        desk.window.showMinimized();
        CHECK(desk.RunUntil([&] { return !isDrawn(300); }));
        CHECK_FALSE(isDrawn(1500));
        desk.window.showNormal();
        CHECK(desk.RunUntil([&] { return desk.IsShown(red); }));
        CHECK(isDrawnSoon());
        area.hide();
        CHECK_FALSE(isDrawn(1500));
        area.show();
        CHECK(desk.RunUntil([&] { return desk.IsShown(red); }));
        CHECK(isDrawnSoon());

        desk.sound.plays = false;
        desk.Run(1200);
        area.SetMode("Test\\Blue");
        CHECK(desk.RunUntil([&] { return desk.IsShown(blue); }));
        area.SetFullScreen(true);
        CHECK(desk.RunUntil([&] { return desk.IsShown(blue); }));
    });
}

TEST_CASE("The visualization's entries stand in a menu as it gave them, and do what they say")
{
    InProcessOfItsOwn([] {
        DisplayDesk desk;
        REQUIRE(desk.Open());
        QMenu menu;
        for (int turn = 0; turn < 2; ++turn) {
            menu.clear();
            desk.area.AddTo(menu);
            REQUIRE(menu.actions().size() >= 1);
            const QMenu* const qualities = menu.actions().first()->menu();
            REQUIRE(qualities);
            REQUIRE(qualities->actions().size() == 5);
            CHECK(menu.findChildren<QMenu*>().size() == 1);
            // The third of five at first, then what was chosen.
            CHECK(qualities->actions().at(turn == 0 ? 2 : 4)->isChecked());
            CHECK_FALSE(qualities->actions().at(0)->isChecked());
            qualities->actions().at(4)->trigger();
        }
    });
}

TEST_CASE("What is done over the picture comes to the player")
{
    InProcessOfItsOwn([] {
        DisplayDesk desk;
        DisplayArea& area = desk.area;
        int doubleClicks = 0;
        QPoint menuPlace;
        QList<QUrl> dropped;
        QObject::connect(&area, &DisplayArea::DoubleClicked, [&] { ++doubleClicks; });
        QObject::connect(&area, &DisplayArea::MenuAsked, [&](QPoint place) { menuPlace = place; });
        QObject::connect(
            &area, &DisplayArea::Dropped, [&](const QList<QUrl>& urls) { dropped = urls; });
        REQUIRE(desk.Open());
        area.ShowText("A text takes nothing away", 60'000);
        for (const char* y : { "200", "410" }) { // 410: in the text
            doubleClicks = 0;
            menuPlace = {};
            desk.Do({ "mousemove", "180", y, "click", "--repeat", "2", "--delay", "60", "1" });
            CHECK(desk.RunUntil([&] { return doubleClicks == 1; }));
            desk.Do({ "click", "3" });
            CHECK(desk.RunUntil([&] { return menuPlace == QPoint(180, std::atoi(y)); }));
        }

        const auto drop = [](QWidget& target, const QMimeData& what) {
            QDragEnterEvent enter(
                { 5, 5 }, Qt::MoveAction | Qt::CopyAction, &what, Qt::LeftButton, {});
            QApplication::sendEvent(&target, &enter);
            QDropEvent drop({ 5, 5 }, Qt::MoveAction | Qt::CopyAction, &what, Qt::LeftButton, {});
            QApplication::sendEvent(&target, &drop);
            return enter.isAccepted() && drop.isAccepted() && drop.dropAction() == Qt::CopyAction;
        };
        QMimeData files;
        files.setUrls({ QUrl("file:///a.ogg"), QUrl("file:///b.ogg") });
        CHECK(drop(area, files));
        CHECK(dropped == files.urls());
        QMimeData text;
        text.setText("words");
        CHECK_FALSE(drop(area, text));
        dropped.clear();
        area.SetFullScreen(true);
        CHECK(drop(*area.PictureWindow(), files));
        CHECK(dropped == files.urls());
    });
}
