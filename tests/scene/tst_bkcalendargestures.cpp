// Working on a booking box with mouse and keys: moving in snapped steps past the sensitivity,
// the double-booking question on release, the key moves, growing short boxes, the signals of the
// double click and the context menu, the drag that starts when the pointer leaves the box
// sideways, and the reserved boxes that take none of it.

#include "BkBookingScene.h"
#include "FwTestApplication.h"

#include <QDrag>
#include <QGraphicsSceneContextMenuEvent>
#include <QSignalSpy>
#include <QtTest>

using namespace BkTest;

namespace {

const QDate Day(2024, 3, 11);
const BkCalendarResource Anna(QVariant(17), QStringLiteral("Anna"), 0);
const QVariant Room(5);

// Two scene units to the minute, so that every minute has a whole pixel: the time t lies at scene
// y = 75 + 2 * (minutes from 06:00 to t).
const float MinuteHeight = 2.0f;

class Fixture
{
public:
    Fixture()
        : s(MinuteHeight)
    {
        s.addPlan(Day, Anna, t(8, 0), t(16, 0));
    }

    BkCalendarColumn* makeColumn(BkCalendarColumn::Raise raise = BkCalendarColumn::RaiseOnClick)
    {
        column = s.addColumn(Day, Anna);
        column->setRaise(raise);
        s.show();
        return column;
    }

    QPointF at(QTime time, double dx = 20.0) const { return s.scenePoint(column, time, dx); }

    BookingScene s;
    BkCalendarColumn* column = nullptr;
};

// A release answered No: the booking of a gesture that began at 09:00 and stepped to 09:45 first is back
// at the time of that first step, saved as it is, and its box stands there.
void verifyTakenBackToTheFirstStep(const Fixture& f, BkCalendarItem* item)
{
    QCOMPARE(item->start(), t(9, 45));
    QCOMPARE(item->end(), t(10, 45));
    QVERIFY(!f.s.model.isInvalid(item));
    QVERIFY(!f.s.model.commitTimer()->isActive());
    QCOMPARE(item->widget->pos().y(), 50.0 + 2.0 * (3 * 60 + 45));
}

} // namespace

class tst_BkCalendarGestures : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        setSetting(QStringLiteral("set_snaponmovebooking"), 15);
        setSetting(QStringLiteral("gst_calendarsensitivity"), 0);
        setSetting(QStringLiteral("set_disablekeysbooking"), 0);
        setSetting(QStringLiteral("set_calexpandsize"), 0);
    }

    void moveFollowsThePointerInSnappedSteps_data();
    void moveFollowsThePointerInSnappedSteps();
    void moveKeepsTheLengthWithSeconds();
    void sensitivityIsTheSumOfBothTravels_data();
    void sensitivityIsTheSumOfBothTravels();
    void movedGestureIsNotTestedAgainstTheSensitivity();
    void refusedMoveIsSilent();
    void releaseCommitsAMove();
    void releaseOfADoubleBookingAsks_data();
    void releaseOfADoubleBookingAsks();
    void releaseOutlivesABoxThatTheLoadAnswerTakesAway();
    void releaseAsksOfADoubleBookingWhoseBoxTheLoadAnswerTakesAway_data();
    void releaseAsksOfADoubleBookingWhoseBoxTheLoadAnswerTakesAway();
    void releaseLeavesABookingThatTheLoadAnswerDeletes();
    void clickCommitsWithoutAsking();
    void keysMoveByOneMinute();
    void keyAtTheFirstBookableMinuteStillCommits();
    void keysWithAModifierAreIgnored();
    void keysCanBeSwitchedOff();
    void shortBoxGrowsOnLeftPressUntilThePointerLeaves();
    void boxOfTheExpandHeightDoesNotGrow();
    void rightPressDoesNotGrow();
    void shortBoxGrowsOnHover();
    void grownBoxCountsInTheNextLayoutAndShrinkingLaysOutAgain();
    void doubleClickActivates();
    void contextMenuIsSignalled();
    void leavingTheBoxSidewaysStartsADrag_data();
    void leavingTheBoxSidewaysStartsADrag();
    void reservedBoxTakesNoGesture();
};

void tst_BkCalendarGestures::moveFollowsThePointerInSnappedSteps_data()
{
    QTest::addColumn<int>("snap");
    QTest::addColumn<QTime>("pointer");
    QTest::addColumn<QTime>("start");

    QTest::newRow("minute 6 goes back") << 15 << t(11, 6) << t(11, 0);
    QTest::newRow("minute 7 goes forward") << 15 << t(11, 7) << t(11, 15);
    QTest::newRow("minute 52 goes to the next hour") << 15 << t(11, 52) << t(12, 0);
    QTest::newRow("snap 25 restarts every hour") << 25 << t(11, 59) << t(11, 50);
    QTest::newRow("snap 0 keeps the minute") << 0 << t(11, 7) << t(11, 7);
}

