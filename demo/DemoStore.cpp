#include "DemoStore.h"

#include <BkCalendarItem.h>
#include <BkCalendarModel.h>

#include <FwApplication.h>
#include <SQLQuery.h>

#include <QSqlDatabase>

namespace {

// The stored columns of a booking but its id, in the order that rowOf reads and valuesOf writes.
const char* const Fields[] = {"bk_date",   "bk_user", "bk_resource", "bk_start", "bk_end",
                              "bk_title",  "bk_text", "bk_type",     "bk_flags", "bk_status",
                              "bk_locked", "bk_left", "bk_right",    "bk_top",   "bk_bottom"};
const int FieldCount = int(sizeof(Fields) / sizeof(Fields[0]));

// The id if asked for, then the fields: what a query selects for rowOf, or an insert fills.
QStringList columnsOf(bool withId)
{
    QStringList columns;
    if (withId)
        columns << QStringLiteral("id");
    for (const char* field : Fields)
        columns << QLatin1String(field);
    return columns;
}

bool isPostgres()
{
    return QSqlDatabase::database(QLatin1String(QSqlDatabase::defaultConnection), false).driverName() ==
           QLatin1String("QPSQL");
}

// PostgreSQL keeps the end of a day as 24:00, which reaches Qt as no time at all: an end column is
// selected as text there, for endTimeOf to read.
QString endColumn(const char* column)
{
    return isPostgres() ? QStringLiteral("CAST(%1 AS TEXT)").arg(QLatin1String(column))
                        : QLatin1String(column);
}

// What a query selects for rowOf: the id, then the fields.
QString selectedColumns()
{
    QStringList columns = columnsOf(true);
    columns[5] = endColumn("bk_end");
    return columns.join(QStringLiteral(", "));
}

// The end of a booking or a plan block. 24:00 ends the day: it is read as the day's last second, as
// the calendar's own scale ends its day.
QTime endTimeOf(const QVariant& value)
{
    const QString text = value.toString().trimmed();
    if (text == QLatin1String("24:00") || text.startsWith(QLatin1String("24:00:00")))
        return QTime(23, 59, 59);
    return value.toTime();
}

// SQLite keeps times as text: one fixed form keeps them readable and comparable.
QVariant timeValue(const QTime& time)
{
    if (isPostgres())
        return time;
    return time.isValid() ? QVariant(time.toString(QStringLiteral("HH:mm:ss"))) : QVariant(QVariant::String);
}

QVariant colourValue(const QColor& colour)
{
    return colour.isValid() ? QVariant(colour.name()) : QVariant(QVariant::String);
}

QColor colourOf(const QVariant& value)
{
    // A colour that does not parse is no colour, as if none were set.
    const QColor colour(value.toString());
    return colour.isValid() ? colour : QColor();
}

QVariant keyOf(const QVariant& value)
{
    return value.isNull() ? QVariant() : QVariant(value.toInt());
}

// A lock as another program may have stored it: a number, or a word such as "true" or "no". A
// value that reads as neither counts as locked: a booking shown locked by mistake waits for the user
// to unlock it, while one shown unlocked by mistake may be moved although somebody fixed it. A
// missing value is the column's default, unlocked.
int lockOf(const QVariant& value)
{
    if (value.isNull())
        return 0;
    const QString text = value.toString().trimmed().toLower();
    bool number = false;
    const double amount = text.toDouble(&number);
    if (number)
        return amount != 0.0 ? 1 : 0;
    static const QStringList unlocked{QStringLiteral("false"), QStringLiteral("f"), QStringLiteral("no"),
                                      QStringLiteral("n"), QStringLiteral("off")};
    return unlocked.contains(text) ? 0 : 1;
}

DemoBookingRow rowOf(const SQLQuery& query)
{
    DemoBookingRow row;
    row.id = query.value(0).toInt();
    row.date = query.value(1).toDate();
    row.userId = keyOf(query.value(2));
    row.resourceId = keyOf(query.value(3));
    row.start = query.value(4).toTime();
    row.end = endTimeOf(query.value(5));
    row.title = query.value(6).toString();
    row.text = query.value(7).toString();
    row.type = query.value(8).toInt();
    row.flags = query.value(9).toInt();
    row.statusId = keyOf(query.value(10));
    row.locked = lockOf(query.value(11));
    row.leftColor = colourOf(query.value(12));
    row.rightColor = colourOf(query.value(13));
    row.topColor = colourOf(query.value(14));
    row.bottomColor = colourOf(query.value(15));
    // The calendar fills a box with these two, and an invalid colour fills it black: a row that has
    // none, or none that parses, gets those of a new booking. The file keeps what it holds until the
    // user changes a colour, as the row read back reads the same.
    if (!row.topColor.isValid())
        row.topColor = DemoBookingRow::defaultTopColor();
    if (!row.bottomColor.isValid())
        row.bottomColor = DemoBookingRow::defaultBottomColor();
    return row;
}

// Rows come from a file anyone may edit: a booking without a day or with times that make no span
// cannot be shown, and is left out rather than shown wrong.
bool isShowable(const DemoBookingRow& row)
{
    return row.id > 0 && row.date.isValid() && row.start.isValid() && row.end.isValid() &&
           row.start <= row.end;
}

// The values that a row writes into the fields, in their order.
QVariantList valuesOf(const DemoBookingRow& row)
{
    const auto key = [](const QVariant& id) {
        return id.isNull() ? QVariant(QVariant::Int) : QVariant(id.toInt());
    };
    return {row.date,
            key(row.userId),
            key(row.resourceId),
            timeValue(row.start),
            timeValue(row.end),
            row.title,
            row.text,
            row.type,
            row.flags,
            key(row.statusId),
            row.locked,
            colourValue(row.leftColor),
            colourValue(row.rightColor),
            colourValue(row.topColor),
            colourValue(row.bottomColor)};
}

bool insertRow(SQLQuery& insert, const DemoBookingRow& row, bool withId)
{
    const QStringList columns = columnsOf(withId);
    QStringList marks;
    for (int i = 0; i < columns.size(); ++i)
        marks << QStringLiteral("?");
    insert.prepare(QStringLiteral("INSERT INTO demo_booking (%1) VALUES (%2)%3")
                       .arg(columns.join(QStringLiteral(", ")), marks.join(QStringLiteral(", ")),
                            withId ? QString() : QStringLiteral(" RETURNING id")));
    if (withId)
        insert.addBindValue(row.id);
    for (const QVariant& value : valuesOf(row))
        insert.addBindValue(value);
    return insert.exec();
}

} // namespace

