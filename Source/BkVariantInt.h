#ifndef BKVARIANTINT_H
#define BKVARIANTINT_H

#include <QVariant>

// QVariant::toInt for the values the layout and the boxes read over and over: an empty id and an int
// are read at once, everything else goes through Qt's conversion, so the result is always toInt's.
// Qt's conversion takes some hundred instructions even for an empty value, and a column's layout reads
// every box's id at every run.
inline int variantToInt(const QVariant& value)
{
    switch (value.userType()) {
    case QMetaType::UnknownType:
        return 0;
    case QMetaType::Int:
        return *static_cast<const int*>(value.constData());
    default:
        return value.toInt();
    }
}

#endif
