#include "BkCalendarScene.h"

#include "BkCalendarItem.h"
#include "BkCalendarModel.h"

#include <QGraphicsSceneDragDropEvent>
#include <QMimeData>

BkCalendarScene::BkCalendarScene(QObject* parent)
    : QGraphicsScene(parent)
{
}

BkCalendarScene::~BkCalendarScene() = default;

void BkCalendarScene::dragLeaveEvent(QGraphicsSceneDragDropEvent* event)
{
    // The columns keep the booking where the pointer last left it; only leaving the whole scene
    // takes the preview back. The base class is left out on purpose: it would only tell the last
    // column, which has nothing to undo.
    event->ignore();
    if (!mModel)
        return;
    const QMimeData* data = event->mimeData();
    if (!data || !data->hasFormat(QStringLiteral("text/calitem")))
        return;
    // The payload may come from another process: anything but a plain number is not ours.
    bool ok = false;
    const int id = data->data(QStringLiteral("text/calitem")).toInt(&ok, 10);
    if (!ok)
        return;
    if (BkCalendarItem* item = mModel->findId(QVariant(id)))
        item->rollback();
}
