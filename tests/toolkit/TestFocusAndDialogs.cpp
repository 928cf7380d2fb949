#include "WindowTesting.h"

#include "foundation/OQDllString.h"
#include "toolkit/OQDisplayConnection.h"
#include "toolkit/OQMenuManager.h"
#include "toolkit/OQMenuWnd.h"
#include "toolkit/OQQtWindowServices.h"

#include "TestFolder.h"

#include <QApplication>
#include <QFileDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QWindow>

namespace {

OQDisplayConnection& Server()
{
    return *OQToolkit::Get().GetDisplay();
}

// Runs once the dialog is shown and had time to paint.
template <class Dialog, class Action>
void WhenShown(Action action)
{
    auto* const timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, [timer, action, seen = 0]() mutable {
        QWidget* const popup = QApplication::activePopupWidget();
        auto* const shown
            = qobject_cast<Dialog*>(popup ? popup : QApplication::activeModalWidget());
        if (!shown || !shown->isVisible() || ++seen < 5)
            return;
        timer->stop();
        timer->deleteLater();
        action(*shown);
    });
    timer->start(20);
}

}

TEST_CASE("a press takes the keyboard, and a dialog gives it back")
{
    InProcessOfItsOwn([] {
        XvfbDisplay display;
        PlainHost host;
        REQUIRE(display.Start({ "openbox" }));
        REQUIRE(PumpUntil([&] { return host.IsManaged(); }));
        const uint32_t pane = host.MakeChild(host.GetWindow(), 0, 0, 300, 200, 0);
        TestWnd wnd;
        REQUIRE(wnd.CreateChild(pane, u"Keys"));
        const auto handle = static_cast<uint32_t>(wnd.GetHandle());
        CHECK(PumpUntil([&] { return wnd.paints > 0; }));
        CHECK(Server().GetInputFocus() != handle); // showing it takes nothing
        const std::string window = std::to_string(handle);
        REQUIRE(
            RunProgram({ "xdotool", "mousemove", "--window", window, "50", "50", "click", "1" }));
        CHECK(PumpUntil([&] { return Server().GetInputFocus() == handle; }));
        CHECK(PumpUntil([&] { return wnd.HasFocus(); }));
        // Also when the pointer is elsewhere.
        RunProgram({ "xdotool", "mousemove", "1200", "1000", "key", "a", "key", "shift+Left" });
        CHECK(PumpUntil([&] { return wnd.keys.size() >= 6; }));
        REQUIRE(wnd.keys.size() >= 6);
        CHECK(wnd.keys[0].pressed);
        CHECK(wnd.keys[0].key == 'a');
        CHECK(wnd.keys[0].text == u"a");
        CHECK_FALSE(wnd.keys[1].pressed);
        CHECK(wnd.keys[3].key == 0xFF51); // XK_Left
        CHECK(wnd.keys[3].modifiers == OQModifierShift);

        OQQtWindowServices services;
        const int paintsBefore = wnd.paints;
        int paintsWithin = 0;
        uint32_t transientFor = 0;
        std::string text;
        wnd.onEvent = [&](const char* event) {
            if (std::string(event) == "Timer")
                wnd.Invalidate();
        };
        wnd.SetTimer(1, 16);
        WhenShown<QMessageBox>([&](QMessageBox& box) {
            QTimer::singleShot(500, [&] {
                paintsWithin = wnd.paints - paintsBefore;
                const std::string value = host.GetTextProperty(
                    static_cast<uint32_t>(box.winId()), XCB_ATOM_WM_TRANSIENT_FOR);
                if (value.size() == 4)
                    std::memcpy(&transientFor, value.data(), 4);
                text = box.text().toStdString() + "|" + box.windowTitle().toStdString();
                box.button(QMessageBox::Yes)->click();
            });
        });
        CHECK(services.ShowMessageBox(
                  wnd.GetHandle(), u"Title", u"<b>Text</b> & more", OQMessageBoxQuestion)
            == OQMessageBoxYes);
        CHECK(text == "<b>Text</b> & more|Title");
        CHECK(paintsWithin > 10);
        CHECK(transientFor == host.GetWindow());
        CHECK(PumpUntil([&] { return Server().GetInputFocus() == handle; }));
        PumpFor(400); // and it stays
        CHECK(Server().GetInputFocus() == handle);
        wnd.keys.clear();
        RunProgram({ "xdotool", "key", "b" });
        CHECK(PumpUntil([&] { return !wnd.keys.empty() && wnd.keys[0].text == u"b"; }));
    });
}

