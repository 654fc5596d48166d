#ifndef BKCALENDARSCENE_H
#define BKCALENDARSCENE_H

#include "FwCalendarGlobal.h"

#include <QGraphicsScene>

class BkCalendarModel;

// The view's scene. A booking dragged out of the scene altogether goes back to where it was
// before the drag, so that a drag which ends outside the calendar leaves no preview behind.
class FWCALENDAR_EXPORT BkCalendarScene : public QGraphicsScene
{
    Q_OBJECT

public:
    explicit BkCalendarScene(QObject* parent = nullptr);
    ~BkCalendarScene() override;

    BkCalendarModel* model() const { return mModel; }
    // Written by the view when it gets its model.
    void setModel(BkCalendarModel* model) { mModel = model; }

protected:
    void dragLeaveEvent(QGraphicsSceneDragDropEvent* event) override;

private:
    BkCalendarModel* mModel = nullptr;
};

#endif // BKCALENDARSCENE_H