void tst_BkCalendarGestures::moveFollowsThePointerInSnappedSteps()
{
    QFETCH(int, snap);
    QFETCH(QTime, pointer);
    QFETCH(QTime, start);
    setSetting(QStringLiteral("set_snaponmovebooking"), snap);

    Fixture f;
    BkCalendarItem* item = f.s.addItem(1, Day, Anna.id, QVariant(), t(9, 0), t(10, 0));
    f.makeColumn();
    BkCalendarItemWidget* widget = item->widget;
    QVERIFY(widget);

    // Grabbed in the middle: the box's top follows the pointer, not the point where it was grabbed.
    f.s.press(f.at(t(9, 30)));
    QVERIFY(widget->isSelected());
    f.s.moveTo(f.at(pointer));
    QVERIFY(widget->moved());
    QCOMPARE(item->start(), start);
    QCOMPARE(item->end(), start.addSecs(3600));
    QCOMPARE(widget->pos().y(), 50.0 + 2.0 * t(6, 0).secsTo(start) / 60);
    QVERIFY(f.s.model.isInvalid(item));
    f.s.release(f.at(pointer));
    QVERIFY(!widget->moved());
    QCOMPARE(widget->pressPos(), QPointF(0, 0));
}

void tst_BkCalendarGestures::moveKeepsTheLengthWithSeconds()
{
    Fixture f;
    BkCalendarItem* item = f.s.addItem(1, Day, Anna.id, QVariant(), t(9, 0, 10), t(9, 45, 20));
    f.makeColumn();
    f.s.press(f.at(t(9, 20)));
    f.s.moveTo(f.at(t(12, 2)));
    QCOMPARE(item->start(), t(12, 0));
    QCOMPARE(item->end(), t(12, 45, 10));
    f.s.moveTo(f.at(t(13, 29)));
    QCOMPARE(item->start(), t(13, 30));
    QCOMPARE(item->start().secsTo(item->end()), 45 * 60 + 10);
    f.s.release(f.at(t(13, 29)));
}

void tst_BkCalendarGestures::sensitivityIsTheSumOfBothTravels_data()
{
    QTest::addColumn<int>("dx");
    QTest::addColumn<int>("dy");
    QTest::addColumn<bool>("moves");

    QTest::newRow("3 across and 2 down is 5: nothing") << 3 << 2 << false;
    QTest::newRow("3 across and 3 down is 6: a move") << 3 << 3 << true;
    QTest::newRow("5 down alone: nothing") << 0 << 5 << false;
    QTest::newRow("4 left and 2 up is 6: a move") << -4 << -2 << true;
}

void tst_BkCalendarGestures::sensitivityIsTheSumOfBothTravels()
{
    QFETCH(int, dx);
    QFETCH(int, dy);
    QFETCH(bool, moves);
    setSetting(QStringLiteral("gst_calendarsensitivity"), 5);
    setSetting(QStringLiteral("set_snaponmovebooking"), 1);

    Fixture f;
    BkCalendarItem* item = f.s.addItem(1, Day, Anna.id, QVariant(), t(9, 0), t(10, 0));
    f.makeColumn();
    BkCalendarItemWidget* widget = item->widget;

    const QPointF pressed = f.at(t(9, 30), 100);
    f.s.press(pressed);
    f.s.moveTo(pressed + QPointF(dx, dy));
    QCOMPARE(widget->moved(), moves);
    if (moves) {
        // The box's top is where the pointer is, at 2 units a minute.
        const QTime expected = t(9, 30).addSecs(dy * 30);
        QCOMPARE(item->start(), expected);
    } else {
        QCOMPARE(item->start(), t(9, 0));
        QVERIFY(!f.s.model.isInvalid(item));
    }
    f.s.release(pressed + QPointF(dx, dy));
}

void tst_BkCalendarGestures::movedGestureIsNotTestedAgainstTheSensitivity()
{
    setSetting(QStringLiteral("gst_calendarsensitivity"), 5);
    setSetting(QStringLiteral("set_snaponmovebooking"), 1);
    Fixture f;
    BkCalendarItem* item = f.s.addItem(1, Day, Anna.id, QVariant(), t(9, 0), t(10, 0));
    f.makeColumn();

    const QPointF pressed = f.at(t(9, 30), 100);
    f.s.press(pressed);
    f.s.moveTo(pressed + QPointF(0, 40));
    QCOMPARE(item->start(), t(9, 50));
    // Back to two units from the press point: a minute's travel, and still a move.
    f.s.moveTo(pressed + QPointF(0, 2));
    QCOMPARE(item->start(), t(9, 31));
    f.s.moveTo(pressed);
    QCOMPARE(item->start(), t(9, 30));
    f.s.release(pressed);
}

