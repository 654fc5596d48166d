#include "BkCalendarNestedLoop.h"

#include <QList>
#include <QObject>
#include <QPointer>

#include <utility>

namespace {
QList<QPointer<QObject>>& heldBack()
{
    static QList<QPointer<QObject>> objects;
    return objects;
}
} // namespace

int& BkCalendarNestedLoop::depth()
{
    // Loops run in the GUI thread only.
    static int count = 0;
    return count;
}

BkCalendarNestedLoop::~BkCalendarNestedLoop()
{
    if (--depth() > 0 || heldBack().isEmpty())
        return;
    const QList<QPointer<QObject>> objects = std::exchange(heldBack(), {});
    for (const QPointer<QObject>& object : objects) {
        if (!object)
            continue;
        // Qt drops a second deferred deletion of an object whose first one it has delivered, as this
        // object's was; a fresh object's deferred deletion takes the held one along instead.
        auto* undertaker = new QObject;
        QObject* const held = object.data();
        QObject::connect(undertaker, &QObject::destroyed, held, [held] { delete held; });
        undertaker->deleteLater();
    }
}

void BkCalendarNestedLoop::deleteAfterwards(QObject* object)
{
    if (!heldBack().contains(object))
        heldBack().append(object);
}
