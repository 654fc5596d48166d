// Dragging bookings between columns: the two drag formats, the live move under the pointer, the
// drop with its double-booking question, rows of the move list, the scene's undo when a drag
// leaves it, and payloads from outside that must be ignored.

#include "BkBookingScene.h"
#include "FwTestApplication.h"
#include "FwTreeWidget.h"
#include "FwTreeWidgetItem.h"

#include <QDrag>
#include <QSignalSpy>
#include <QtTest>

using namespace BkTest;

namespace {

const QDate Day(2024, 3, 11);
const QDate NextDay(2024, 3, 12);
const BkCalendarResource Anna(QVariant(17), QStringLiteral("Anna"), 0);
const BkCalendarResource Bert(QVariant(18), QStringLiteral("Bert"), 0);
const BkCalendarResource Carl(QVariant(19), QStringLiteral("Carl"), 0);
const QVariant Room(5);
const QString CalItem = QStringLiteral("text/calitem");
const QString TreeRow = QStringLiteral("application/x-fwtreewidget");

// Three day columns side by side: Anna's, Bert's and Carl's, each open from 08:00 to 16:00;
// Carl's is open only from 12:00. Booking 1 is Anna's, 09:00 to 10:00, in room 5.
class Fixture
{
public:
    Fixture()
    {
        s.addPlan(Day, Anna, t(8, 0), t(16, 0));
        s.addPlan(Day, Bert, t(8, 0), t(16, 0));
        s.addPlan(Day, Carl, t(12, 0), t(16, 0));
        booking = s.addItem(1, Day, Anna.id, Room, t(9, 0), t(10, 0));
        anna = s.addColumn(Day, Anna);
        bert = s.addColumn(Day, Bert);
        carl = s.addColumn(Day, Carl);
        s.show();
    }

    QPointF at(BkCalendarColumn* column, QTime time) const { return s.scenePoint(column, time, 100); }

    // Enter and move over the scene at one point, as a drag that arrives there does.
    bool dragTo(BkCalendarColumn* column, QTime time, const QMimeData* data)
    {
        sendDrag(&s.scene, QEvent::GraphicsSceneDragEnter, at(column, time), data, s.view.viewport());
        return sendDrag(&s.scene, QEvent::GraphicsSceneDragMove, at(column, time), data, s.view.viewport());
    }
    bool moveTo(BkCalendarColumn* column, QTime time, const QMimeData* data)
    {
        return sendDrag(&s.scene, QEvent::GraphicsSceneDragMove, at(column, time), data, s.view.viewport());
    }
    bool drop(BkCalendarColumn* column, QTime time, const QMimeData* data)
    {
        return sendDrag(&s.scene, QEvent::GraphicsSceneDrop, at(column, time), data, s.view.viewport());
    }

    BookingScene s;
    BkCalendarItem* booking = nullptr;
    BkCalendarColumn* anna = nullptr;
    BkCalendarColumn* bert = nullptr;
    BkCalendarColumn* carl = nullptr;
};

quint64 addressOf(FwTreeWidgetItem* row)
{
    return quint64(quintptr(row));
}

// The move list as the form fills it: one row per booking, its id under IdRole.
FwTreeWidgetItem* addRow(FwTreeWidget* tree, const QVariant& id)
{
    auto* row = new FwTreeWidgetItem(tree);
    row->setData(0, IdRole, id);
    row->setText(2, QStringLiteral("booking %1").arg(id.toInt()));
    return row;
}

} // namespace

class tst_BkCalendarDragDrop : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        setSetting(QStringLiteral("set_snaponmovebooking"), 15);
        setSetting(QStringLiteral("gst_calendarsensitivity"), 0);
    }

    void enterAcceptsOnlyTheTwoFormats_data();
    void enterAcceptsOnlyTheTwoFormats();
    void bookingFollowsThePointerUncommitted();
    void dragOverThreeColumnsReparentsAtEveryAllowedStep();
    void boxTakesTheWidthOfTheColumnItIsDraggedInto();
    void refusedMoveIsStillAcceptedAndTheDropCommitsTheLastGoodPlace();
    void bookingTakenAwayByTheAnswerToTheColumnsDateIsNotMoved_data();
    void bookingTakenAwayByTheAnswerToTheColumnsDateIsNotMoved();
    void bookingTakenAwayByTheAnswerToItsChangeGetsNoNewKeys();
    void unknownOrMalformedIdIsIgnored_data();
    void unknownOrMalformedIdIsIgnored();
    void columnDragLeaveKeepsTheBooking();
    void dropCommitsWithoutDoubleBooking();
    void dropOfADoubleBookingAsks_data();
    void dropOfADoubleBookingAsks();
    void dropOfAnUnknownIdIsIgnored();
    void dropOfABookingThatTheHostReloadsIsIgnored();
    void dropOfABookingTakenAwayDuringTheQuestionIsIgnored();
    void dragStartedByTheMouseEndsInAnotherColumn();
    void bookingOfAPersonAndARoomKeepsOneBoxInEachOfTheirColumns_data();
    void bookingOfAPersonAndARoomKeepsOneBoxInEachOfTheirColumns();
    void bookingMovedInAGroupTakesAlongTheBoxOfTheKeyItLeaves_data();
    void bookingMovedInAGroupTakesAlongTheBoxOfTheKeyItLeaves();

    void moveListRowIsReadByteExactly();
    void moveListRowDropCommitsAndDeletesTheRow();
    void moveListRowDroppedOnAClosedSpanKeepsItsPlace();
    void moveListRowWithoutAddressDeletesNothing();
    void moveListPayloadFromOutsideIsIgnored_data();
    void moveListPayloadFromOutsideIsIgnored();

    void sceneDragLeaveTakesTheMoveBack();
    void sceneDragLeaveIgnoresWhatIsNotABooking();
};

