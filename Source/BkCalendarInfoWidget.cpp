#include "BkCalendarInfoWidget.h"

#include "BkCalendarItemKind.h"

#include <QFont>
#include <QPainter>
#include <QSvgRenderer>

BkCalendarInfoWidget::BkCalendarInfoWidget(int type, QGraphicsItem* parent)
    : QObject()
    , QGraphicsItem(parent)
    , mRect(0.0, 0.0, 100.0, 100.0)
    , mType(type)
    , mMargin(0)
{
    setData(ItemKindRole, int(ItemKindInfoWidget));
}

BkCalendarInfoWidget::~BkCalendarInfoWidget() = default;

QRectF BkCalendarInfoWidget::boundingRect() const
{
    return mRect;
}

void BkCalendarInfoWidget::setMargin(int margin)
{
    mMargin = margin;
}

QString BkCalendarInfoWidget::message() const
{
    if (mType == 0)
        return tr("Please choose a group containing users\n under Options/Settings");
    return tr("The selected group only contains empty duty schedules");
}

void BkCalendarInfoWidget::sizeChanged(int width, int height)
{
    prepareGeometryChange();
    // A view narrower than the margin gives a negative width; the widget then simply draws off-centre.
    mRect = QRectF(mMargin, 0.0, width - mMargin, height);
}

void BkCalendarInfoWidget::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*)
{
    const double cx = mRect.x() + mRect.width() / 2.0;
    const double cy = mRect.y() + mRect.height() / 2.0;

    // Loaded at each paint: the widget is shown rarely and briefly, so nothing is kept.
    QSvgRenderer renderer;
    renderer.load(QStringLiteral(":/calendar/information.svg"));
    if (renderer.isValid())
        renderer.render(painter, QRectF(cx - 100.0, cy - 100.0, 200.0, 200.0));

    // The text may be wider than the view; it keeps its width so that it stays centred under the symbol.
    const QRectF textRect(cx - 250.0, cy + 100.0, 500.0, 60.0);
    QFont font = painter->font();
    font.setWeight(75);
    font.setPointSize(14);
    painter->setFont(font);
    painter->drawText(textRect, Qt::AlignHCenter | Qt::AlignVCenter | Qt::TextWordWrap, message());
}
