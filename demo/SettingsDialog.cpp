#include "SettingsDialog.h"

#include <FwApplication.h>

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QSpinBox>

SettingsDialog::SettingsDialog(QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(tr("Calendar settings"));
    setObjectName(QStringLiteral("SettingsDialog"));
    FwApplication* app = FwApplication::app();
    auto* form = new QFormLayout(this);

    struct Number
    {
        const char* key;
        QString label;
        int minimum;
        int maximum;
        int fallback;
        QString suffix;
    };
    const QList<Number> numbers{
        {"set_snaponmovebooking", tr("Snap moved bookings to"), 1, 60, 5, tr(" minutes")},
        {"gst_calendarsensitivity", tr("Start a move after"), 0, 50, 3, tr(" pixels")},
        {"set_calexpandsize", tr("Grow short bookings to"), 0, 400, 60, tr(" pixels")},
    };
    for (const Number& n : numbers) {
        auto* box = new QSpinBox(this);
        box->setObjectName(QLatin1String(n.key));
        box->setRange(n.minimum, n.maximum);
        box->setSuffix(n.suffix);
        // Stored values come from a table anyone may edit: out of range is brought into it.
        bool ok = false;
        const int value = app->getValue(QLatin1String(n.key), QString::number(n.fallback)).toInt(&ok);
        box->setValue(ok ? value : n.fallback);
        mNumbers.insert(QLatin1String(n.key), box);
        form->addRow(n.label, box);
    }

    const QList<QPair<const char*, QString>> toggles{
        {"set_calshowtime", tr("Show the time in each booking")},
        {"set_showtooltips", tr("Show tool tips on bookings")},
        {"set_hideempty", tr("Hide people and resources without a duty plan in the group view")},
        {"set_alwaysroundup", tr("Label every step of the time scale")},
        {"set_disablekeysbooking", tr("Don't move bookings with the arrow keys")},
    };
    for (const auto& t : toggles) {
        auto* box = new QCheckBox(t.second, this);
        box->setObjectName(QLatin1String(t.first));
        box->setChecked(app->getValue(QLatin1String(t.first), QString()).toInt() == 1);
        mToggles.insert(QLatin1String(t.first), box);
        form->addRow(QString(), box);
    }

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    form->addRow(buttons);
}

void SettingsDialog::save() const
{
    FwApplication* app = FwApplication::app();
    for (auto it = mNumbers.cbegin(); it != mNumbers.cend(); ++it)
        app->setValue(it.value()->value(), it.key(), QString());
    for (auto it = mToggles.cbegin(); it != mToggles.cend(); ++it)
        app->setValue(it.value()->isChecked() ? 1 : 0, it.key(), QString());
}