void tst_BkCalendarDragDrop::enterAcceptsOnlyTheTwoFormats_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("booking") << CalItem << true;
    QTest::newRow("move list row") << TreeRow << true;
    QTest::newRow("text") << QStringLiteral("text/plain") << false;
    QTest::newRow("nothing") << QString() << false;
}

void tst_BkCalendarDragDrop::enterAcceptsOnlyTheTwoFormats()
{
    QFETCH(QString, format);
    QFETCH(bool, accepted);
    Fixture f;
    QMimeData data;
    if (!format.isEmpty())
        data.setData(format, QByteArray("1"));
    QCOMPARE(sendDragTo(f.bert, QEvent::GraphicsSceneDragEnter, f.at(f.bert, t(11, 0)), &data), accepted);
    // Entering moves nothing.
    QCOMPARE(f.booking->widget->parentItem(), f.anna);
    QCOMPARE(f.booking->start(), t(9, 0));
}

void tst_BkCalendarDragDrop::bookingFollowsThePointerUncommitted()
{
    Fixture f;
    auto data = calItemData("1");
    BkCalendarItemWidget* widget = f.booking->widget;

    QVERIFY(f.dragTo(f.bert, t(11, 6), data.get()));
    QCOMPARE(widget->parentItem(), f.bert);
    QCOMPARE(f.booking->start(), t(11, 0));
    QCOMPARE(f.booking->end(), t(12, 0));
    QCOMPARE(f.booking->userId(), Bert.id);
    QCOMPARE(f.booking->date(), Day);
    QVERIFY(f.bert->isSelected());
    QVERIFY(f.s.model.isInvalid(f.booking));
    QVERIFY(!f.s.model.commitTimer()->isActive());

    QVERIFY(f.moveTo(f.bert, t(11, 52), data.get()));
    QCOMPARE(f.booking->start(), t(12, 0));
    QCOMPARE(widget->pos().y(), 50.0 + 1.5 * 6 * 60);
    QVERIFY(!f.s.model.commitTimer()->isActive());
}

void tst_BkCalendarDragDrop::dragOverThreeColumnsReparentsAtEveryAllowedStep()
{
    Fixture f;
    auto data = calItemData("1");
    BkCalendarItemWidget* widget = f.booking->widget;
    f.anna->setSelected(true);

    QVERIFY(f.dragTo(f.bert, t(10, 0), data.get()));
    QCOMPARE(widget->parentItem(), f.bert);
    QCOMPARE(widget->column(), f.bert);
    QVERIFY(f.bert->isSelected());
    QVERIFY(!f.anna->isSelected());

    // Carl's column is closed before 12:00: the box stays in Bert's.
    QVERIFY(f.dragTo(f.carl, t(11, 0), data.get()));
    QCOMPARE(widget->parentItem(), f.bert);
    QCOMPARE(f.booking->userId(), Bert.id);
    QCOMPARE(f.booking->start(), t(10, 0));

    QVERIFY(f.moveTo(f.carl, t(13, 0), data.get()));
    QCOMPARE(widget->parentItem(), f.carl);
    QCOMPARE(f.booking->userId(), Carl.id);
    QVERIFY(f.carl->isSelected());
    QVERIFY(!f.bert->isSelected());

    // The box listens to the width of the column it is in now, and to no other.
    f.carl->setWidthScale(305.0, WidthFixed, -1.0);
    QCOMPARE(widget->columnRect().width(), 300.0);
    f.bert->setWidthScale(105.0, WidthFixed, -1.0);
    f.anna->setWidthScale(155.0, WidthFixed, -1.0);
    QCOMPARE(widget->columnRect().width(), 300.0);

    // And back to the first column.
    QVERIFY(f.dragTo(f.anna, t(9, 0), data.get()));
    QCOMPARE(widget->parentItem(), f.anna);
    QCOMPARE(f.booking->userId(), Anna.id);
    f.anna->setWidthScale(185.0, WidthFixed, -1.0);
    QCOMPARE(widget->columnRect().width(), 180.0);
    f.carl->setWidthScale(205.0, WidthFixed, -1.0);
    QCOMPARE(widget->columnRect().width(), 180.0);
}

