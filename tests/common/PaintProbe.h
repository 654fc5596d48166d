#ifndef PAINTPROBE_H
#define PAINTPROBE_H

// Small helpers for tests that paint into a QImage and look at the pixels.
//
// Call aliasedText() once and paint with antialiasing off: lines then land on whole pixels and text ink is
// exactly the pen's colour, so a label can be compared pixel for pixel with a reference drawing of the
// same text, font, rectangle and flags.

#include <QColor>
#include <QFont>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QRect>
#include <QRectF>
#include <QString>

namespace PaintProbe {

// A canvas filled with one known colour.
inline QImage canvas(int width, int height, const QColor& fill = QColor(255, 0, 255))
{
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    image.fill(fill);
    return image;
}

// Text drawn with a font that leaves its style strategy open comes out aliased from then on. The
// painter's hint alone does not stop glyph antialiasing, and a grey edge pixel could pass for a line.
inline void aliasedText()
{
    QFont font = QGuiApplication::font();
    font.setStyleStrategy(QFont::NoAntialias);
    QGuiApplication::setFont(font);
}

// Sets up a painter as the tests want it: no antialiasing of lines or text.
inline void plain(QPainter& painter)
{
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setRenderHint(QPainter::TextAntialiasing, false);
}

inline QColor at(const QImage& image, int x, int y)
{
    return QColor::fromRgba(image.pixel(x, y));
}

inline bool same(const QColor& a, const QColor& b)
{
    return a.rgba() == b.rgba();
}

// Colours that a gradient or a blend may leave a step or two off.
inline bool near(const QColor& a, const QColor& b, int tolerance = 3)
{
    return qAbs(a.red() - b.red()) <= tolerance && qAbs(a.green() - b.green()) <= tolerance &&
           qAbs(a.blue() - b.blue()) <= tolerance;
}

// The bounding box of the pixels of colour `ink` inside `area` (a null rect when there are none).
inline QRect inkBounds(const QImage& image, const QColor& ink, QRect area = QRect())
{
    if (area.isNull())
        area = image.rect();
    area = area.intersected(image.rect());
    QRect bounds;
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x)
            if (image.pixel(x, y) == ink.rgba())
                bounds |= QRect(x, y, 1, 1);
    return bounds;
}

inline int inkCount(const QImage& image, const QColor& ink, QRect area = QRect())
{
    if (area.isNull())
        area = image.rect();
    area = area.intersected(image.rect());
    int count = 0;
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x)
            if (image.pixel(x, y) == ink.rgba())
                ++count;
    return count;
}

// The text as a plain painter draws it, in `ink` on a transparent canvas of `size`.
inline QImage referenceText(const QSize& size, const QFont& font, const QRectF& rect, int flags,
                            const QString& text, const QColor& ink)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    plain(painter);
    painter.setFont(font);
    painter.setPen(ink);
    painter.drawText(rect, flags, text);
    painter.end();
    return image;
}

// Whether the pixels of colour `ink` inside `area` are the same in both images.
inline bool sameInk(const QImage& a, const QImage& b, const QColor& ink, const QRect& area)
{
    const QRect r = area.intersected(a.rect()).intersected(b.rect());
    for (int y = r.top(); y <= r.bottom(); ++y)
        for (int x = r.left(); x <= r.right(); ++x)
            if ((a.pixel(x, y) == ink.rgba()) != (b.pixel(x, y) == ink.rgba()))
                return false;
    return true;
}

// Every opaque pixel of the picture appears unchanged with its top left at `origin`.
inline bool showsPicture(const QImage& image, const QImage& picture, const QPoint& origin)
{
    int opaque = 0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb p = picture.pixel(x, y);
            if (qAlpha(p) != 255)
                continue;
            ++opaque;
            if (image.pixel(origin.x() + x, origin.y() + y) != p)
                return false;
        }
    return opaque > 0;
}

} // namespace PaintProbe

#endif // PAINTPROBE_H