DemoStore::DemoStore(BkCalendarModel* model, QObject* parent)
    : QObject(parent)
    , mModel(model)
{
    qRegisterMetaType<QList<DemoBookingRow>>();
    // A cleared model reads everything anew.
    connect(mModel, &BkCalendarModel::reset, this, [this]() { mKnown.clear(); });
}

bool DemoStore::fail(const QString& why)
{
    mError = why;
    return false;
}

void DemoStore::reportFailedSave(const QString& message)
{
    if (FwApplication::app())
        FwApplication::app()->showCritical(message, 10000);
    emit saveFailed(message);
}

void DemoStore::loadPlanInfos()
{
    SQLQuery query;
    if (!query.exec(QStringLiteral("SELECT id, pi_label, pi_color FROM demo_planinfo"))) {
        query.debugLastError(QStringLiteral("demo/DemoStore"), __LINE__);
        return;
    }
    while (query.next()) {
        BkCalendarPlanInfo info;
        info.id = query.value(0).toInt();
        info.label = query.value(1).toString();
        info.color = colourOf(query.value(2));
        mModel->addItem(info);
    }
}

QList<BkCalendarResource> DemoStore::users() const
{
    QList<BkCalendarResource> list;
    SQLQuery query;
    if (query.exec(QStringLiteral("SELECT id, usr_name FROM view_user ORDER BY usr_initials")))
        while (query.next())
            list << BkCalendarResource(query.value(0).toInt(), query.value(1).toString(), 0);
    return list;
}

