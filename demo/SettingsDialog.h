#ifndef SETTINGSDIALOG_H
#define SETTINGSDIALOG_H

#include <QDialog>
#include <QMap>

class QCheckBox;
class QSpinBox;

// The settings that the calendar reads, kept in the practice's database.
class SettingsDialog : public QDialog
{
    Q_OBJECT

public:
    explicit SettingsDialog(QWidget* parent = nullptr);

    // Writes every setting as the dialog shows it.
    void save() const;

    QSpinBox* number(const QString& key) const { return mNumbers.value(key); }
    QCheckBox* toggle(const QString& key) const { return mToggles.value(key); }

private:
    QMap<QString, QSpinBox*> mNumbers;
    QMap<QString, QCheckBox*> mToggles;
};

#endif // SETTINGSDIALOG_H
