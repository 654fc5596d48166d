#ifndef BKCALENDARTEXTBLOCK_H
#define BKCALENDARTEXTBLOCK_H

#include "FwCalendarGlobal.h"

#include <QFont>
#include <QRectF>
#include <QString>

#include <memory>
#include <optional>

class QPainter;
class QTextLayout;

// A line or paragraph of plain text that a booking box paints at every repaint, laid out once. It draws
// exactly what QPainter::drawText(rect, flags, text, &bounds) draws, but keeps the shaped and broken
// lines for the next paint, since shaping and line breaking are most of what drawText costs. The glyphs
// depend only on the text, the painter's font, its resolution and the flags, and the lines also on the
// width when the text wraps; the place may change from paint to paint.
class FWCALENDAR_EXPORT BkCalendarTextBlock
{
public:
    BkCalendarTextBlock();
    ~BkCalendarTextBlock();

    BkCalendarTextBlock(const BkCalendarTextBlock&) = delete;
    BkCalendarTextBlock& operator=(const BkCalendarTextBlock&) = delete;

    // As painter->drawText(rect, flags, text, bounds). Flags other than Qt::AlignLeft with or
    // without Qt::TextWordWrap, and what else the lines cannot be kept for, go to drawText itself.
    // Kept lines whose glyphs lie wholly outside the area that the paint can reach are not drawn.
    void draw(QPainter* painter, const QRectF& rect, int flags, const QString& text, QRectF* bounds);
    // As painter->boundingRect(rect, flags, text): where the lines would stand, nothing drawn.
    QRectF measure(QPainter* painter, const QRectF& rect, int flags, const QString& text);

private:
    bool prepare(QPainter* painter, const QRectF& rect, int flags, const QString& text);
    void breakLines(double lineWidth);
    QRectF ink();

    std::unique_ptr<QTextLayout> mLayout;
    QString mText;
    // None until the first layout: a default font is the application's, which costs a lock to read,
    // and a box makes two blocks.
    std::optional<QFont> mFont;
    int mFlags = 0;
    double mLineWidth = 0.0;
    Qt::LayoutDirection mDirection = Qt::LayoutDirectionAuto;
    int mDpiX = 0;
    int mDpiY = 0;
    double mWidth = 0.0;
    double mHeight = 0.0;
    // How far around the lines' room a repaint area may fall short before the glyphs' outline is
    // looked for: a line's height. Drawing is always right; the margin only spares the search.
    double mMargin = 0.0;
    // Where the glyphs' pixels can fall, relative to the rectangle's top left; null until asked.
    QRectF mInk;
};

#endif // BKCALENDARTEXTBLOCK_H
