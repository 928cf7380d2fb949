#pragma once

#include "toolkit/IOQPaint.h"

#include <QPainter>

class OQWindowWidget;

// Draws on a widget during its paint event. Internal.
class OQWidgetPaint final : public IOQPaint
{
public:
    explicit OQWidgetPaint(OQWindowWidget& widget);

    void FillRect(const OQRect& rect, uint32_t color) override;
    bool DrawImage(IOQImage& image, const OQRect& rect) override;

private:
    OQWindowWidget& m_widget;
    QPainter m_painter;
};
