#ifndef BKSHOWNVIEW_H
#define BKSHOWNVIEW_H

// A calendar view with its own model, shown (offscreen or in a real window) at a given size.

#include <BkCalendarModel.h>
#include <BkCalendarView.h>

#include <QSize>
#include <QtTest>

struct BkShownView
{
    explicit BkShownView(const QSize& size = QSize(1000, 500))
    {
        view.setModel(&model);
        view.resize(size);
        view.show();
        ok = QTest::qWaitForWindowExposed(&view);
    }
    // Makes the window the active one, so that the scene hands out keyboard focus.
    bool activate()
    {
        view.activateWindow();
        return QTest::qWaitForWindowActive(&view);
    }
    BkCalendarModel model;
    BkCalendarView view;
    bool ok = false;
};

#endif // BKSHOWNVIEW_H