void tst_BkCalendarGestures::refusedMoveIsSilent()
{
    Fixture f;
    BkCalendarItem* item = f.s.addItem(1, Day, Anna.id, QVariant(), t(9, 0), t(10, 0));
    f.makeColumn();
    BkCalendarItemWidget* widget = item->widget;
    const QPointF pos = widget->pos();

    f.s.press(f.at(t(9, 30)));
    // The plan ends at 16:00: a booking of an hour cannot start at 15:30.
    f.s.moveTo(f.at(t(15, 30)));
    QCOMPARE(item->start(), t(9, 0));
    QCOMPARE(widget->pos(), pos);
    f.s.moveTo(f.at(t(7, 0)));
    QCOMPARE(item->start(), t(9, 0));
    QCOMPARE(widget->pos(), pos);
    // The last allowed place.
    f.s.moveTo(f.at(t(15, 0)));
    QCOMPARE(item->start(), t(15, 0));
    QCOMPARE(item->end(), t(16, 0));
    f.s.release(f.at(t(15, 0)));
}

void tst_BkCalendarGestures::releaseCommitsAMove()
{
    Fixture f;
    BkCalendarItem* item = f.s.addItem(1, Day, Anna.id, Room, t(9, 0), t(10, 0));
    f.makeColumn();
    QSignalSpy saved(&f.s.model, &BkCalendarModel::saveItems);
    QuestionAnswerer answerer(QMessageBox::No);

    f.s.press(f.at(t(9, 30)));
    f.s.moveTo(f.at(t(13, 0)));
    f.s.release(f.at(t(13, 0)));
    QCOMPARE(answerer.asked, 0);
    QVERIFY(f.s.model.commitTimer()->isActive());
    QTRY_COMPARE_WITH_TIMEOUT(saved.count(), 1, 20000);
    QCOMPARE(saved.at(0).at(0).value<QList<BkCalendarItem*>>(), QList<BkCalendarItem*>() << item);
    QCOMPARE(item->start(), t(13, 0));
}

void tst_BkCalendarGestures::releaseOfADoubleBookingAsks_data()
{
    QTest::addColumn<int>("answer");
    QTest::newRow("yes keeps the double booking") << int(QMessageBox::Yes);
    QTest::newRow("no takes the move back") << int(QMessageBox::No);
}

void tst_BkCalendarGestures::releaseOfADoubleBookingAsks()
{
    QFETCH(int, answer);
    Fixture f;
    BkCalendarItem* item = f.s.addItem(1, Day, Anna.id, Room, t(9, 0), t(10, 0));
    // Someone else has the room from 11:00; that booking is in no column here.
    f.s.addItem(2, Day, QVariant(18), Room, t(11, 0), t(12, 0));
    f.makeColumn();
    QuestionAnswerer answerer{QMessageBox::StandardButton(answer)};

    f.s.press(f.at(t(9, 30)));
    f.s.moveTo(f.at(t(9, 45)));
    QCOMPARE(item->start(), t(9, 45));
    f.s.moveTo(f.at(t(10, 30)));
    QCOMPARE(item->start(), t(10, 30));
    QCOMPARE(answerer.asked, 0);
    f.s.release(f.at(t(10, 30)));

    QCOMPARE(answerer.asked, 1);
    QCOMPARE(answerer.title, QStringLiteral("Resource booked double"));
    QCOMPARE(answerer.text, QStringLiteral("Do you want to make a double booked resource ?"));
    QCOMPARE(answerer.buttons, QMessageBox::Yes | QMessageBox::No);
    QCOMPARE(answerer.defaultButton, QMessageBox::No);
    QCOMPARE(answerer.parent, f.s.view.viewport());
    if (answer == QMessageBox::Yes) {
        QCOMPARE(item->start(), t(10, 30));
        QVERIFY(f.s.model.isInvalid(item));
        QVERIFY(f.s.model.commitTimer()->isActive());
    } else {
        // Back to the time of the first step of the gesture, not to the time before it.
        verifyTakenBackToTheFirstStep(f, item);
    }
}

