#ifndef BKSEQUENCE_H
#define BKSEQUENCE_H

// What the random sequences share: the seeds they run.

#include <QByteArray>
#include <QList>
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

} // namespace BkTest

#endif // BKSEQUENCE_H
