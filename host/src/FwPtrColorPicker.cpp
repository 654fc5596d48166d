#include "FwPtrColorPicker.h"

#include <QColorDialog>
#include <QPainter>
#include <QPixmap>

FwPtrColorPicker::FwPtrColorPicker(QWidget* parent)
    : QPushButton(parent)
{
    connect(this, &QPushButton::clicked, this, &FwPtrColorPicker::pickColor);
    updateLook();
}

FwPtrColorPicker::~FwPtrColorPicker() = default;

void FwPtrColorPicker::setFieldName(const QString& name)
{
    mFieldName = name;
}

QString FwPtrColorPicker::colorName() const
{
    return mColor.isValid() ? mColor.name(QColor::HexRgb) : QString();
}

void FwPtrColorPicker::setColorName(const QString& name)
{
    const QString trimmed = name.trimmed();
    setColor(QColor::isValidColor(trimmed) ? QColor(trimmed) : QColor());
}

void FwPtrColorPicker::setColor(const QColor& color)
{
    // The field keeps "#rrggbb": transparency can't be stored, so it is dropped here already.
    QColor opaque = color;
    if (opaque.isValid())
        opaque.setAlpha(255);
    if (opaque == mColor)
        return;
    mColor = opaque;
    updateLook();
    emit colorChanged(mColor);
}

void FwPtrColorPicker::pickColor()
{
    QColorDialog dialog(mColor.isValid() ? mColor : QColor(Qt::white), this);
    dialog.setOption(QColorDialog::DontUseNativeDialog);
    dialog.setWindowTitle(tr("Select Color"));
    if (dialog.exec() == QDialog::Accepted)
        setColor(dialog.selectedColor());
}

void FwPtrColorPicker::updateLook()
{
    const int side = qMax(12, fontMetrics().height());
    QPixmap swatch(side * 2, side);
    swatch.fill(Qt::transparent);
    if (mColor.isValid()) {
        QPainter painter(&swatch);
        painter.setPen(palette().color(QPalette::WindowText));
        painter.setBrush(mColor);
        painter.drawRect(swatch.rect().adjusted(0, 0, -1, -1));
    }
    setIcon(QIcon(swatch));
    setIconSize(swatch.size());
    setText(mColor.isValid() ? colorName() : tr("No color"));
}
