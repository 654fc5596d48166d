#ifndef FWPTRCOLORPICKER_H
#define FWPTRCOLORPICKER_H

#include "FwWidgetsGlobal.h"

#include <QColor>
#include <QPushButton>

// A colour field bound to a table like FwPtrEdit: a button that shows the colour and its name and
// opens a colour dialog when clicked. The field holds the colour as "#rrggbb", or nothing.
class FWWIDGETS_EXPORT FwPtrColorPicker : public QPushButton
{
    Q_OBJECT
    Q_PROPERTY(QString fieldName READ fieldName WRITE setFieldName)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)

public:
    explicit FwPtrColorPicker(QWidget* parent = nullptr);
    ~FwPtrColorPicker() override;

    QString fieldName() const { return mFieldName; }
    void setFieldName(const QString& name);

    QColor color() const { return mColor; }
    // "#rrggbb", or an empty string when no colour is set.
    QString colorName() const;
    // Takes "#rrggbb" or any name QColor knows; anything else leaves the field without colour.
    void setColorName(const QString& name);

public slots:
    void setColor(const QColor& color);
    // Opens the colour dialog; the colour changes only when the user accepts.
    void pickColor();

signals:
    void colorChanged(const QColor& color);

private:
    void updateLook();

    QString mFieldName;
    QColor mColor;
};

#endif // FWPTRCOLORPICKER_H