void tst_BkCalendarDragDrop::boxTakesTheWidthOfTheColumnItIsDraggedInto()
{
    // Anna's column is widened by hand, Bert's is narrower: the box dragged across stands within
    // Bert's width at once, beside Bert's own booking, and within Anna's again on the way back.
    Fixture f;
    BkCalendarItem* berts = f.s.addItem(2, Day, Bert.id, QVariant(), t(10, 0), t(11, 0));
    f.bert->update();
    f.anna->setWidthScale(365.0, WidthFixed, -1.0);
    f.bert->setWidthScale(205.0, WidthFixed, -1.0);
    auto data = calItemData("1");
    BkCalendarItemWidget* widget = f.booking->widget;
    QCOMPARE(widget->columnRect().width(), 360.0);

    QVERIFY(f.dragTo(f.bert, t(10, 30), data.get()));
    QVERIFY(f.drop(f.bert, t(10, 30), data.get()));
    QCOMPARE(widget->parentItem(), f.bert);
    QCOMPARE(widget->columnRect().width(), 200.0);
    QCOMPARE(widget->colCount(), 2);
    QCOMPARE(berts->widget->colCount(), 2);
    const QRectF moved = widget->mapRectToParent(widget->boundingRect());
    const QRectF own = berts->widget->mapRectToParent(berts->widget->boundingRect());
    QVERIFY2(!moved.intersects(own), "the two boxes of Bert's column overlap");
    QVERIFY(moved.right() <= 200.0);

    QVERIFY(f.dragTo(f.anna, t(9, 0), data.get()));
    QVERIFY(f.drop(f.anna, t(9, 0), data.get()));
    QCOMPARE(widget->parentItem(), f.anna);
    QCOMPARE(widget->columnRect().width(), 360.0);
    QCOMPARE(widget->colCount(), 1);
    QCOMPARE(widget->boundingRect().width(), 360.0);
}

void tst_BkCalendarDragDrop::refusedMoveIsStillAcceptedAndTheDropCommitsTheLastGoodPlace()
{
    Fixture f;
    auto data = calItemData("1");
    QVERIFY(f.dragTo(f.bert, t(11, 0), data.get()));
    // An hour from 15:30 would end after the plan: refused, and still accepted.
    QVERIFY(f.moveTo(f.bert, t(15, 30), data.get()));
    QCOMPARE(f.booking->start(), t(11, 0));

    QuestionAnswerer answerer(QMessageBox::No);
    QVERIFY(f.drop(f.bert, t(15, 30), data.get()));
    QCOMPARE(answerer.asked, 0);
    QCOMPARE(f.booking->start(), t(11, 0));
    QCOMPARE(f.booking->userId(), Bert.id);
    QVERIFY(f.s.model.commitTimer()->isActive());
    QSignalSpy saved(&f.s.model, &BkCalendarModel::saveItems);
    QTRY_COMPARE_WITH_TIMEOUT(saved.count(), 1, 20000);
    QVERIFY(!f.s.model.isInvalid(f.booking));
}

void tst_BkCalendarDragDrop::bookingTakenAwayByTheAnswerToTheColumnsDateIsNotMoved_data()
{
    QTest::addColumn<bool>("deleted");
    QTest::newRow("given back") << false;
    QTest::newRow("deleted") << true;
}

void tst_BkCalendarDragDrop::bookingTakenAwayByTheAnswerToTheColumnsDateIsNotMoved()
{
    QFETCH(bool, deleted);
    Fixture f;
    auto data = calItemData("1");
    BkCalendarItem* booking = f.booking;
    BkCalendarItemWidget* widget = booking->widget;

    // Entering Bert's column selects it, which tells of its date; the host answers by taking the
    // booking away.
    int answered = 0;
    connect(f.bert, &BkCalendarColumn::dateSelected, this, [&]() {
        ++answered;
        f.s.model.removeItem(booking);
        if (deleted) {
            delete booking;
            booking = nullptr;
        }
    });
    QVERIFY(f.dragTo(f.bert, t(11, 0), data.get()));
    QCOMPARE(answered, 1);
    QVERIFY(!f.s.model.findId(QVariant(1)));
    QVERIFY(f.s.model.invalidItems().isEmpty());
    QCOMPARE(widget->parentItem(), f.anna);
    QVERIFY(!widget->item());
    if (booking) {
        QCOMPARE(booking->userId(), Anna.id);
        QCOMPARE(booking->start(), t(9, 0));
        QCOMPARE(booking->end(), t(10, 0));
        delete booking;
    }

    // The drop finds nothing to end.
    QVERIFY(!f.drop(f.bert, t(11, 0), data.get()));
    QVERIFY(!f.s.model.commitTimer()->isActive());
}

void tst_BkCalendarDragDrop::bookingTakenAwayByTheAnswerToItsChangeGetsNoNewKeys()
{
    Fixture f;
    auto data = calItemData("1");
    BkCalendarItem* booking = f.booking;

    // The host takes the booking back as soon as it hears of its change.
    int answered = 0;
    connect(&f.s.model, &BkCalendarModel::itemChanged, this, [&](BkCalendarItem* item) {
        if (item != booking || answered++)
            return;
        f.s.model.removeItem(booking);
    });
    QVERIFY(f.dragTo(f.bert, t(11, 0), data.get()));
    QCOMPARE(answered, 1);
    QVERIFY(!f.s.model.findId(QVariant(1)));
    QVERIFY(f.s.model.invalidItems().isEmpty());
    QVERIFY(!booking->model);
    QCOMPARE(booking->userId(), Anna.id);
    QCOMPARE(booking->date(), Day);
    delete booking;
}

void tst_BkCalendarDragDrop::unknownOrMalformedIdIsIgnored_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("unknown id") << QByteArray("77");
    QTest::newRow("not a number") << QByteArray("booking");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("number with trailing text") << QByteArray("0x");
    QTest::newRow("too large") << QByteArray("99999999999999999999");
}

