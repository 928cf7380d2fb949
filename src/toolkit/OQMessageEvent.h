#pragma once

#include "toolkit/OQWindowMailbox.h"

#include <QEvent>

// A posted message on its way to the widget.
class OQMessageEvent final : public QEvent
{
public:
    OQMessageEvent(uint32_t message, intptr_t p1, intptr_t p2)
        : QEvent(static_cast<Type>(OQWindowMailbox::MessageEvent()))
        , message(message)
        , p1(p1)
        , p2(p2)
    {
    }

    OQMessageEvent* clone() const override { return new OQMessageEvent(*this); }

    const uint32_t message;
    const intptr_t p1;
    const intptr_t p2;
};