QList<BkCalendarResource> DemoStore::resources() const
{
    QList<BkCalendarResource> list;
    SQLQuery query;
    if (query.exec(QStringLiteral("SELECT id, fw_text FROM tbl_resource ORDER BY fw_text")))
        while (query.next())
            list << BkCalendarResource(query.value(0).toInt(), query.value(1).toString(), 1);
    return list;
}

QMap<int, BkCalendarStatusEntry> DemoStore::statuses() const
{
    QMap<int, BkCalendarStatusEntry> map;
    SQLQuery query;
    if (query.exec(QStringLiteral("SELECT id, fw_name, fw_color FROM tbl_casestage ORDER BY id")))
        while (query.next()) {
            BkCalendarStatusEntry entry;
            entry.name = query.value(1).toString();
            entry.color = colourOf(query.value(2));
            map.insert(query.value(0).toInt(), entry);
        }
    return map;
}

QString DemoStore::nameOf(const BkCalendarResource& who) const
{
    for (const BkCalendarResource& candidate : who.type == 0 ? users() : resources())
        if (candidate.id.toInt() == who.id.toInt())
            return candidate.name;
    return QString();
}

void DemoStore::loadData(const QDate& from, const QDate& to, const BkCalendarResource& who)
{
    if (who.id.isNull() || !to.isValid())
        return;
    // A key that a host looked at with BkCalendarModel::loaded before its first read is asked for
    // with no first day: the model then counts every day up to `to` as read, and so is it answered.
    const QDate first = from.isValid() ? from : QDate(1, 1, 1);
    const bool user = who.type == 0;
    SQLQuery bookings;
    // A day stored with a time of day ("2026-11-26 00:00:00", as some programs write it) sorts after
    // the bare day in SQLite: the last day asked for ends before the next one starts, and the day
    // read back decides.
    bookings.prepare(
        QStringLiteral("SELECT %1 FROM demo_booking WHERE %2 = ? AND bk_date >= ? AND bk_date < ? "
                       "ORDER BY bk_date, bk_start, id")
            .arg(selectedColumns(), user ? QStringLiteral("bk_user") : QStringLiteral("bk_resource")));
    bookings.addBindValue(who.id.toInt());
    bookings.addBindValue(first);
    bookings.addBindValue(to.addDays(1));
    if (!bookings.exec()) {
        bookings.debugLastError(QStringLiteral("demo/DemoStore"), __LINE__);
        return;
    }
    // Read to the end before the model hears of any: a new booking makes the columns read, which may
    // ask for another key's data, and a second query on the connection would cut this one short.
    QList<DemoBookingRow> rows;
    while (bookings.next())
        rows << rowOf(bookings);
    bookings.query().finish();
    for (const DemoBookingRow& row : qAsConst(rows)) {
        // A booking of a user and a resource comes with both keys; the model holds it once.
        if (!isShowable(row) || row.date < from || row.date > to || mModel->findId(row.id))
            continue;
        BkCalendarItem* item = row.makeItem();
        mKnown.insert(row.id, DemoBookingRow::fromItem(item));
        item->setBlocked(true);
        mModel->addItem(item);
        item->setBlocked(false);
    }

    SQLQuery plans;
    plans.prepare(QStringLiteral("SELECT pl_date, pl_start, %1, pl_bookable, pl_info FROM demo_plan "
                                 "WHERE pl_type = ? AND pl_key = ? AND pl_date >= ? AND pl_date < ?")
                      .arg(endColumn("pl_end")));
    plans.addBindValue(user ? 0 : 1);
    plans.addBindValue(who.id.toInt());
    plans.addBindValue(first);
    plans.addBindValue(to.addDays(1));
    if (!plans.exec()) {
        plans.debugLastError(QStringLiteral("demo/DemoStore"), __LINE__);
        return;
    }
    QList<BkCalendarPlan*> blocks;
    while (plans.next()) {
        auto* plan = new BkCalendarPlan;
        plan->date = plans.value(0).toDate();
        plan->start = plans.value(1).toTime();
        plan->end = endTimeOf(plans.value(2));
        plan->bookable = plans.value(3).toInt() != 0;
        // A kind that is no number or names no kind counts as none, like an empty one: the block is
        // drawn as one without a kind, where a lookup would find no colour and fill it black.
        bool kind = false;
        plan->infoId = plans.value(4).toInt(&kind);
        if (!kind || mModel->planInfo(plan->infoId).id.isNull())
            plan->infoId = -1;
        plan->resource = BkCalendarResource(who.id.toInt(), who.name, who.type);
        // As with bookings, a block without a day or with times that make no span is left out.
        if (!plan->date.isValid() || plan->date < from || plan->date > to || !plan->start.isValid() ||
            !plan->end.isValid() || plan->end < plan->start) {
            delete plan;
            continue;
        }
        blocks << plan;
    }
    plans.query().finish();
    // A request for days that were asked for before finds their blocks in the model already: those
    // are not added twice. Decided before any is added, as a day may hold two equal blocks.
    QList<bool> known;
    for (const BkCalendarPlan* plan : qAsConst(blocks))
        known << hasPlan(*plan);
    for (int i = 0; i < blocks.size(); ++i) {
        if (known.at(i))
            delete blocks.at(i);
        else
            mModel->addItem(blocks.at(i));
    }
}