void tst_BkCalendarDragDrop::unknownOrMalformedIdIsIgnored()
{
    QFETCH(QByteArray, payload);
    Fixture f;
    // A booking with id 0 is what a careless reading of garbage would find.
    BkCalendarItem* zero = f.s.addItem(0, Day, Anna.id, QVariant(), t(13, 0), t(14, 0));
    QVERIFY(zero->widget);
    auto data = calItemData(payload);

    QVERIFY(!f.dragTo(f.bert, t(11, 0), data.get()));
    QCOMPARE(zero->widget->parentItem(), f.anna);
    QCOMPARE(zero->start(), t(13, 0));
    QCOMPARE(f.booking->widget->parentItem(), f.anna);
    QVERIFY(!f.drop(f.bert, t(11, 0), data.get()));
    QVERIFY(!f.s.model.commitTimer()->isActive());
    QVERIFY(!f.s.model.isInvalid(zero));

    // The same booking with its id in plain digits moves.
    auto good = calItemData("0");
    QVERIFY(f.dragTo(f.bert, t(11, 0), good.get()));
    QCOMPARE(zero->widget->parentItem(), f.bert);
}

void tst_BkCalendarDragDrop::columnDragLeaveKeepsTheBooking()
{
    Fixture f;
    auto data = calItemData("1");
    QVERIFY(f.dragTo(f.bert, t(11, 0), data.get()));
    sendDragTo(f.bert, QEvent::GraphicsSceneDragLeave, f.at(f.bert, t(11, 0)), data.get());
    QCOMPARE(f.booking->widget->parentItem(), f.bert);
    QCOMPARE(f.booking->start(), t(11, 0));
    QCOMPARE(f.booking->userId(), Bert.id);
    QVERIFY(f.s.model.isInvalid(f.booking));
}

void tst_BkCalendarDragDrop::dropCommitsWithoutDoubleBooking()
{
    Fixture f;
    // Room 5 is taken from 12:00 on: touching that booking is no double booking.
    f.s.addItem(2, Day, Carl.id, Room, t(12, 0), t(13, 0));
    auto data = calItemData("1");
    QuestionAnswerer answerer(QMessageBox::No);
    QVERIFY(f.dragTo(f.bert, t(11, 0), data.get()));
    QVERIFY(f.drop(f.bert, t(11, 0), data.get()));
    QCOMPARE(answerer.asked, 0);
    QCOMPARE(f.booking->widget->parentItem(), f.bert);
    QCOMPARE(f.booking->start(), t(11, 0));
    QVERIFY(f.s.model.commitTimer()->isActive());
}

void tst_BkCalendarDragDrop::dropOfADoubleBookingAsks_data()
{
    QTest::addColumn<int>("answer");
    QTest::newRow("yes") << int(QMessageBox::Yes);
    QTest::newRow("no") << int(QMessageBox::No);
}

void tst_BkCalendarDragDrop::dropOfADoubleBookingAsks()
{
    QFETCH(int, answer);
    Fixture f;
    f.s.addItem(2, Day, Carl.id, Room, t(13, 0), t(14, 0));
    auto data = calItemData("1");

    // First step: Bert's column at 11:00, room free. Second step: 13:00, room taken.
    QVERIFY(f.dragTo(f.bert, t(11, 0), data.get()));
    QVERIFY(f.moveTo(f.bert, t(13, 0), data.get()));
    QCOMPARE(f.booking->start(), t(13, 0));

    QuestionAnswerer answerer{QMessageBox::StandardButton(answer)};
    const bool accepted = f.drop(f.bert, t(13, 0), data.get());
    QVERIFY(accepted);
    QCOMPARE(answerer.asked, 1);
    QCOMPARE(answerer.title, QStringLiteral("Resource booked double"));
    QCOMPARE(answerer.text, QStringLiteral("Do you want to make a double booked resource ?"));
    QCOMPARE(answerer.buttons, QMessageBox::Yes | QMessageBox::No);
    QCOMPARE(answerer.defaultButton, QMessageBox::No);
    QCOMPARE(answerer.parent, f.s.view.viewport());

    if (answer == QMessageBox::Yes) {
        QCOMPARE(f.booking->userId(), Bert.id);
        QCOMPARE(f.booking->start(), t(13, 0));
        QCOMPARE(f.booking->widget->parentItem(), f.bert);
        QVERIFY(f.s.model.commitTimer()->isActive());
    } else {
        // The user and the date come back; the time is that of the first step of the drag.
        QCOMPARE(f.booking->userId(), Anna.id);
        QCOMPARE(f.booking->date(), Day);
        QCOMPARE(f.booking->start(), t(11, 0));
        QCOMPARE(f.booking->end(), t(12, 0));
        QVERIFY(!f.s.model.isInvalid(f.booking));
        QVERIFY(!f.s.model.commitTimer()->isActive());
        QVERIFY(f.booking->widget);
        QCOMPARE(f.booking->widget->parentItem(), f.anna);
    }
}

void tst_BkCalendarDragDrop::dropOfAnUnknownIdIsIgnored()
{
    Fixture f;
    auto data = calItemData("1");
    auto unknown = calItemData("55");
    QVERIFY(f.dragTo(f.bert, t(11, 0), data.get()));
    QVERIFY(!f.drop(f.bert, t(11, 0), unknown.get()));
    QVERIFY(!f.s.model.commitTimer()->isActive());
    QVERIFY(f.s.model.isInvalid(f.booking));
}