TEST_CASE("a press takes the keyboard in a host of Qt as well, from its own fields")
{
    InProcessOfItsOwn([] {
        XvfbDisplay display;
        REQUIRE(display.Start({ "openbox" }));
        PlainHost other;
        REQUIRE(PumpUntil([&] { return other.IsManaged(); }));
        other.Show(false);
        int count = 1;
        char name[] = "host";
        char* arguments[] = { name, nullptr };
        const QApplication application(count, arguments);
        QWidget top;
        QLineEdit field(&top);
        QWidget pane(&top);
        QWindow foreign;
        foreign.setParent((top.winId(), top.windowHandle()));
        foreign.setGeometry(0, 250, 300, 100);
        pane.setGeometry(0, 50, 300, 200);
        top.resize(300, 350);
        top.show();
        foreign.show();
        TestWnd child;
        TestWnd embedded;
        REQUIRE(child.CreateChild(pane.winId(), u"Child"));
        REQUIRE(embedded.CreateChild(foreign.winId(), u"Embedded"));
        CHECK(PumpUntil([&] { return child.paints > 0 && embedded.paints > 0; }));
        CHECK(PumpUntil([&] { return top.isActiveWindow(); }));
        field.setFocus();
        const auto click = [](uintptr_t window) {
            RunProgram({ "xdotool", "mousemove", "--window", std::to_string(window), "20", "10",
                "click", "1" });
        };
        const auto type = [](const char* key, const std::function<bool()>& arrived) {
            RunProgram({ "xdotool", "mousemove", "1270", "1000", "key", key });
            return PumpUntil(arrived);
        };
        click(child.GetHandle());
        CHECK(PumpUntil([&] { return child.HasFocus(); }));
        CHECK(type("c", [&] { return child.keys.size() == 2; }));
        click(embedded.GetHandle());
        CHECK(PumpUntil([&] { return Server().GetInputFocus() == embedded.GetHandle(); }));
        CHECK(PumpUntil([&] { return embedded.HasFocus(); }));
        CHECK(type("e", [&] { return embedded.keys.size() == 2; }));
        PumpFor(200); // nobody is as fast as xdotool
        click(field.winId());
        CHECK(PumpUntil([&] { return top.isActiveWindow() && field.hasFocus(); }));
        CHECK(type("f", [&] { return field.text() == "f"; }));
        PumpFor(200);
        click(child.GetHandle());
        CHECK(PumpUntil([&] { return child.HasFocus(); }));
        CHECK(type("d", [&] { return child.keys.size() == 4; }));
        CHECK(child.keys.back().text == u"d");
        CHECK(embedded.keys.size() == 2);
        child.Enable(false);
        child.mouse.clear();
        click(child.GetHandle());
        PumpFor(200);
        CHECK(child.CountMouse(OQMouseAction::Press) == 0);
    });
}

TEST_CASE("the file dialog gives the file that was chosen")
{
    InProcessOfItsOwn([] {
        XvfbDisplay display;
        PlainHost host;
        const TestFolder folder;
        folder.Write("one.pxv", "");
        folder.Write("two.txt", "");
        OQQtWindowServices services;
        OQString chosen = u"stale";
        OQDllString path(chosen);
        const OQString start = OQString::FromUtf8(folder.Path("one.pxv"));
        const OQFileDialogSetup open {
            .title = u"Open", .filter = u"Scripts|*.pxv;*.xml|All files|*", .path = start.GetText()
        };
        REQUIRE(OQToolkit::Get().EnsureApplication());
        QStringList filters;
        WhenShown<QFileDialog>([&](QFileDialog& dialog) {
            filters = dialog.nameFilters();
            dialog.findChild<QPushButton*>()->click();
        });
        CHECK(services.ChooseFile(host.GetWindow(), open, path));
        CHECK(chosen == start);
        CHECK(filters == QStringList { "Scripts (*.pxv *.xml)", "All files (*)" });

        const OQString target = OQString::FromUtf8(folder.Path("new"));
        const OQFileDialogSetup save {
            .save = true, .path = target.GetText(), .extension = u"pxv"
        };
        WhenShown<QFileDialog>(
            [&](QFileDialog& dialog) { dialog.findChild<QPushButton*>()->click(); });
        CHECK(services.ChooseFile(0, save, path));
        CHECK(chosen == target + u".pxv");
        WhenShown<QFileDialog>([&](QFileDialog& dialog) { dialog.reject(); });
        CHECK_FALSE(services.ChooseFile(0x1FFFFFFF, open, path));
        CHECK(chosen.IsEmpty());
    });
}

TEST_CASE("a menu shows its entries where it is asked to and gives the chosen one")
{
    InProcessOfItsOwn([] {
        XvfbDisplay display;
        PlainHost host;
        TestWnd wnd;
        OQMenuManager menu;
        IOQMenu* const quality = menu.AddSubmenu(u"Display Quality");
        quality->AddItem(1015, u"Highest & best", 0);
        quality->AddItem(1014, u"High", VisMenuChecked);
        menu.AddSeparator();
        menu.AddItem(1, u"Not now", VisMenuDisabled);
        menu.AddItem(1002, u"Visualization Studio", 0);
        OQMenuWnd popup;
        CHECK_FALSE(popup.Show(menu, wnd, 0, 0)); // without a window
        REQUIRE(wnd.CreateChild(host.GetWindow(), u"Menu"));
        host.Configure(300, 200, 300, 200);
        PumpFor(100);

        QPoint place;
        WhenShown<QMenu>([&](QMenu& shown) {
            place = shown.mapToGlobal(QPoint(0, 0));
            const QList<QAction*> actions = shown.actions();
            REQUIRE(actions.size() == 4);
            CHECK(actions[1]->isSeparator());
            CHECK_FALSE(actions[2]->isEnabled());
            const QList<QAction*> inner = actions[0]->menu()->actions();
            CHECK(inner[0]->text() == "Highest && best");
            CHECK_FALSE(inner[0]->isCheckable());
            CHECK(inner[1]->isChecked());
            shown.setActiveAction(actions[0]);
            QTimer::singleShot(200, [menu = actions[0]->menu()] {
                menu->setActiveAction(menu->actions()[1]);
                QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
                QCoreApplication::sendEvent(menu, &press);
            });
        });
        CHECK(popup.Show(menu, wnd, 20, 30));
        CHECK(place == QPoint(320, 230));
        CHECK(popup.GetChosenId() == 1014);
        CHECK(popup.GetChosenText() == u"High");
        WhenShown<QMenu>([&](QMenu& shown) { shown.close(); });
        CHECK_FALSE(popup.Show(menu, wnd, 20, 30));
        CHECK(popup.GetChosenId() == 0);
    });
}