bool DemoStore::hasPlan(const BkCalendarPlan& plan) const
{
    const auto day = mModel->planStore().constFind(plan.date);
    if (day == mModel->planStore().cend())
        return false;
    const auto key = day->constFind(plan.resource);
    if (key == day->cend())
        return false;
    for (const BkCalendarPlan* other : *key)
        if (other->start == plan.start && other->end == plan.end && other->bookable == plan.bookable &&
            other->infoId == plan.infoId)
            return true;
    return false;
}

std::optional<DemoBookingRow> DemoStore::readRow(int id) const
{
    std::optional<DemoBookingRow> row;
    QString error;
    readStored(id, &row, &error);
    return row;
}

bool DemoStore::readStored(int id, std::optional<DemoBookingRow>* row, QString* error) const
{
    row->reset();
    SQLQuery query;
    query.prepare(QStringLiteral("SELECT %1 FROM demo_booking WHERE id = ?").arg(selectedColumns()));
    query.addBindValue(id);
    if (!query.exec()) {
        *error = query.lastError().text();
        return false;
    }
    if (query.next())
        *row = rowOf(query);
    return true;
}

bool DemoStore::writeRow(DemoBookingRow& row)
{
    if (!writeRow(row, row.id > 0 ? readRow(row.id) : std::nullopt, nullptr))
        return false;
    mKnown.insert(row.id, row);
    return true;
}

bool DemoStore::writeChange(DemoBookingRow& row, const DemoBookingRow& from, bool* gone)
{
    *gone = false;
    std::optional<DemoBookingRow> stored;
    QString error;
    if (!readStored(row.id, &stored, &error))
        return fail(error);
    // Only a step that brings a booking back (a deletion taken back, a creation done again) inserts
    // its row under its id.
    if (!stored && from.isValid()) {
        *gone = true;
        mKnown.remove(row.id);
        return true;
    }
    if (!writeRow(row, stored, stored && from.isValid() ? &from : nullptr))
        return false;
    row = readRow(row.id).value_or(row);
    mKnown.insert(row.id, row);
    return true;
}