void tst_BkCalendarDragDrop::dropOfABookingThatTheHostReloadsIsIgnored()
{
    Fixture f;
    f.s.addItem(2, Day, Carl.id, Room, t(11, 0), t(12, 0));
    auto data = calItemData("1");
    QVERIFY(f.dragTo(f.bert, t(11, 0), data.get()));

    // The double-booking check reads the room's day, which the model lacks. The host answers by
    // reloading the booking from its database: the dragged one goes, a fresh copy takes its id.
    BkCalendarItem* fresh = nullptr;
    connect(&f.s.model, &BkCalendarModel::loadData, this,
            [&](const QDate&, const QDate&, const BkCalendarResource& resource) {
                if (resource.type != 1 || fresh)
                    return;
                fresh = new BkCalendarItem;
                fresh->id = 1;
                fresh->setDate(Day);
                fresh->setUserId(Anna.id);
                fresh->setResourceId(Room);
                fresh->setTime(t(9, 0), t(10, 0));
                BkCalendarItem* old = f.s.model.findId(QVariant(1));
                f.s.model.removeItem(old);
                delete old;
                f.s.model.addItem(fresh);
            });
    QuestionAnswerer answerer(QMessageBox::Yes);
    QVERIFY(!f.drop(f.bert, t(11, 0), data.get()));
    QVERIFY(fresh);
    QCOMPARE(answerer.asked, 0);
    QCOMPARE(f.s.model.findId(QVariant(1)), fresh);
    QCOMPARE(fresh->start(), t(9, 0));
    QCOMPARE(fresh->userId(), Anna.id);
    QVERIFY(!f.s.model.isInvalid(fresh));
    QVERIFY(!f.s.model.commitTimer()->isActive());
    QVERIFY(fresh->widget);
    QCOMPARE(fresh->widget->parentItem(), f.anna);
}

void tst_BkCalendarDragDrop::dropOfABookingTakenAwayDuringTheQuestionIsIgnored()
{
    Fixture f;
    f.s.addItem(2, Day, Carl.id, Room, t(11, 0), t(12, 0));
    auto data = calItemData("1");
    QVERIFY(f.dragTo(f.bert, t(11, 0), data.get()));

    // While the question is open, the host takes the booking away; then the user answers No.
    int asked = 0;
    QTimer timer;
    timer.setInterval(10);
    connect(&timer, &QTimer::timeout, this, [&]() {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box || !box->isVisible())
            return;
        ++asked;
        BkCalendarItem* old = f.s.model.findId(QVariant(1));
        f.s.model.removeItem(old);
        delete old;
        box->button(QMessageBox::No)->click();
    });
    timer.start();
    QVERIFY(!f.drop(f.bert, t(11, 0), data.get()));
    QCOMPARE(asked, 1);
    QVERIFY(!f.s.model.findId(QVariant(1)));
    QVERIFY(f.s.model.invalidItems().isEmpty());
    QVERIFY(!f.s.model.commitTimer()->isActive());
}

void tst_BkCalendarDragDrop::dragStartedByTheMouseEndsInAnotherColumn()
{
    Fixture f;
    QTimer safety;
    safety.setSingleShot(true);
    connect(&safety, &QTimer::timeout, this, []() {
        QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        QApplication::sendEvent(qApp, &escape);
    });
    safety.start(10000);

    // Press on the box and leave it sideways: the drag carries the booking's id.
    f.s.press(f.at(f.anna, t(9, 30)));
    f.s.moveTo(f.at(f.bert, t(9, 30)));
    safety.stop();
    const QList<QDrag*> drags = f.s.view.viewport()->findChildren<QDrag*>();
    QCOMPARE(drags.size(), 1);
    QMimeData carried;
    carried.setData(CalItem, drags.first()->mimeData()->data(CalItem));
    QCOMPARE(carried.data(CalItem), QByteArray("1"));

    // Where the window system takes over, the scene sees enter, moves and the drop.
    QVERIFY(f.dragTo(f.bert, t(9, 30), &carried));
    QVERIFY(f.moveTo(f.bert, t(14, 0), &carried));
    QVERIFY(f.drop(f.bert, t(14, 0), &carried));
    QCOMPARE(f.booking->widget->parentItem(), f.bert);
    QCOMPARE(f.booking->userId(), Bert.id);
    QCOMPARE(f.booking->start(), t(14, 0));
    QVERIFY(f.s.model.commitTimer()->isActive());
    f.s.release(f.at(f.bert, t(14, 0)));
}

void tst_BkCalendarDragDrop::bookingOfAPersonAndARoomKeepsOneBoxInEachOfTheirColumns_data()
{
    QTest::addColumn<bool>("roomsColumnGone");
    QTest::newRow("both columns") << false;
    // The room's column goes, and with it the box that the booking named as its own.
    QTest::newRow("the room's column gone") << true;
}

