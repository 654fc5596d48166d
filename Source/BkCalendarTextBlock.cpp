#include "BkCalendarTextBlock.h"

#include "BkCalendarPainting.h"

#include <QFontMetricsF>
#include <QGlyphRun>
#include <QPaintDevice>
#include <QPainter>
#include <QRawFont>
#include <QTextLayout>
#include <QTextOption>

#include <algorithm>

namespace {

// drawText's own width for a line that does not wrap.
const double UnwrappedLineWidth = 0x01000000;

// The text as drawText lays it out without mnemonics and tab expansion: returns, and new lines in a
// single line, become spaces, new lines become line separators, tabs become spaces. False for a text
// with length variants, which drawText alone chooses among.
bool plainText(const QString& text, QString* out)
{
    *out = text;
    for (QChar& c : *out) {
        if (c == QLatin1Char('\r') || c == QLatin1Char('\t'))
            c = QLatin1Char(' ');
        else if (c == QLatin1Char('\n'))
            c = QChar::LineSeparator;
        else if (c == QChar(ushort(0x9c)))
            return false;
    }
    return true;
}

} // namespace

BkCalendarTextBlock::BkCalendarTextBlock() = default;

BkCalendarTextBlock::~BkCalendarTextBlock() = default;

bool BkCalendarTextBlock::prepare(QPainter* painter, const QRectF& rect, int flags, const QString& text)
{
    const QFont font = painter->font();
    // Right-to-left painting mirrors the alignment, and decorations are drawn apart from the glyphs:
    // those are left to drawText. An automatic direction leaves the alignment alone and lets each
    // paragraph find its own direction, as drawText does.
    const Qt::LayoutDirection direction = painter->layoutDirection();
    if ((flags != Qt::AlignLeft && flags != (Qt::AlignLeft | Qt::TextWordWrap)) ||
        direction == Qt::RightToLeft || font.underline() || font.overline() || font.strikeOut() ||
        !painter->device())
        return false;
    // drawText leaves an empty text, and a painter without pen, without a word: the bounds stay as they
    // were. That, too, is drawText's own business.
    if (text.isEmpty() || painter->pen().style() == Qt::NoPen || !painter->paintEngine())
        return false;
    const bool wrap = flags & Qt::TextWordWrap;
    const double lineWidth = wrap ? std::max(0.0, rect.width()) : UnwrappedLineWidth;
    const int dpiX = painter->device()->logicalDpiX();
    const int dpiY = painter->device()->logicalDpiY();
    // QFont's comparison leaves the resolution out, so it is compared on its own.
    const bool sameGlyphs = mLayout && mText == text && mFlags == flags && mDirection == direction &&
                            mDpiX == dpiX && mDpiY == dpiY && mFont == font;
    if (sameGlyphs && mLineWidth == lineWidth)
        return true;

    if (!sameGlyphs) {
        QString laidOut;
        if (!plainText(text, &laidOut))
            return false;
        mLayout = std::make_unique<QTextLayout>(laidOut, font);
        QTextOption option;
        option.setTextDirection(direction);
        option.setAlignment(Qt::AlignLeft);
        mLayout->setTextOption(option);
        mLayout->setCacheEnabled(true);
        mText = text;
        mFont = font;
        mFlags = flags;
        mDirection = direction;
        mDpiX = dpiX;
        mDpiY = dpiY;
    }
    // A new width only breaks the lines anew: the layout keeps the shaped glyphs, which do not depend
    // on it, as a box of a cluster that gains or loses a neighbour does at every paint after.
    breakLines(lineWidth);
    return true;
}

void BkCalendarTextBlock::breakLines(double lineWidth)
{
    const QFontMetricsF metrics(*mFont);
    const double leading = metrics.leading();
    mMargin = metrics.height();
    double height = -leading;
    mWidth = 0.0;
    mLayout->beginLayout();
    for (QTextLine line = mLayout->createLine(); line.isValid(); line = mLayout->createLine()) {
        line.setLineWidth(lineWidth);
        height += leading;
        line.setPosition(QPointF(0.0, height));
        height += line.height();
        mWidth = std::max(mWidth, line.naturalTextWidth());
    }
    mLayout->endLayout();
    mHeight = height;
    mInk = QRectF();
    mLineWidth = lineWidth;
}

void BkCalendarTextBlock::draw(QPainter* painter, const QRectF& rect, int flags, const QString& text,
                               QRectF* bounds)
{
    if (!prepare(painter, rect, flags, text)) {
        mLayout.reset();
        painter->drawText(rect, flags, text, bounds);
        return;
    }
    const QRectF lines(rect.x(), rect.y(), mWidth, mHeight);
    if (bounds)
        *bounds = lines;
    // A repaint of a strip beside the box passes over its text; finding the glyphs' outline costs
    // more than drawing, so it is only looked for when the area leaves out some of the lines' room.
    const QRectF area = BkCalendarPainting::repaintArea(painter);
    if (!area.contains(lines.adjusted(-mMargin, -mMargin, mMargin, mMargin)) &&
        !area.intersects(ink().translated(rect.topLeft())))
        return;
    // Lines that reach beyond the rectangle are cut at its edges, as drawText cuts them.
    const bool clip = !rect.contains(lines);
    if (clip) {
        painter->save();
        painter->setClipRect(rect, Qt::IntersectClip);
    }
    for (int i = 0; i < mLayout->lineCount(); ++i)
        mLayout->lineAt(i).draw(painter, rect.topLeft());
    if (clip)
        painter->restore();
}

QRectF BkCalendarTextBlock::ink()
{
    if (mInk.isNull()) {
        // The font's outlines of the glyphs as placed; a rasterised glyph may colour the pixel next
        // to its outline, so two pixels more on each side.
        // (A run's own bounding rectangle is the room of its advances, which outlines may leave.)
        QRectF outline;
        const QList<QGlyphRun> runs = mLayout->glyphRuns();
        for (const QGlyphRun& run : runs) {
            const QRawFont font = run.rawFont();
            const QVector<quint32> glyphs = run.glyphIndexes();
            const QVector<QPointF> positions = run.positions();
            for (int i = 0; i < glyphs.size() && i < positions.size(); ++i)
                outline |= font.boundingRect(glyphs.at(i)).translated(positions.at(i));
        }
        mInk = outline.adjusted(-2.0, -2.0, 2.0, 2.0);
    }
    return mInk;
}

QRectF BkCalendarTextBlock::measure(QPainter* painter, const QRectF& rect, int flags, const QString& text)
{
    if (!prepare(painter, rect, flags, text)) {
        mLayout.reset();
        return painter->boundingRect(rect, flags, text);
    }
    return QRectF(rect.x(), rect.y(), mWidth, mHeight);
}
