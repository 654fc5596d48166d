#ifndef BKBOOKINGSCENE_H
#define BKBOOKINGSCENE_H

// A calendar scene as the view builds it, for tests of moving bookings by mouse, keys and drag:
// a model, a BkCalendarScene with the time scale at the working defaults (06:00 to 20:00, 1.5
// units a minute, top margin 50) and columns of a fixed width placed side by side, shown in a
// QGraphicsView so that events can come from its viewport as a user's would.
//
// Scene geometry: the scale and the columns stand at scene y 25, so the time t lies at scene
// y = 75 + h * (minutes from 06:00 to t), with h the minute height (1.5 unless a test asks for
// another). Column i starts at scene x = 50 + i * width.

#include "BkCalendarColumn.h"
#include "BkCalendarItem.h"
#include "BkCalendarItemWidget.h"
#include "BkCalendarModel.h"
#include "BkCalendarRecords.h"
#include "BkCalendarScene.h"
#include "BkCalendarTimeScale.h"
#include "FwApplication.h"

#include <QAbstractButton>
#include <QApplication>
#include <QGraphicsSceneDragDropEvent>
#include <QGraphicsSceneMouseEvent>
#include <QGraphicsView>
#include <QKeyEvent>
#include <QMessageBox>
#include <QMimeData>
#include <QMouseEvent>
#include <QPushButton>
#include <QScrollBar>
#include <QTimer>
#include <QtTest>

#include <memory>

namespace BkTest {

inline void setSetting(const QString& key, const QVariant& value)
{
    FwApplication::app()->setValue(value, key, QString());
}

inline QTime t(int h, int m, int s = 0)
{
    return QTime(h, m, s);
}

// The boxes that a booking has in a column: one at most, also where two columns show the booking.
inline QList<BkCalendarItemWidget*> boxesOf(const BkCalendarColumn* column, const BkCalendarItem* item)
{
    QList<BkCalendarItemWidget*> boxes;
    for (QGraphicsItem* child : column->childItems())
        if (auto* box = qgraphicsitem_cast<BkCalendarItemWidget*>(child))
            if (box->item() == item)
                boxes << box;
    return boxes;
}

// A mouse event at a scene position, delivered to a view's viewport as the window system would.
inline void sendMouse(QGraphicsView* view, QEvent::Type type, const QPointF& scenePos, Qt::MouseButton button,
                      Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    const QPoint local = view->mapFromScene(scenePos);
    QMouseEvent event(type, local, view->viewport()->mapToGlobal(local), button, buttons, modifiers);
    QApplication::sendEvent(view->viewport(), &event);
}

class BookingScene
{
public:
    static constexpr double ColumnWidth = 200.0;

    explicit BookingScene(float minuteHeight = 1.5f)
    {
        scene.setModel(&model);
        scale = new BkCalendarTimeScale(nullptr);
        scale->setInterval(QTime(6, 0), QTime(20, 0));
        scale->setTimeSteps(15);
        scale->setMinuteHeight(minuteHeight);
        scale->setTopMargin(50.0f);
        scale->setZValue(50.0);
        scene.addItem(scale);
        scene.setSceneRect(0, 0, 1200, 2000);
        view.setScene(&scene);
        view.setAlignment(Qt::AlignLeft | Qt::AlignTop);
        view.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        view.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        view.setFrameShape(QFrame::NoFrame);
        view.resize(1250, 2050);
    }

    ~BookingScene()
    {
        view.setScene(nullptr);
        // The columns and their boxes go with the scene; the model goes last.
        scene.clear();
    }

    // A column as the view makes one, in the view's calling order.
    BkCalendarColumn* addColumn(const QDate& date, const BkCalendarResource& resource, bool resizable = false,
                                int resourceMode = 0)
    {
        auto* column = new BkCalendarColumn(nullptr, resizable);
        column->setRaise(BkCalendarColumn::RaiseOnClick);
        column->setTimeScale(scale);
        column->setIndex(columns.size());
        column->setWidthScale(ColumnWidth, WidthFixed, -1.0);
        column->setModel(&model);
        column->setResourceMode(resourceMode);
        column->setDate(date);
        column->setResource(resource);
        column->update();
        scene.addItem(column);
        columns.append(column);
        return column;
    }

    BkCalendarPlan* addPlan(const QDate& date, const BkCalendarResource& resource, QTime start, QTime end,
                            bool bookable = true)
    {
        auto* plan = new BkCalendarPlan;
        plan->date = date;
        plan->resource = resource;
        plan->start = start;
        plan->end = end;
        plan->bookable = bookable;
        model.addItem(plan);
        return plan;
    }

    // A booking of the user `userId` on the resource `resourceId` (either may be null).
    BkCalendarItem* addItem(int id, const QDate& date, const QVariant& userId, const QVariant& resourceId,
                            QTime start, QTime end, BkCalendarItem::ItemType type = BkCalendarItem::Meeting)
    {
        auto* item = new BkCalendarItem;
        item->id = id;
        item->setType(type);
        item->setDate(date);
        item->setUserId(userId);
        item->setResourceId(resourceId);
        item->setTime(start, end);
        item->topColor = Qt::white;
        item->bottomColor = Qt::lightGray;
        model.addItem(item);
        return item;
    }

    // Scene position of time `time` in column `column`, `dx` units from its left edge.
    QPointF scenePoint(BkCalendarColumn* column, QTime time, double dx = 20.0) const
    {
        return column->mapToScene(scale->pointAt(dx, time));
    }

