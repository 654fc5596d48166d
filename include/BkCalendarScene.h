#ifndef BKCALENDARSCENE_H
#define BKCALENDARSCENE_H

#include "BkCalendarModel.h"
#include "FwCalendarGlobal.h"

#include <QGraphicsScene>
#include <QPointer>

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
    // Not owned; the host may delete the model first, and then it reads as none.
    QPointer<BkCalendarModel> mModel;
};

#endif // BKCALENDARSCENE_H