void tst_BkCalendarDragDrop::bookingOfAPersonAndARoomKeepsOneBoxInEachOfTheirColumns()
{
    // In a group of a person and a room, their booking stands in both columns. Brought from the
    // room's column into the person's, it is moved by the box it has there, and the room keeps its own.
    QFETCH(bool, roomsColumnGone);
    BookingScene s;
    const BkCalendarResource room(Room, QStringLiteral("Room 5"), 1);
    s.addPlan(Day, Anna, t(8, 0), t(16, 0));
    s.addPlan(Day, room, t(8, 0), t(16, 0));
    BkCalendarItem* booking = s.addItem(1, Day, Anna.id, Room, t(9, 0), t(10, 0));
    BkCalendarColumn* anna = s.addColumn(Day, Anna);
    BkCalendarColumn* rooms = s.addColumn(Day, room);
    s.show();
    QCOMPARE(boxesOf(anna, booking).size(), 1);
    QCOMPARE(boxesOf(rooms, booking).size(), 1);
    BkCalendarItemWidget* annasBox = boxesOf(anna, booking).first();
    BkCalendarItemWidget* roomsBox = boxesOf(rooms, booking).first();
    QCOMPARE(booking->widget, roomsBox);
    if (roomsColumnGone) {
        delete rooms;
        rooms = nullptr;
        QVERIFY(!booking->widget);
    } else {
        rooms->setSelected(true);
    }

    auto data = calItemData("1");
    const auto at = [&s](BkCalendarColumn* column, QTime time) { return s.scenePoint(column, time, 100); };
    sendDrag(&s.scene, QEvent::GraphicsSceneDragEnter, at(anna, t(11, 0)), data.get(), s.view.viewport());
    QVERIFY(
        sendDrag(&s.scene, QEvent::GraphicsSceneDragMove, at(anna, t(11, 0)), data.get(), s.view.viewport()));
    QVERIFY(
        sendDrag(&s.scene, QEvent::GraphicsSceneDragMove, at(anna, t(12, 0)), data.get(), s.view.viewport()));
    QVERIFY(sendDrag(&s.scene, QEvent::GraphicsSceneDrop, at(anna, t(12, 0)), data.get(), s.view.viewport()));
    QCOMPARE(booking->start(), t(12, 0));
    QCOMPARE(booking->userId(), Anna.id);
    QCOMPARE(booking->resourceId(), Room);
    QCOMPARE(boxesOf(anna, booking), QList<BkCalendarItemWidget*>() << annasBox);
    QCOMPARE(annasBox->colCount(), 1);
    if (roomsColumnGone)
        return;
    QCOMPARE(boxesOf(rooms, booking), QList<BkCalendarItemWidget*>() << roomsBox);
    QVERIFY(anna->isSelected());
    QVERIFY(!rooms->isSelected());
    // Both boxes stand at the booking's new time, over their column's whole width.
    QCOMPARE(annasBox->pos().y(), roomsBox->pos().y());
    QCOMPARE(roomsBox->colCount(), 1);
}

void tst_BkCalendarDragDrop::bookingMovedInAGroupTakesAlongTheBoxOfTheKeyItLeaves_data()
{
    QTest::addColumn<bool>("fromMoveList");
    QTest::addColumn<QVariant>("room");
    QTest::addColumn<int>("target");
    // The group shows Anna, room 5, Bert and room 6; the booking is Anna's, in the room given.
    QTest::newRow("to Bert, with a room") << false << Room << 2;
    QTest::newRow("to room 6, with a room") << false << Room << 3;
    QTest::newRow("to room 6, without a room") << false << QVariant() << 3;
    QTest::newRow("to Bert, from the move list") << true << Room << 2;
    QTest::newRow("to room 6, from the move list") << true << Room << 3;
}

