#ifndef BENCHTABLE_H
#define BENCHTABLE_H

// The rows of one benchmark program, printed as a Markdown table: what was measured, its figure, and
// where there is one, the floor that Qt itself sets for the same picture and the ratio to it.

#include <QString>
#include <QTextStream>
#include <QVector>

#include <algorithm>

class BenchTable
{
public:
    explicit BenchTable(const QString& title)
        : mTitle(title)
    {
    }

    void add(const QString& what, double value, const QString& unit, double floor = -1.0)
    {
        mRows.append({what, value, unit, floor});
    }

    void print() const
    {
        QTextStream out(stdout);
        out << "\n### " << mTitle << "\n\n| operation | time | Qt floor | ratio |\n|---|---|---|---|\n";
        for (const Row& row : mRows) {
            out << "| " << row.what << " | " << QString::number(row.value, 'g', 3) << ' ' << row.unit
                << " | ";
            if (row.floor > 0.0)
                out << QString::number(row.floor, 'g', 3) << ' ' << row.unit << " | "
                    << QString::number(row.value / row.floor, 'f', 1) << " |\n";
            else
                out << "| |\n";
        }
        out.flush();
    }

    // The median of repeated timings, which a busy machine disturbs least.
    static double median(QVector<double> values)
    {
        if (values.isEmpty())
            return 0.0;
        std::sort(values.begin(), values.end());
        return values.at(values.size() / 2);
    }

private:
    struct Row
    {
        QString what;
        double value;
        QString unit;
        double floor;
    };
    QString mTitle;
    QVector<Row> mRows;
};

#endif // BENCHTABLE_H