bool DemoStore::writeRow(DemoBookingRow& row, const std::optional<DemoBookingRow>& stored,
                         const DemoBookingRow* known)
{
    if (row.id > 0 && stored) {
        // Only the fields whose value changed are written. A stored value that the demo cannot read
        // (a status that is no number, a colour that does not parse) reads as none, and stays in the
        // file as it is until the user gives that field a value of its own.
        const QVariantList was = valuesOf(known ? *known : *stored);
        const QVariantList now = valuesOf(row);
        QStringList sets;
        QVariantList values;
        for (int i = 0; i < FieldCount; ++i) {
            if (now.at(i) != was.at(i) || now.at(i).isNull() != was.at(i).isNull()) {
                sets << QLatin1String(Fields[i]) + QStringLiteral(" = ?");
                values << now.at(i);
            }
        }
        if (sets.isEmpty())
            return true;
        SQLQuery update;
        update.prepare(
            QStringLiteral("UPDATE demo_booking SET %1 WHERE id = ?").arg(sets.join(QStringLiteral(", "))));
        for (const QVariant& value : qAsConst(values))
            update.addBindValue(value);
        update.addBindValue(row.id);
        return update.exec() || fail(update.lastError().text());
    }
    SQLQuery insert;
    // A row with an id that is gone from the table, by a deletion that is being undone, comes back
    // under its own id.
    if (row.id > 0)
        return insertRow(insert, row, true) || fail(insert.lastError().text());
    if (!insertRow(insert, row, false) || !insert.next())
        return fail(insert.lastError().text());
    row.id = insert.value(0).toInt();
    return row.id > 0 || fail(QStringLiteral("The new booking got no id"));
}

bool DemoStore::removeRow(int id)
{
    SQLQuery remove;
    remove.prepare(QStringLiteral("DELETE FROM demo_booking WHERE id = ?"));
    remove.addBindValue(id);
    if (!remove.exec())
        return fail(remove.lastError().text());
    mKnown.remove(id);
    return true;
}

void DemoStore::saveItems(const QList<BkCalendarItem*>& items)
{
    if (items.isEmpty())
        return;
    QSqlDatabase db = QSqlDatabase::database();
    QList<BkCalendarItem*> saved;
    QList<DemoBookingRow> before;
    QList<DemoBookingRow> after;
    // Bookings that another program deleted while they were on show here. Writing them would bring
    // them back behind that program's back; they leave the calendar instead, and the user is told.
    QList<BkCalendarItem*> gone;
    bool ok = db.transaction() || fail(db.lastError().text());
    for (int i = 0; ok && i < items.size(); ++i) {
        BkCalendarItem* item = items.at(i);
        DemoBookingRow row = DemoBookingRow::fromItem(item);
        std::optional<DemoBookingRow> stored;
        QString error;
        ok = row.id <= 0 || readStored(row.id, &stored, &error) || fail(error);
        if (!ok)
            break;
        if (row.id > 0 && !stored) {
            gone << item;
            continue;
        }
        saved << item;
        before << stored.value_or(DemoBookingRow());
        const auto known = mKnown.constFind(row.id);
        ok = writeRow(row, stored, known == mKnown.cend() ? nullptr : &known.value());
        // What the table holds now, with another program's edits of the fields left alone.
        after << (ok ? readRow(row.id).value_or(row) : row);
    }
    ok = ok && (db.commit() || fail(db.lastError().text()));
    if (!ok) {
        db.rollback();
        const QString message =
            tr("The bookings could not be saved: %1. They are kept and saved with the next "
               "change.")
                .arg(mError);
        // Back on the unsaved list: the next save writes them.
        for (BkCalendarItem* item : items)
            item->invalidate(true);
        reportFailedSave(message);
        return;
    }
    // New bookings have their id now; the model finds them by it from here on.
    for (int i = 0; i < saved.size(); ++i) {
        if (saved.at(i)->id.toInt() != after.at(i).id) {
            saved.at(i)->id = after.at(i).id;
            saved.at(i)->invalidate(false);
        }
        mKnown.insert(after.at(i).id, DemoBookingRow::fromItem(saved.at(i)));
    }
    if (!gone.isEmpty()) {
        const QString message =
            gone.size() == 1
                ? tr("The booking \"%1\" was deleted by another program: it is taken off the calendar, "
                     "and the change to it is not saved.")
                      .arg(gone.first()->title())
                : tr("%n bookings were deleted by another program: they are taken off the calendar, and "
                     "the changes to them are not saved.",
                     nullptr, gone.size());
        for (BkCalendarItem* item : qAsConst(gone)) {
            mKnown.remove(item->id.toInt());
            mModel->removeItem(item);
            delete item;
        }
        if (FwApplication::app())
            FwApplication::app()->showCritical(message, 10000);
    }
    emit written(before, after);
}