// The room's day is not in the store yet, so the check on release asks the host for it; a host that
// answers by rebuilding the column takes the box away under the pointer. The release ends there.
void tst_BkCalendarGestures::releaseOutlivesABoxThatTheLoadAnswerTakesAway()
{
    Fixture f;
    BkCalendarItem* item = f.s.addItem(1, Day, Anna.id, Room, t(9, 0), t(10, 0));
    BkCalendarColumn* column = f.makeColumn();
    QPointer<BkCalendarItemWidget> box = item->widget;
    QVERIFY(box);
    int loads = 0;
    connect(&f.s.model, &BkCalendarModel::loadData, this,
            [&](const QDate&, const QDate&, const BkCalendarResource& resource) {
                if (resource.type == 1) {
                    ++loads;
                    column->updateChildren();
                }
            });
    QuestionAnswerer answerer(QMessageBox::No);

    f.s.press(f.at(t(9, 30)));
    f.s.moveTo(f.at(t(11, 0)));
    QCOMPARE(item->start(), t(11, 0));
    f.s.release(f.at(t(11, 0)));
    QCOMPARE(loads, 1);
    // Taken away while the host was let in, the box has left the scene and its booking at once, and
    // goes when the event loop runs.
    QVERIFY(box);
    QVERIFY(!box->scene());
    QVERIFY(!box->item());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!box);
    QCOMPARE(answerer.asked, 0);
    QVERIFY(item->widget);
    QCOMPARE(item->widget->parentItem(), column);
    QCOMPARE(item->start(), t(11, 0));
    // The booking outlives its old box: the release still commits the move.
    QVERIFY(f.s.model.commitTimer()->isActive());
    QSignalSpy saved(&f.s.model, &BkCalendarModel::saveItems);
    QTRY_COMPARE_WITH_TIMEOUT(saved.count(), 1, 20000);
    QCOMPARE(saved.at(0).at(0).value<QList<BkCalendarItem*>>(), QList<BkCalendarItem*>() << item);
}

void tst_BkCalendarGestures::releaseAsksOfADoubleBookingWhoseBoxTheLoadAnswerTakesAway_data()
{
    QTest::addColumn<int>("answer");
    QTest::newRow("yes keeps the double booking") << int(QMessageBox::Yes);
    QTest::newRow("no takes the move back") << int(QMessageBox::No);
}

// As above, but the host's answer brings a booking of someone else on the room at the same time: the
// moved booking, now in a box of the answer, is double booked, and the user is asked about it.
void tst_BkCalendarGestures::releaseAsksOfADoubleBookingWhoseBoxTheLoadAnswerTakesAway()
{
    QFETCH(int, answer);
    Fixture f;
    BkCalendarItem* item = f.s.addItem(1, Day, Anna.id, Room, t(9, 0), t(10, 0));
    BkCalendarColumn* column = f.makeColumn();
    QPointer<BkCalendarItemWidget> box = item->widget;
    connect(&f.s.model, &BkCalendarModel::loadData, this,
            [&](const QDate&, const QDate&, const BkCalendarResource& resource) {
                if (resource.type == 1) {
                    f.s.addItem(2, Day, QVariant(18), Room, t(11, 0), t(12, 0));
                    column->updateChildren();
                }
            });
    QuestionAnswerer answerer{QMessageBox::StandardButton(answer)};

    f.s.press(f.at(t(9, 30)));
    f.s.moveTo(f.at(t(9, 45)));
    f.s.moveTo(f.at(t(11, 0)));
    QCOMPARE(item->start(), t(11, 0));
    f.s.release(f.at(t(11, 0)));
    QVERIFY(box);
    QVERIFY(!box->item());
    QCOMPARE(answerer.asked, 1);
    QVERIFY(item->widget);
    QVERIFY(item->widget != box);
    if (answer == QMessageBox::Yes) {
        QCOMPARE(item->start(), t(11, 0));
        QVERIFY(f.s.model.isInvalid(item));
        QVERIFY(f.s.model.commitTimer()->isActive());
    } else {
        // Back to the time of the first step of the gesture, in the box of the answer.
        verifyTakenBackToTheFirstStep(f, item);
    }
}

// The host answers the load request by starting over: every booking goes, the moved one with it.
void tst_BkCalendarGestures::releaseLeavesABookingThatTheLoadAnswerDeletes()
{
    Fixture f;
    BkCalendarItem* item = f.s.addItem(1, Day, Anna.id, Room, t(9, 0), t(10, 0));
    f.makeColumn();
    QPointer<BkCalendarItemWidget> box = item->widget;
    connect(&f.s.model, &BkCalendarModel::loadData, this,
            [&](const QDate&, const QDate&, const BkCalendarResource& resource) {
                if (resource.type == 1) {
                    f.s.model.clear();
                    f.s.addItem(2, Day, QVariant(18), Room, t(11, 0), t(12, 0));
                }
            });
    QuestionAnswerer answerer(QMessageBox::Yes);

    f.s.press(f.at(t(9, 30)));
    f.s.moveTo(f.at(t(11, 0)));
    f.s.release(f.at(t(11, 0)));
    QCOMPARE(answerer.asked, 0);
    QVERIFY(!f.s.model.commitTimer()->isActive());
    QVERIFY(box);
    QVERIFY(!box->item());
}

