#pragma once

#include <QIcon>
#include <QPainterPath>

namespace pxvis::player {

enum class IconShape
{
    Play,
    Pause,
    PreviousSong,
    NextSong,
    PreviousScript,
    NextScript,
    Volume,
    Muted,
    Shuffle,
    Repeat,
    RepeatOne,
    List,
    FullScreen,
    Note,
    Sound,
    Folder,
    Star,
    Never
};

// The player's own drawings, sharp at any size, in the colour of the text: icon themes need not be
// there. A checked button's is in the accent's colour.
QIcon MakeIcon(IconShape shape);
QIcon MakeIcon(IconShape off, IconShape on); // of a button that can be checked

// Filled, on a square of 24 units.
QPainterPath PathOf(IconShape shape);

}