void tst_BkCalendarDragDrop::bookingMovedInAGroupTakesAlongTheBoxOfTheKeyItLeaves()
{
    // A move into a person's column changes the booking's person, one into a room's column its room;
    // the other key stays. The booking stands in the columns of its keys, and in no other.
    QFETCH(bool, fromMoveList);
    QFETCH(QVariant, room);
    QFETCH(int, target);
    BookingScene s;
    const BkCalendarResource room5(Room, QStringLiteral("Room 5"), 1);
    const BkCalendarResource room6(QVariant(6), QStringLiteral("Room 6"), 1);
    for (const BkCalendarResource& who : {Anna, room5, Bert, room6})
        s.addPlan(Day, who, t(8, 0), t(16, 0));
    BkCalendarItem* booking = s.addItem(1, Day, Anna.id, room, t(9, 0), t(10, 0));
    const QList<BkCalendarColumn*> columns = {s.addColumn(Day, Anna), s.addColumn(Day, room5),
                                              s.addColumn(Day, Bert), s.addColumn(Day, room6)};
    s.show();
    QHash<BkCalendarColumn*, BkCalendarItemWidget*> before;
    for (BkCalendarColumn* column : columns) {
        const QList<BkCalendarItemWidget*> boxes = boxesOf(column, booking);
        QVERIFY(boxes.size() <= 1);
        if (!boxes.isEmpty())
            before.insert(column, boxes.first());
    }
    QCOMPARE(before.size(), room.isNull() ? 1 : 2);

    FwTreeWidget tree;
    FwTreeWidgetItem* row = addRow(&tree, QVariant(1));
    auto data = fromMoveList ? treeData(treePayload(1, qint64(addressOf(row)))) : calItemData("1");
    BkCalendarColumn* into = columns.at(target);
    const auto at = [&s](BkCalendarColumn* column, QTime time) { return s.scenePoint(column, time, 100); };
    sendDrag(&s.scene, QEvent::GraphicsSceneDragEnter, at(into, t(11, 0)), data.get(), s.view.viewport());
    sendDrag(&s.scene, QEvent::GraphicsSceneDragMove, at(into, t(11, 0)), data.get(), s.view.viewport());
    sendDrag(&s.scene, QEvent::GraphicsSceneDrop, at(into, t(11, 0)), data.get(), s.view.viewport());

    const bool toRoom = target == 3;
    QCOMPARE(booking->start(), t(11, 0));
    QCOMPARE(booking->userId(), toRoom ? Anna.id : Bert.id);
    QCOMPARE(booking->resourceId(), toRoom ? QVariant(6) : room);
    // One box in each column of the booking's keys, none elsewhere.
    for (BkCalendarColumn* column : columns) {
        const bool belongs = booking->isLike(column->resource());
        QCOMPARE(boxesOf(column, booking).size(), belongs ? 1 : 0);
    }
    // The box of the column of the other kind stays where it was; the one of the key that the
    // booking left went along, if there was one.
    BkCalendarColumn* left = toRoom ? columns.at(1) : columns.at(0);
    BkCalendarColumn* kept = toRoom ? columns.at(0) : columns.at(1);
    if (before.contains(kept))
        QCOMPARE(boxesOf(kept, booking).first(), before.value(kept));
    if (before.contains(left))
        QCOMPARE(boxesOf(into, booking).first(), before.value(left));
    else
        QVERIFY(!before.values().contains(boxesOf(into, booking).first()));
    QCOMPARE(booking->widget->parentItem(), into);
    QVERIFY(into->isSelected());
    QCOMPARE(tree.topLevelItemCount(), fromMoveList ? 0 : 1);
}

void tst_BkCalendarDragDrop::moveListRowIsReadByteExactly()
{
    Fixture f;
    FwTreeWidget tree;
    FwTreeWidgetItem* row = addRow(&tree, QVariant(1));

    // 4 bytes of id and 8 of address, most significant byte first.
    QByteArray payload = QByteArray::fromHex("00000001");
    const quint64 address = addressOf(row);
    for (int shift = 56; shift >= 0; shift -= 8)
        payload.append(char((address >> shift) & 0xff));
    QCOMPARE(payload.size(), 12);
    QCOMPARE(payload, treePayload(1, qint64(address)));

    auto data = treeData(payload);
    QVERIFY(f.dragTo(f.bert, t(11, 0), data.get()));
    QCOMPARE(f.booking->widget->parentItem(), f.bert);
    QCOMPARE(f.booking->start(), t(11, 0));
    QCOMPARE(tree.topLevelItemCount(), 1);
}

void tst_BkCalendarDragDrop::moveListRowDropCommitsAndDeletesTheRow()
{
    Fixture f;
    BkCalendarItem* other = f.s.addItem(2, Day, Carl.id, Room, t(13, 0), t(14, 0));
    FwTreeWidget tree;
    FwTreeWidgetItem* first = addRow(&tree, QVariant(2));
    FwTreeWidgetItem* row = addRow(&tree, QVariant(1));
    FwTreeWidgetItem* last = addRow(&tree, QVariant(3));
    auto data = treeData(treePayload(1, qint64(addressOf(row))));
    QuestionAnswerer answerer(QMessageBox::No);

    QVERIFY(f.dragTo(f.bert, t(13, 0), data.get()));
    QCOMPARE(f.booking->widget->parentItem(), f.bert);
    // The drop commits, with no question on this road although the room is booked twice, and
    // leaves the event ignored.
    QVERIFY(!f.drop(f.bert, t(13, 0), data.get()));
    QCOMPARE(answerer.asked, 0);
    QVERIFY(f.s.model.commitTimer()->isActive());
    QCOMPARE(f.booking->start(), t(13, 0));
    QCOMPARE(f.booking->userId(), Bert.id);
    QCOMPARE(tree.topLevelItemCount(), 2);
    QCOMPARE(tree.topLevelItem(0), first);
    QCOMPARE(tree.topLevelItem(1), last);
    QCOMPARE(other->start(), t(13, 0));
}

void tst_BkCalendarDragDrop::moveListRowDroppedOnAClosedSpanKeepsItsPlace()
{
    Fixture f;
    FwTreeWidget tree;
    FwTreeWidgetItem* row = addRow(&tree, QVariant(1));
    auto data = treeData(treePayload(1, qint64(addressOf(row))));

    // Carl's column is closed before 12:00: no allowed place on the whole way.
    QVERIFY(f.dragTo(f.carl, t(9, 0), data.get()));
    QVERIFY(!f.drop(f.carl, t(9, 0), data.get()));
    QCOMPARE(f.booking->widget->parentItem(), f.anna);
    QCOMPARE(f.booking->userId(), Anna.id);
    QCOMPARE(f.booking->start(), t(9, 0));
    QVERIFY(f.s.model.commitTimer()->isActive());
    QCOMPARE(tree.topLevelItemCount(), 0);
}