void tst_BkCalendarGestures::clickCommitsWithoutAsking()
{
    Fixture f;
    BkCalendarItem* item = f.s.addItem(1, Day, Anna.id, Room, t(9, 0), t(10, 0));
    f.s.addItem(2, Day, QVariant(18), Room, t(9, 30), t(10, 30));
    BkCalendarColumn* column = f.makeColumn();
    QVERIFY(column->isResourceBooked(item));
    QuestionAnswerer answerer(QMessageBox::No);

    f.s.press(f.at(t(9, 30)));
    f.s.release(f.at(t(9, 30)));
    QCOMPARE(answerer.asked, 0);
    QVERIFY(item->widget->isSelected());
    QVERIFY(f.s.model.commitTimer()->isActive());
    QCOMPARE(item->start(), t(9, 0));
}

void tst_BkCalendarGestures::keysMoveByOneMinute()
{
    Fixture f;
    BkCalendarItem* item = f.s.addItem(1, Day, Anna.id, QVariant(), t(9, 0, 30), t(10, 0, 30));
    f.makeColumn();
    f.s.press(f.at(t(9, 30)));
    f.s.release(f.at(t(9, 30)));
    QVERIFY(item->widget->hasFocus());
    QTRY_VERIFY_WITH_TIMEOUT(!f.s.model.commitTimer()->isActive(), 20000);
    QSignalSpy saved(&f.s.model, &BkCalendarModel::saveItems);

    // No snapping: one press is one minute, seconds and all.
    QVERIFY(f.s.key(Qt::Key_Down));
    QCOMPARE(item->start(), t(9, 1, 30));
    QCOMPARE(item->end(), t(10, 1, 30));
    QVERIFY(f.s.model.commitTimer()->isActive());
    QVERIFY(f.s.key(Qt::Key_Up));
    QVERIFY(f.s.key(Qt::Key_Up));
    QCOMPARE(item->start(), t(8, 59, 30));
    QCOMPARE(item->end(), t(9, 59, 30));
    QCOMPARE(item->widget->pos().y(), 50.0 + 2.0 * (2 * 60 + 59));
    // The run of presses ends in one save.
    QTRY_COMPARE_WITH_TIMEOUT(saved.count(), 1, 20000);
}

void tst_BkCalendarGestures::keyAtTheFirstBookableMinuteStillCommits()
{
    Fixture f;
    BkCalendarItem* item = f.s.addItem(1, Day, Anna.id, QVariant(), t(8, 0), t(9, 0));
    f.makeColumn();
    f.s.press(f.at(t(8, 30)));
    f.s.release(f.at(t(8, 30)));
    QTRY_VERIFY_WITH_TIMEOUT(!f.s.model.commitTimer()->isActive(), 20000);

    QVERIFY(f.s.key(Qt::Key_Up));
    QCOMPARE(item->start(), t(8, 0));
    QVERIFY(!f.s.model.isInvalid(item));
    QVERIFY(f.s.model.commitTimer()->isActive());

    QCOMPARE(item->widget->moveBySeconds(-1), false);
    QCOMPARE(item->widget->moveBySeconds(1), true);
    QCOMPARE(item->start(), t(8, 1));
}

void tst_BkCalendarGestures::keysWithAModifierAreIgnored()
{
    Fixture f;
    BkCalendarItem* item = f.s.addItem(1, Day, Anna.id, QVariant(), t(9, 0), t(10, 0));
    f.makeColumn();
    f.s.press(f.at(t(9, 30)));
    f.s.release(f.at(t(9, 30)));
    QTRY_VERIFY_WITH_TIMEOUT(!f.s.model.commitTimer()->isActive(), 20000);

    QVERIFY(!f.s.key(Qt::Key_Up, Qt::ShiftModifier));
    QVERIFY(!f.s.key(Qt::Key_Down, Qt::ControlModifier));
    // Other keys go the same way.
    QVERIFY(!f.s.key(Qt::Key_Left));
    QCOMPARE(item->start(), t(9, 0));
    QVERIFY(!f.s.model.commitTimer()->isActive());
}

void tst_BkCalendarGestures::keysCanBeSwitchedOff()
{
    setSetting(QStringLiteral("set_disablekeysbooking"), 1);
    Fixture f;
    BkCalendarItem* item = f.s.addItem(1, Day, Anna.id, QVariant(), t(9, 0), t(10, 0));
    f.makeColumn();
    f.s.press(f.at(t(9, 30)));
    f.s.release(f.at(t(9, 30)));
    QTRY_VERIFY_WITH_TIMEOUT(!f.s.model.commitTimer()->isActive(), 20000);

    QVERIFY(!f.s.key(Qt::Key_Down));
    QCOMPARE(item->start(), t(9, 0));
    QVERIFY(!f.s.model.commitTimer()->isActive());

    setSetting(QStringLiteral("set_disablekeysbooking"), 0);
    QVERIFY(f.s.key(Qt::Key_Down));
    QCOMPARE(item->start(), t(9, 1));
}

