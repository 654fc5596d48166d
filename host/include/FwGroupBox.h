#ifndef FWGROUPBOX_H
#define FWGROUPBOX_H

#include "FwWidgetsGlobal.h"

#include <QGroupBox>

// A group box of the framework's dialogs.
class FWWIDGETS_EXPORT FwGroupBox : public QGroupBox
{
    Q_OBJECT

public:
    explicit FwGroupBox(QWidget* parent = nullptr);
    explicit FwGroupBox(const QString& title, QWidget* parent = nullptr);
    ~FwGroupBox() override;
};

#endif // FWGROUPBOX_H
