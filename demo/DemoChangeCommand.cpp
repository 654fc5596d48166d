#include "DemoChangeCommand.h"

#include "DemoStore.h"

#include <BkCalendarItem.h>
#include <BkCalendarModel.h>

#include <FwApplication.h>

#include <QCoreApplication>

DemoChangeCommand::DemoChangeCommand(DemoStore* store, const DemoBookingRow& before,
                                     const DemoBookingRow& after, const QString& text, QUndoCommand* parent)
    : QUndoCommand(text, parent)
    , mStore(store)
    , mBefore(before)
    , mAfter(after)
{
}

void DemoChangeCommand::undo()
{
    if (mSkip) {
        mSkip = false;
        mSucceeded = true;
        return;
    }
    show(mAfter, mBefore);
}

void DemoChangeCommand::redo()
{
    if (mSkip) {
        mSkip = false;
        mSucceeded = true;
        return;
    }
    show(mBefore, mAfter);
}

void DemoChangeCommand::show(DemoBookingRow& from, DemoBookingRow to)
{
    BkCalendarModel* model = mStore->model();
    const int id = from.isValid() ? from.id : to.id;
    BkCalendarItem* item = model->findId(id);
    // A booking with unsaved changes of its own would have them written over; it waits for its save.
    if (item && model->isInvalid(item)) {
        mSucceeded = false;
        FwApplication::app()->showCritical(QCoreApplication::translate(
            "DemoChangeCommand", "The booking has changes that are not saved yet; "
                                 "try again in a moment."));
        return;
    }
    if (!to.isValid()) {
        // The step back brings the booking back as the file holds it now, with what another program
        // wrote to it since the change.
        const std::optional<DemoBookingRow> stored = mStore->readRow(id);
        mSucceeded = mStore->removeRow(id);
        if (mSucceeded && stored)
            from = *stored;
        // No row to take away: another program deleted the booking since this change was last done.
        if (mSucceeded && !stored)
            mDeletedElsewhere = true;
        if (mSucceeded && item) {
            model->removeItem(item);
            delete item;
        }
    } else {
        // A booking whose row another program deleted is not written again, by an update or by an
        // insertion that would bring it back behind that program's back.
        bool gone = !from.isValid() && mDeletedElsewhere;
        mSucceeded = gone || mStore->writeChange(to, from, &gone);
        if (mSucceeded && gone) {
            // It leaves the calendar, as after a save.
            if (item) {
                model->removeItem(item);
                delete item;
            }
            FwApplication::app()->showCritical(
                QCoreApplication::translate("DemoChangeCommand",
                                            "The booking \"%1\" was deleted by another program: it is "
                                            "taken off the calendar, and the change is not written.")
                    .arg(to.title),
                10000);
        } else if (mSucceeded) {
            if (item)
                to.applyTo(item);
            else
                model->addItem(to.makeItem());
        }
    }
    if (!mSucceeded)
        FwApplication::app()->showCritical(
            QCoreApplication::translate("DemoChangeCommand", "The change could not be written: %1")
                .arg(mStore->lastError()));
}