void tst_BkCalendarGestures::shortBoxGrowsOnLeftPressUntilThePointerLeaves()
{
    setSetting(QStringLiteral("set_calexpandsize"), 60);
    Fixture f;
    // Ten minutes at two units a minute: a box 20 high.
    BkCalendarItem* item = f.s.addItem(1, Day, Anna.id, QVariant(), t(9, 0), t(9, 10));
    f.makeColumn(BkCalendarColumn::RaiseOnClick);
    BkCalendarItemWidget* widget = item->widget;
    QCOMPARE(widget->boundingRect().height(), 20.0);

    // Passing over it does nothing under RaiseOnClick.
    f.s.moveTo(f.at(t(9, 5)), Qt::NoButton);
    QVERIFY(!widget->expanded());

    f.s.press(f.at(t(9, 5)));
    QVERIFY(widget->expanded());
    QCOMPARE(widget->boundingRect().height(), 60.0);
    QCOMPARE(widget->savedRect().height(), 20.0);
    QCOMPARE(widget->zValue(), 100.0);
    f.s.release(f.at(t(9, 5)));
    // A release does not end it.
    QVERIFY(widget->expanded());
    QCOMPARE(widget->boundingRect().height(), 60.0);

    // Leaving the box does.
    f.s.moveTo(f.at(t(12, 0)), Qt::NoButton);
    QVERIFY(!widget->expanded());
    QCOMPARE(widget->boundingRect().height(), 20.0);
    QCOMPARE(widget->zValue(), 1.0);
}

void tst_BkCalendarGestures::boxOfTheExpandHeightDoesNotGrow()
{
    setSetting(QStringLiteral("set_calexpandsize"), 60);
    Fixture f;
    BkCalendarItem* item = f.s.addItem(1, Day, Anna.id, QVariant(), t(9, 0), t(9, 30));
    f.makeColumn(BkCalendarColumn::RaiseOnClick);
    QCOMPARE(item->widget->boundingRect().height(), 60.0);
    f.s.press(f.at(t(9, 5)));
    QVERIFY(!item->widget->expanded());
    QVERIFY(item->widget->zValue() != 100.0);
    f.s.release(f.at(t(9, 5)));
}

void tst_BkCalendarGestures::rightPressDoesNotGrow()
{
    setSetting(QStringLiteral("set_calexpandsize"), 60);
    Fixture f;
    BkCalendarItem* item = f.s.addItem(1, Day, Anna.id, QVariant(), t(9, 0), t(9, 10));
    f.makeColumn(BkCalendarColumn::RaiseOnClick);
    f.s.press(f.at(t(9, 5)), Qt::RightButton);
    QVERIFY(!item->widget->expanded());
    QCOMPARE(item->widget->boundingRect().height(), 20.0);
    // The right press is taken all the same: the box has the mouse.
    QCOMPARE(f.s.scene.mouseGrabberItem(), item->widget);
    f.s.release(f.at(t(9, 5)), Qt::RightButton);
}

void tst_BkCalendarGestures::shortBoxGrowsOnHover()
{
    setSetting(QStringLiteral("set_calexpandsize"), 60);
    Fixture f;
    BkCalendarItem* item = f.s.addItem(1, Day, Anna.id, QVariant(), t(9, 0), t(9, 10));
    BkCalendarItem* below = f.s.addItem(2, Day, Anna.id, QVariant(), t(9, 20), t(9, 50));
    f.makeColumn(BkCalendarColumn::RaiseOnHover);
    BkCalendarItemWidget* widget = item->widget;
    QCOMPARE(widget->colCount(), 1);

    f.s.moveTo(f.at(t(9, 5)), Qt::NoButton);
    QVERIFY(widget->expanded());
    QCOMPARE(widget->boundingRect().height(), 60.0);
    QCOMPARE(widget->zValue(), 100.0);
    // Growing runs no layout of its own.
    QCOMPARE(widget->colCount(), 1);
    // A press under RaiseOnHover grows nothing more and shrinks nothing.
    f.s.press(f.at(t(9, 5)));
    f.s.release(f.at(t(9, 5)));
    QCOMPARE(widget->boundingRect().height(), 60.0);

    f.s.moveTo(f.at(t(13, 0)), Qt::NoButton);
    QVERIFY(!widget->expanded());
    QCOMPARE(widget->boundingRect().height(), 20.0);
    QCOMPARE(widget->zValue(), 1.0);
    QCOMPARE(widget->colCount(), 1);
    QCOMPARE(below->widget->colCount(), 1);
}

