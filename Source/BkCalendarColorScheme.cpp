#include "BkCalendarColorScheme.h"

// The grid's colours are fixed: neither settings nor the palette change them.
BkCalendarColorScheme::BkCalendarColorScheme()
    : frame()
    , selectedFrame()
    , hourLine()
    , stepLine()
    , header()
    , headerGradient()
    , selectedHeader()
    , selectedHeaderGradient()
    , resourceHeader()
    , resourceHeaderGradient()
    , statusColors()
{
    frame = QColor(93, 140, 200);
    selectedFrame = QColor(238, 147, 17);
    hourLine = QColor(165, 191, 224);
    stepLine = QColor(230, 237, 247);
    header = QColor(222, 231, 243);
    headerGradient = QColor(194, 212, 235);
    selectedHeader = QColor(250, 225, 141);
    selectedHeaderGradient = QColor(243, 185, 78);
    resourceHeader = QColor(229, 194, 235);
    resourceHeaderGradient = QColor(224, 165, 235);
}