    void show()
    {
        view.show();
        QApplication::setActiveWindow(&view);
        if (!QTest::qWaitForWindowExposed(&view))
            qWarning("BookingScene: the view was not exposed");
        view.horizontalScrollBar()->setValue(0);
        view.verticalScrollBar()->setValue(0);
        // An active scene gives keyboard focus to the box that is pressed.
        QEvent activate(QEvent::WindowActivate);
        QApplication::sendEvent(&scene, &activate);
    }

    void mouse(QEvent::Type type, const QPointF& scenePos, Qt::MouseButton button, Qt::MouseButtons buttons,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        sendMouse(&view, type, scenePos, button, buttons, modifiers);
    }
    void press(const QPointF& p, Qt::MouseButton button = Qt::LeftButton)
    {
        mouse(QEvent::MouseButtonPress, p, button, button);
    }
    void moveTo(const QPointF& p, Qt::MouseButtons buttons = Qt::LeftButton)
    {
        mouse(QEvent::MouseMove, p, Qt::NoButton, buttons);
    }
    void release(const QPointF& p, Qt::MouseButton button = Qt::LeftButton)
    {
        mouse(QEvent::MouseButtonRelease, p, button, Qt::NoButton);
    }
    void doubleClick(const QPointF& p)
    {
        press(p);
        release(p);
        mouse(QEvent::MouseButtonDblClick, p, Qt::LeftButton, Qt::LeftButton);
        release(p);
    }

    // A key for the item that has the scene's focus.
    bool key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QKeyEvent event(QEvent::KeyPress, key, modifiers);
        QApplication::sendEvent(&scene, &event);
        return event.isAccepted();
    }

    BkCalendarModel model;
    BkCalendarScene scene;
    BkCalendarTimeScale* scale = nullptr;
    QGraphicsView view;
    QList<BkCalendarColumn*> columns;
};

// Drag and drop events as the scene receives them from its view. The scene passes them on to the
// column under the scene position.
inline bool sendDrag(QGraphicsScene* scene, QEvent::Type type, const QPointF& scenePos, const QMimeData* data,
                     QWidget* widget = nullptr)
{
    QGraphicsSceneDragDropEvent event(type);
    event.setScenePos(scenePos);
    // With a viewport the scene finds the items under the screen position through its view.
    QPoint screenPos = scenePos.toPoint();
    if (auto* view = widget ? qobject_cast<QGraphicsView*>(widget->parentWidget()) : nullptr)
        screenPos = widget->mapToGlobal(view->mapFromScene(scenePos));
    event.setScreenPos(screenPos);
    event.setButtons(Qt::LeftButton);
    event.setModifiers(Qt::NoModifier);
    event.setPossibleActions(Qt::MoveAction | Qt::CopyAction);
    event.setProposedAction(Qt::MoveAction);
    event.setDropAction(Qt::MoveAction);
    event.setMimeData(data);
    event.setWidget(widget);
    event.setAccepted(false);
    QApplication::sendEvent(scene, &event);
    return event.isAccepted();
}

// The same event delivered straight to one item, with its position in that item's coordinates.
inline bool sendDragTo(QGraphicsItem* item, QEvent::Type type, const QPointF& scenePos, const QMimeData* data)
{
    QGraphicsSceneDragDropEvent event(type);
    event.setScenePos(scenePos);
    event.setPos(item->mapFromScene(scenePos));
    event.setScreenPos(scenePos.toPoint());
    event.setButtons(Qt::LeftButton);
    event.setPossibleActions(Qt::MoveAction | Qt::CopyAction);
    event.setProposedAction(Qt::MoveAction);
    event.setDropAction(Qt::MoveAction);
    event.setMimeData(data);
    event.setAccepted(false);
    item->scene()->sendEvent(item, &event);
    return event.isAccepted();
}

inline std::unique_ptr<QMimeData> calItemData(const QByteArray& payload)
{
    auto data = std::make_unique<QMimeData>();
    data->setData(QStringLiteral("text/calitem"), payload);
    return data;
}

inline std::unique_ptr<QMimeData> treeData(const QByteArray& payload)
{
    auto data = std::make_unique<QMimeData>();
    data->setData(QStringLiteral("application/x-fwtreewidget"), payload);
    return data;
}

// The move list's payload: the booking's id as a 32-bit int and the row's address as a 64-bit
// integer, big-endian, as a default QDataStream writes them.
inline QByteArray treePayload(qint32 id, qint64 address)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::ReadWrite);
    stream << id << address;
    return bytes;
}

// Answers every question box that comes up while it lives, as a user would, and remembers what was
// asked. It polls from a timer, so it works inside the nested loop of the box; it stops with its
// own end, so that it never answers a question of a later test.
class QuestionAnswerer : public QObject
{
public:
    explicit QuestionAnswerer(QMessageBox::StandardButton answer)
        : mAnswer(answer)
    {
        mTimer.setInterval(20);
        QObject::connect(&mTimer, &QTimer::timeout, this, [this]() { poll(); });
        mTimer.start();
    }

    int asked = 0;
    QString title;
    QString text;
    QMessageBox::StandardButtons buttons;
    QMessageBox::StandardButton defaultButton = QMessageBox::NoButton;
    QWidget* parent = nullptr;

private:
    void poll()
    {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box || !box->isVisible())
            return;
        ++asked;
        title = box->windowTitle();
        text = box->text();
        buttons = box->standardButtons();
        defaultButton = box->standardButton(box->defaultButton());
        parent = box->parentWidget();
        if (QAbstractButton* button = box->button(mAnswer))
            button->click();
        else
            box->reject();
    }

    QMessageBox::StandardButton mAnswer;
    QTimer mTimer;
};

} // namespace BkTest

#endif // BKBOOKINGSCENE_H