void tst_BkCalendarGestures::grownBoxCountsInTheNextLayoutAndShrinkingLaysOutAgain()
{
    setSetting(QStringLiteral("set_calexpandsize"), 60);
    Fixture f;
    // A box 20 high at scene y 410, and one 60 high from y 450: apart until the first grows to 60.
    BkCalendarItem* item = f.s.addItem(1, Day, Anna.id, QVariant(), t(9, 0), t(9, 10));
    BkCalendarItem* below = f.s.addItem(2, Day, Anna.id, QVariant(), t(9, 20), t(9, 50));
    BkCalendarItem* far = f.s.addItem(3, Day, Anna.id, QVariant(), t(14, 0), t(15, 0));
    f.makeColumn(BkCalendarColumn::RaiseOnHover);
    BkCalendarItemWidget* widget = item->widget;
    BkCalendarItemWidget* other = below->widget;
    const double share = BookingScene::ColumnWidth - 5.0;
    QCOMPARE(other->colCount(), 1);

    // The user picks the far booking for the keys, then points at the short one, which grows.
    f.s.press(f.at(t(14, 30)));
    f.s.release(f.at(t(14, 30)));
    QVERIFY(far->widget->hasFocus());
    f.s.moveTo(f.at(t(9, 5)), Qt::NoButton);
    QVERIFY(widget->expanded());
    QCOMPARE(widget->boundingRect().height(), 60.0);
    QVERIFY(widget->collidesWithItem(other));
    // It keeps the layout it had when it grew.
    QCOMPARE(widget->colCount(), 1);
    QCOMPARE(other->colCount(), 1);
    QCOMPARE(other->x(), 0.0);

    // A key moves the far booking by a minute, and that runs the layout: it counts the grown
    // height, so the box below shares its width with the grown one.
    QVERIFY(f.s.key(Qt::Key_Down));
    QCOMPARE(far->start(), t(14, 1));
    QCOMPARE(other->colCount(), 2);
    QCOMPARE(other->colIndex(), 1);
    QCOMPARE(other->x(), share / 2);
    QCOMPARE(other->boundingRect().width(), share / 2);
    QCOMPARE(far->widget->colCount(), 1);
    // Only leaving the box ends the growing.
    QVERIFY(widget->expanded());

    // The pointer leaves: the box shrinks and the layout runs again, which frees the box below.
    f.s.moveTo(f.at(t(12, 0)), Qt::NoButton);
    QVERIFY(!widget->expanded());
    QCOMPARE(widget->boundingRect().height(), 20.0);
    QCOMPARE(widget->colCount(), 1);
    QCOMPARE(other->colCount(), 1);
    QCOMPARE(other->colIndex(), 0);
    QCOMPARE(other->x(), 0.0);
    QCOMPARE(other->boundingRect().width(), share);
    QCOMPARE(widget->boundingRect().width(), share);
}

void tst_BkCalendarGestures::doubleClickActivates()
{
    Fixture f;
    BkCalendarItem* item = f.s.addItem(1, Day, Anna.id, QVariant(), t(9, 0), t(10, 0));
    BkCalendarColumn* column = f.makeColumn();
    QSignalSpy activated(column, &BkCalendarColumn::itemActivated);
    f.s.doubleClick(f.at(t(9, 30)));
    QCOMPARE(activated.count(), 1);
    QCOMPARE(activated.at(0).at(0).value<BkCalendarItem*>(), item);
}

void tst_BkCalendarGestures::contextMenuIsSignalled()
{
    Fixture f;
    BkCalendarItem* item = f.s.addItem(1, Day, Anna.id, QVariant(), t(9, 0), t(10, 0));
    BkCalendarColumn* column = f.makeColumn();
    QSignalSpy menu(column, &BkCalendarColumn::itemContextMenu);

    QGraphicsSceneContextMenuEvent event(QEvent::GraphicsSceneContextMenu);
    event.setScenePos(f.at(t(9, 30)));
    event.setScreenPos(QPoint(321, 654));
    event.setReason(QGraphicsSceneContextMenuEvent::Mouse);
    event.setAccepted(false);
    QApplication::sendEvent(&f.s.scene, &event);
    QVERIFY(event.isAccepted());
    QCOMPARE(menu.count(), 1);
    QCOMPARE(menu.at(0).at(0).toPoint(), QPoint(321, 654));
    QCOMPARE(menu.at(0).at(1).value<BkCalendarItem*>(), item);
}

void tst_BkCalendarGestures::leavingTheBoxSidewaysStartsADrag_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<double>("dx");
    QTest::newRow("to the right") << 42 << 230.0;
    QTest::newRow("to the left, negative id") << -42 << -10.0;
}

