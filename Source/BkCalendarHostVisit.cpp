#include "BkCalendarHostVisit.h"

#include <QGraphicsItem>
#include <QGraphicsScene>
#include <QObject>
#include <QTimer>

int& BkCalendarHostVisit::visits()
{
    // Items change and paint in the GUI thread only.
    static int count = 0;
    return count;
}

void BkCalendarHostVisit::remove(QGraphicsItem* item)
{
    if (!active()) {
        delete item;
        return;
    }
    // Out of the scene first: a selected item that leaves it is one notice of the change of selection,
    // as its deletion would be; hidden first, it would be two, its loss of the selection and its
    // leaving.
    if (QGraphicsScene* scene = item->scene())
        scene->removeItem(item);
    item->hide();
    // Hidden and out of the scene, nothing that the item may still hear shows or reaches the host.
    if (auto* object = dynamic_cast<QObject*>(item))
        object->deleteLater();
    else
        QTimer::singleShot(0, [item] { delete item; });
}
