#include "apps/player/JumpSlider.h"
#include "apps/player/MainWindow.h"
#include "apps/player/PlayerDesk.h"
#include "apps/player/RatingStars.h"
#include "apps/player/ShortcutGuard.h"
#include "apps/player/ShortcutsDialog.h"
#include "apps/player/TransportBar.h"

#include <QDialog>
#include <QDockWidget>
#include <QLabel>
#include <QMouseEvent>
#include <QSet>
#include <QToolButton>

using namespace pxvis::player;

TEST_CASE("No two actions have a key in common, and the dialog has them all")
{
    Application();
    const PlayerActions actions;
    QSet<QKeySequence> keys;
    QStringList listed;
    ShortcutsDialog dialog(actions, nullptr);
    for (const QLabel* label : dialog.findChildren<QLabel*>())
        listed << label->text();
    for (const PlayerActions::Entry& entry : actions.All()) {
        CAPTURE(entry.action->text().toStdString());
        CHECK_FALSE(entry.action->text().isEmpty());
        for (const QKeySequence& key : entry.action->shortcuts()) {
            CHECK_FALSE(keys.contains(key));
            keys.insert(key);
        }
        if (!entry.action->shortcuts().isEmpty())
            CHECK(listed.join('\n').contains(entry.action->shortcut().toString()));
    }
}

TEST_CASE("The window invites to start, names its controls, and follows the player")
{
    PlayerDesk desk;
    MainWindow window(*desk.player);
    window.show();
    const auto* title = window.findChild<QToolButton*>();
    REQUIRE(title);
    for (const QToolButton* button : window.findChildren<QToolButton*>()) {
        if (button->isVisible())
            CHECK_FALSE((button->accessibleName() + button->text()).isEmpty());
    }
    auto* place = window.findChild<JumpSlider*>();
    REQUIRE(place);
    CHECK_FALSE(place->isEnabled());
    CHECK(window.windowTitle() == "pxvis");
    window.findChild<QDockWidget*>("playlist")->show();
    const QSize least = window.minimumSizeHint();
    CHECK(least.width() <= 640);
    CHECK(least.height() <= 400);

    desk.player->Open({ desk.AddSong("a song.wav", 60) });
    CHECK(desk.WaitUntil([&] { return desk.IsPlaying(0) && place->isEnabled(); }));
    CHECK(desk.WaitUntil([&] { return window.windowTitle() == "a song – pxvis"; }));
    CHECK(place->maximum() == 60000);

    // It goes to where it is pressed.
    const QPointF middle(place->width() / 2.0, place->height() / 2.0);
    for (const QEvent::Type type : { QEvent::MouseButtonPress, QEvent::MouseButtonRelease }) {
        QMouseEvent event(type, middle, place->mapToGlobal(middle), Qt::LeftButton,
            type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(place, &event);
    }
    CHECK(desk.WaitUntil([&] { return desk.player->Position() > 29'000'000; }));
    CHECK(desk.player->Position() < 45'000'000);
}

TEST_CASE("Keys that a control needs are its own")
{
    Application();
    ShortcutGuard guard;
    QToolButton button;
    JumpSlider slider;
    const auto isLeft = [&guard](QWidget& control, Qt::Key key, Qt::KeyboardModifiers modifiers) {
        QKeyEvent event(QEvent::ShortcutOverride, key, modifiers, " ");
        event.ignore();
        return guard.eventFilter(&control, &event) && event.isAccepted();
    };
    CHECK(isLeft(button, Qt::Key_Space, Qt::NoModifier));
    CHECK_FALSE(isLeft(button, Qt::Key_Left, Qt::NoModifier));
    CHECK(isLeft(slider, Qt::Key_Left, Qt::NoModifier));
    CHECK_FALSE(isLeft(slider, Qt::Key_Left, Qt::ControlModifier));
    CHECK_FALSE(isLeft(slider, Qt::Key_Space, Qt::NoModifier));
    // Esc closes a dialog that is open over the full screen, and only then leaves that.
    CHECK_FALSE(isLeft(button, Qt::Key_Escape, Qt::NoModifier));
    QDialog dialog;
    auto* field = new QToolButton(&dialog);
    CHECK(isLeft(*field, Qt::Key_Escape, Qt::NoModifier));
}

TEST_CASE("Times and ratings read as people write them")
{
    CHECK(TimeText(0) == "0:00");
    CHECK(TimeText(59'999) == "0:59");
    CHECK(TimeText(3'661'000) == "1:01:01");
    Application();
    RatingStars stars;
    int asked = -2;
    QObject::connect(&stars, &RatingStars::Rated, [&asked](int rating) { asked = rating; });
    stars.resize(stars.sizeHint());
    const auto click = [&stars](double x) {
        QMouseEvent event(QEvent::MouseButtonPress, QPointF(x, 9), QPointF(x, 9), Qt::LeftButton,
            Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&stars, &event);
    };
    click(40);
    CHECK(asked == 3);
    stars.SetRating(3);
    click(40);
    CHECK(asked == SongLibrary::noRating);
    click(stars.width() - 5);
    CHECK(asked == SongLibrary::never);
}
