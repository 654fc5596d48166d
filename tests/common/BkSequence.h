#ifndef BKSEQUENCE_H
#define BKSEQUENCE_H

// What the random sequences of the form share: the seeds they run, and the form's keys they press.

#include <QByteArray>
#include <QList>
#include <QRandomGenerator>
#include <QString>
#include <QtTest>

namespace BkTest {

// Adds the column "seed" and one row a seed, from `first` to `last`. The environment variable
// `variable`, set to "first-last", runs other seeds, for a longer search by hand; a range that does
// not read as two numbers in order runs the default ones.
inline void addSeedRows(const char* variable, quint32 first, quint32 last)
{
    QTest::addColumn<quint32>("seed");
    const QList<QByteArray> range = qgetenv(variable).split('-');
    if (range.size() == 2) {
        bool firstOk = false;
        bool lastOk = false;
        const quint32 from = range.at(0).toUInt(&firstOk);
        const quint32 to = range.at(1).toUInt(&lastOk);
        if (firstOk && lastOk && from <= to) {
            first = from;
            last = to;
        }
    }
    // Counted wider than a seed, so that a range that ends at the largest seed ends too.
    for (quint64 seed = first; seed <= last; ++seed)
        QTest::newRow(qPrintable(QStringLiteral("seed %1").arg(seed))) << quint32(seed);
}

// One of the form's keys that go with Ctrl: through the columns and bookings, a day back or forward,
// and a booking parked on the move list and taken back into the selected column.
inline Qt::Key someFormKey(QRandomGenerator& random)
{
    static const Qt::Key keys[] = {Qt::Key_Left,   Qt::Key_Right,    Qt::Key_Up, Qt::Key_Down,
                                   Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_X,  Qt::Key_V};
    return keys[random.bounded(8)];
}

} // namespace BkTest

#endif // BKSEQUENCE_H
