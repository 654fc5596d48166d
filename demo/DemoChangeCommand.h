#ifndef DEMOCHANGECOMMAND_H
#define DEMOCHANGECOMMAND_H

#include "DemoBookingRow.h"

#include <QUndoCommand>

class DemoStore;

// One saved change of one booking: a move, an edit, a creation (no row before) or a deletion (no row
// after). Undo and redo write the other row to the database and show it in the calendar; the change
// itself was already made and saved when the command is pushed.
class DemoChangeCommand : public QUndoCommand
{
public:
    DemoChangeCommand(DemoStore* store, const DemoBookingRow& before, const DemoBookingRow& after,
                      const QString& text, QUndoCommand* parent = nullptr);

    void undo() override;
    void redo() override;

    // Whether the command could do its work the last time; a failure is told to the user.
    bool succeeded() const { return mSucceeded; }
    // The next undo or redo does nothing: the stack steps over a change that is in place already.
    void skipNext() { mSkip = true; }

private:
    // Writes `to` and shows it. `from` is the row of the other side, which a deletion updates to the
    // stored row, for the step back.
    void show(DemoBookingRow& from, DemoBookingRow to);

    DemoStore* mStore;
    DemoBookingRow mBefore;
    DemoBookingRow mAfter;
    // True as the command is pushed: the stack redoes it then, and the change is made already.
    bool mSkip = true;
    bool mSucceeded = true;
    // A step found the booking's row deleted by another program; no later step writes it again.
    bool mDeletedElsewhere = false;
};

#endif // DEMOCHANGECOMMAND_H