void tst_BkCalendarDragDrop::moveListRowWithoutAddressDeletesNothing()
{
    Fixture f;
    FwTreeWidget tree;
    addRow(&tree, QVariant(1));
    auto data = treeData(treePayload(1, 0));
    QVERIFY(f.dragTo(f.bert, t(11, 0), data.get()));
    QVERIFY(!f.drop(f.bert, t(11, 0), data.get()));
    QCOMPARE(f.booking->widget->parentItem(), f.bert);
    QVERIFY(f.s.model.commitTimer()->isActive());
    QCOMPARE(tree.topLevelItemCount(), 1);
}

void tst_BkCalendarDragDrop::moveListPayloadFromOutsideIsIgnored_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("shorter than 12 bytes") << QStringLiteral("short");
    QTest::newRow("id alone") << QStringLiteral("id");
    QTest::newRow("empty") << QStringLiteral("empty");
    QTest::newRow("address of nothing") << QStringLiteral("forged");
    QTest::newRow("address of a row of another booking") << QStringLiteral("otherRow");
    QTest::newRow("address of a row that is gone") << QStringLiteral("deletedRow");
    QTest::newRow("unknown id") << QStringLiteral("unknownId");
}

void tst_BkCalendarDragDrop::moveListPayloadFromOutsideIsIgnored()
{
    QFETCH(QString, kind);
    Fixture f;
    FwTreeWidget tree;
    FwTreeWidgetItem* row = addRow(&tree, QVariant(1));
    FwTreeWidgetItem* otherRow = addRow(&tree, QVariant(2));
    QByteArray payload;
    if (kind == QLatin1String("short"))
        payload = treePayload(1, qint64(addressOf(row))).left(11);
    else if (kind == QLatin1String("id"))
        payload = QByteArray::fromHex("00000001");
    else if (kind == QLatin1String("forged"))
        payload = treePayload(1, qint64(0x7fff12345678LL));
    else if (kind == QLatin1String("otherRow"))
        payload = treePayload(1, qint64(addressOf(otherRow)));
    else if (kind == QLatin1String("deletedRow")) {
        auto* gone = addRow(&tree, QVariant(1));
        payload = treePayload(1, qint64(addressOf(gone)));
        delete gone;
    } else if (kind == QLatin1String("unknownId"))
        payload = treePayload(77, qint64(addressOf(row)));
    auto data = treeData(payload);

    f.dragTo(f.bert, t(11, 0), data.get());
    QCOMPARE(f.booking->widget->parentItem(), f.anna);
    QCOMPARE(f.booking->start(), t(9, 0));
    QVERIFY(!f.drop(f.bert, t(11, 0), data.get()));
    QVERIFY(!f.s.model.commitTimer()->isActive());
    QVERIFY(!f.s.model.isInvalid(f.booking));
    QCOMPARE(tree.topLevelItemCount(), 2);
    QCOMPARE(tree.topLevelItem(0), row);
    QCOMPARE(tree.topLevelItem(1), otherRow);
}

void tst_BkCalendarDragDrop::sceneDragLeaveTakesTheMoveBack()
{
    Fixture f;
    auto data = calItemData("1");
    QVERIFY(f.dragTo(f.bert, t(11, 0), data.get()));
    QVERIFY(f.moveTo(f.bert, t(12, 0), data.get()));
    QCOMPARE(f.booking->userId(), Bert.id);

    // Out of the view: the booking goes back to its user, to the time of the drag's first step.
    QVERIFY(!sendDrag(&f.s.scene, QEvent::GraphicsSceneDragLeave, QPointF(-5, -5), data.get()));
    QCOMPARE(f.booking->userId(), Anna.id);
    QCOMPARE(f.booking->date(), Day);
    QCOMPARE(f.booking->start(), t(11, 0));
    QVERIFY(!f.s.model.isInvalid(f.booking));
    QVERIFY(f.booking->widget);
    QCOMPARE(f.booking->widget->parentItem(), f.anna);
}

void tst_BkCalendarDragDrop::sceneDragLeaveIgnoresWhatIsNotABooking()
{
    Fixture f;
    auto data = calItemData("1");
    QVERIFY(f.dragTo(f.bert, t(11, 0), data.get()));

    auto garbage = calItemData("one");
    sendDrag(&f.s.scene, QEvent::GraphicsSceneDragLeave, QPointF(-5, -5), garbage.get());
    auto unknown = calItemData("77");
    sendDrag(&f.s.scene, QEvent::GraphicsSceneDragLeave, QPointF(-5, -5), unknown.get());
    FwTreeWidget tree;
    FwTreeWidgetItem* row = addRow(&tree, QVariant(1));
    auto rowData = treeData(treePayload(1, qint64(addressOf(row))));
    sendDrag(&f.s.scene, QEvent::GraphicsSceneDragLeave, QPointF(-5, -5), rowData.get());
    QCOMPARE(f.booking->userId(), Bert.id);
    QVERIFY(f.s.model.isInvalid(f.booking));

    // A scene without a model has nothing to undo.
    f.s.scene.setModel(nullptr);
    sendDrag(&f.s.scene, QEvent::GraphicsSceneDragLeave, QPointF(-5, -5), data.get());
    QCOMPARE(f.booking->userId(), Bert.id);
    QCOMPARE(tree.topLevelItemCount(), 1);
}

FW_TEST_MAIN(tst_BkCalendarDragDrop)
#include "tst_bkcalendardragdrop.moc"
