#ifndef FWPUSHBUTTON_H
#define FWPUSHBUTTON_H

#include "FwEnums.h"
#include "FwWidgetsGlobal.h"

#include <QPushButton>

// A push button whose caption and icon follow its type.
class FWWIDGETS_EXPORT FwPushButton : public QPushButton
{
    Q_OBJECT
    Q_PROPERTY(FwEnums::ButtonType type READ type WRITE setType)

public:
    explicit FwPushButton(QWidget* parent = nullptr);
    ~FwPushButton() override;

    FwEnums::ButtonType type() const { return mType; }
    // Sets caption and icon by the type; a later setText still changes the caption.
    void setType(FwEnums::ButtonType type);

    // The translated caption of a type; empty for types without one.
    static QString caption(FwEnums::ButtonType type);

private:
    FwEnums::ButtonType mType = FwEnums::ButtonNone;
};

#endif // FWPUSHBUTTON_H
