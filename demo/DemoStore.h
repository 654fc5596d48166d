#ifndef DEMOSTORE_H
#define DEMOSTORE_H

#include "DemoBookingRow.h"

#include <BkCalendarRecords.h>
#include <BkCalendarStatusEntry.h>

#include <QHash>
#include <QList>
#include <QMap>
#include <QObject>
#include <optional>

class BkCalendarItem;
class BkCalendarModel;

// Reads and writes the practice's bookings and plans for the calendar's model: answers loadData with
// the rows of a range and key, and writes what saveItems hands back in one transaction.
class DemoStore : public QObject
{
    Q_OBJECT

public:
    explicit DemoStore(BkCalendarModel* model, QObject* parent = nullptr);

    BkCalendarModel* model() const { return mModel; }

    // The kinds of plan block, handed to the model once.
    void loadPlanInfos();
    QList<BkCalendarResource> users() const;
    QList<BkCalendarResource> resources() const;
    // The statuses of a booking, by id, as the calendar colours them.
    QMap<int, BkCalendarStatusEntry> statuses() const;
    // The name of a user or resource, empty when unknown.
    QString nameOf(const BkCalendarResource& who) const;

    std::optional<DemoBookingRow> readRow(int id) const;
    // Inserts a row without an id and gives it one; writes the changed fields of a row with an id,
    // inserting it again if it was deleted (so that undo of a deletion keeps the id). The calendar
    // shows the row as written from then on.
    bool writeRow(DemoBookingRow& row);
    // Writes a step of the undo stack from `from` to `row`: only the fields in which the two differ, so
    // that what another program wrote to the others stays; a row gone from the table comes back under
    // its id. `row` is then the row as the table holds it, as the calendar is to show it. A row that
    // another program deleted after the change is not written back, as a save would not: `gone` says so.
    bool writeChange(DemoBookingRow& row, const DemoBookingRow& from, bool* gone);
    bool removeRow(int id);
    QString lastError() const { return mError; }
    // Tells the user of something that could not be saved, in the message area: bookings, and the
    // group and settings that the window writes.
    void reportFailedSave(const QString& message);

public slots:
    void loadData(const QDate& from, const QDate& to, const BkCalendarResource& who);
    // One transaction. On failure the user is told, and the bookings go back on the unsaved list so
    // that the next save writes them: nothing is lost.
    void saveItems(const QList<BkCalendarItem*>& items);

signals:
    // Rows as they were before and are after a save; `before` has an invalid row for a new booking.
    void written(const QList<DemoBookingRow>& before, const QList<DemoBookingRow>& after);
    void saveFailed(const QString& message);

private:
    bool fail(const QString& why);
    // The stored row of an id, none when the table holds no such row; false, with the reason in
    // `error`, when the table could not be read, which tells nothing of the row.
    bool readStored(int id, std::optional<DemoBookingRow>* row, QString* error) const;
    // Whether the model holds a block of this day and key with the same times, kind and bookability.
    bool hasPlan(const BkCalendarPlan& plan) const;
    // As writeRow, with the row as the table holds it now, read by the caller. The fields written are
    // those in which `row` differs from `known`, the row as the calendar last had it, or from the
    // stored row when the calendar had none.
    bool writeRow(DemoBookingRow& row, const std::optional<DemoBookingRow>& stored,
                  const DemoBookingRow* known);

    BkCalendarModel* mModel;
    QString mError;
    // Each booking of the model as it was read from the table or last written there, by id. A save
    // writes the fields that the calendar changed since, and leaves the others as another program
    // may have written them in the meantime.
    QHash<int, DemoBookingRow> mKnown;
};

#endif // DEMOSTORE_H
