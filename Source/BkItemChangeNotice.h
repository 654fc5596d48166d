#ifndef BKITEMCHANGENOTICE_H
#define BKITEMCHANGENOTICE_H

#include <QGraphicsItem>

// True for a notice of a change already made, whose value handed back from itemChange Qt throws away;
// for a change under way, Qt takes that value as the new state. The calendar's items hand back an empty
// value for such a notice instead of the base class's copy of the notice's value: the copy of a pointer
// to an item or a scene goes through Qt's registry of types under a lock, several times for every box
// that is made, moved or deleted.
inline bool isItemChangeNotice(QGraphicsItem::GraphicsItemChange change)
{
    switch (change) {
    case QGraphicsItem::ItemPositionHasChanged:
    case QGraphicsItem::ItemScenePositionHasChanged:
    case QGraphicsItem::ItemParentHasChanged:
    case QGraphicsItem::ItemChildAddedChange:
    case QGraphicsItem::ItemChildRemovedChange:
    case QGraphicsItem::ItemSceneHasChanged:
    case QGraphicsItem::ItemFlagsHaveChanged:
    case QGraphicsItem::ItemToolTipHasChanged:
    case QGraphicsItem::ItemCursorHasChanged:
    case QGraphicsItem::ItemVisibleHasChanged:
    case QGraphicsItem::ItemEnabledHasChanged:
    case QGraphicsItem::ItemSelectedHasChanged:
    case QGraphicsItem::ItemZValueHasChanged:
    case QGraphicsItem::ItemOpacityHasChanged:
    case QGraphicsItem::ItemTransformHasChanged:
    case QGraphicsItem::ItemRotationHasChanged:
    case QGraphicsItem::ItemScaleHasChanged:
    case QGraphicsItem::ItemTransformOriginPointHasChanged:
        return true;
    default:
        return false;
    }
}

#endif
