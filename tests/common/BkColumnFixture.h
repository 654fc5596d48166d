#ifndef BKCOLUMNFIXTURE_H
#define BKCOLUMNFIXTURE_H

// A day column in a scene, built in the order that the view builds one, with the working defaults of
// the calendar: a scale from 06:00 to 20:00 in 15-minute steps, 1.5 units a minute, margin 50, 50
// wide. The column shows user 1 on 2024-03-11 and is 205 wide, so its boxes share 200.

#include <BkCalendarColorScheme.h>
#include <BkCalendarColumn.h>
#include <BkCalendarHeader.h>
#include <BkCalendarItem.h>
#include <BkCalendarItemWidget.h>
#include <BkCalendarModel.h>
#include <BkCalendarTimeScale.h>

#include <QCoreApplication>
#include <QEvent>
#include <QGraphicsScene>
#include <QList>
#include <QTime>

struct BkColumnFixture
{
    explicit BkColumnFixture(bool resizable = false, double width = 205.0)
    {
        scale = new BkCalendarTimeScale();
        scene.addItem(scale);
        scale->setInterval(QTime(6, 0), QTime(20, 0));
        scale->setTimeSteps(15);
        scale->setMinuteHeight(1.5f);
        scale->setTopMargin(50.0f);

        column = new BkCalendarColumn(nullptr, resizable);
        scene.addItem(column);
        column->setTimeScale(scale);
        column->init(-1.0);
        column->setColorScheme(&scheme);
        column->update();
        column->setModel(&model);
        column->setIndex(0);
        column->update();
        column->setDate(date);
        column->update();
        column->setResource(resource);
        column->update();
        column->setWidthScale(width, WidthFixed, -1.0);
    }

    // A booking of the column's user and date, handed to the model, which makes its box.
    BkCalendarItem* addItem(const QTime& start, const QTime& end, const QVariant& id = QVariant(),
                            int type = 0)
    {
        auto* item = new BkCalendarItem();
        item->id = id;
        item->topColor = QColor(200, 220, 255);
        item->bottomColor = QColor(120, 160, 230);
        item->setType(BkCalendarItem::ItemType(type));
        item->setDate(date);
        item->setUserId(resource.id);
        item->setTime(start, end);
        model.addItem(item);
        return item;
    }

    BkCalendarPlan* addPlan(const QTime& start, const QTime& end, bool bookable, int infoId = -1)
    {
        auto* plan = new BkCalendarPlan();
        plan->date = date;
        plan->start = start;
        plan->end = end;
        plan->bookable = bookable;
        plan->infoId = infoId;
        plan->resource = resource;
        model.addItem(plan);
        return plan;
    }

    QList<BkCalendarItemWidget*> widgets() const
    {
        QList<BkCalendarItemWidget*> result;
        const QList<QGraphicsItem*> children = column->childItems();
        for (QGraphicsItem* child : children) {
            if (auto* widget = qgraphicsitem_cast<BkCalendarItemWidget*>(child))
                result.append(widget);
        }
        return result;
    }

    static void flushDeletes() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

    QDate date = QDate(2024, 3, 11);
    BkCalendarResource resource = BkCalendarResource(QVariant(1), QStringLiteral("Anna"), 0);
    QGraphicsScene scene;
    BkCalendarColorScheme scheme;
    BkCalendarModel model;
    BkCalendarTimeScale* scale = nullptr;
    BkCalendarColumn* column = nullptr;
};

#endif // BKCOLUMNFIXTURE_H