void tst_BkCalendarGestures::leavingTheBoxSidewaysStartsADrag()
{
    QFETCH(int, id);
    QFETCH(double, dx);
    setSetting(QStringLiteral("gst_calendarsensitivity"), 50);
    Fixture f;
    BkCalendarItem* item = f.s.addItem(id, Day, Anna.id, QVariant(), t(9, 0), t(10, 0));
    f.makeColumn();
    BkCalendarItemWidget* widget = item->widget;

    // Should the platform run a drag loop of its own, Escape ends it; this cannot outlive the test.
    QTimer safety;
    safety.setSingleShot(true);
    connect(&safety, &QTimer::timeout, this, []() {
        QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        QApplication::sendEvent(qApp, &escape);
    });
    safety.start(10000);

    f.s.press(f.at(t(9, 30), 190));
    QVERIFY(f.s.view.viewport()->findChildren<QDrag*>().isEmpty());
    // Out of the box sideways, far less than the sensitivity: the drag needs no travel.
    f.s.moveTo(f.at(t(9, 30), dx));
    safety.stop();

    // The drag belongs to the view's viewport; it is deleted later, so it can still be read here.
    const QList<QDrag*> drags = f.s.view.viewport()->findChildren<QDrag*>();
    QCOMPARE(drags.size(), 1);
    QDrag* drag = drags.first();
    QVERIFY(drag->mimeData());
    QCOMPARE(drag->mimeData()->formats(), QStringList() << QStringLiteral("text/calitem"));
    QCOMPARE(drag->mimeData()->data(QStringLiteral("text/calitem")), QByteArray::number(id));
    QCOMPARE(drag->hotSpot(), QPoint(15, 20));
    QVERIFY(drag->pixmap().isNull());
    QCOMPARE(drag->supportedActions() & Qt::MoveAction, Qt::MoveAction);

    // No move on this road.
    QVERIFY(!widget->moved());
    QCOMPARE(item->start(), t(9, 0));
    f.s.release(f.at(t(9, 30), dx));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(f.s.view.viewport()->findChildren<QDrag*>().isEmpty());
}

void tst_BkCalendarGestures::reservedBoxTakesNoGesture()
{
    setSetting(QStringLiteral("set_calexpandsize"), 60);
    Fixture f;
    BkCalendarItem* reserved =
        f.s.addItem(1, Day, Anna.id, QVariant(), t(9, 0), t(9, 10), BkCalendarItem::Reserved);
    BkCalendarItem* meeting = f.s.addItem(2, Day, Anna.id, QVariant(), t(9, 5), t(10, 0));
    BkCalendarColumn* column = f.makeColumn(BkCalendarColumn::RaiseOnClick);
    BkCalendarItemWidget* widget = reserved->widget;
    QVERIFY(widget);
    QSignalSpy activated(column, &BkCalendarColumn::itemActivated);
    QSignalSpy menu(column, &BkCalendarColumn::itemContextMenu);

    // It still takes its share in the layout.
    QCOMPARE(widget->colCount(), 2);
    QCOMPARE(meeting->widget->colCount(), 2);
    QCOMPARE(widget->colIndex(), 0);

    // A press neither selects nor grows it, and a move does not move it.
    const QPointF on = f.at(t(9, 2), 20);
    f.s.press(on);
    // The press is its own, so the moves below reach it and not the column.
    QCOMPARE(f.s.scene.mouseGrabberItem(), widget);
    QVERIFY(!widget->isSelected());
    QVERIFY(!widget->expanded());
    f.s.moveTo(on + QPointF(0, 100));
    QCOMPARE(reserved->start(), t(9, 0));
    QVERIFY(!widget->moved());
    f.s.moveTo(on + QPointF(400, 0));
    QVERIFY(f.s.view.viewport()->findChildren<QDrag*>().isEmpty());
    f.s.release(on + QPointF(400, 0));
    QVERIFY(!f.s.model.commitTimer()->isActive());

    // Keys go nowhere.
    widget->setFocus();
    QVERIFY(widget->hasFocus());
    f.s.key(Qt::Key_Down);
    QCOMPARE(reserved->start(), t(9, 0));
    QVERIFY(!f.s.model.commitTimer()->isActive());

    // Nor do the double click and the context menu.
    f.s.doubleClick(on);
    QCOMPARE(activated.count(), 0);
    QGraphicsSceneContextMenuEvent event(QEvent::GraphicsSceneContextMenu);
    event.setScenePos(on);
    event.setScreenPos(QPoint(5, 5));
    QApplication::sendEvent(&f.s.scene, &event);
    QCOMPARE(menu.count(), 0);
}

FW_TEST_MAIN(tst_BkCalendarGestures)
#include "tst_bkcalendargestures.moc"
