#ifndef FWAPPLICATION_H
#define FWAPPLICATION_H

#include "FwWidgetsGlobal.h"

#include <QApplication>
#include <QHash>
#include <QTimer>
#include <QVariant>

#include <memory>

// The application object of a framework host. Besides being the QApplication it keeps the
// application's settings, the values local to this machine and the message area.
//
// Settings (getValue/setValue) live in the table "fw_setting" of the default SQL connection when
// that connection is open, else in memory. A setting read from the database keeps its value until
// the application next handles events: a value written through setValue counts at once, an edit of
// the table by another program from the next event on. Local values live in QSettings.
class FWWIDGETS_EXPORT FwApplication : public QApplication
{
    Q_OBJECT

public:
    FwApplication(int& argc, char** argv);
    ~FwApplication() override;

    // The live application object, null before it is built and after it is gone.
    static FwApplication* app();

    // The setting `key`, or `fallback` when it is unset.
    QVariant getValue(const QString& key, const QString& fallback = QString()) const;
    // Stores a setting. `table` names the table that owns the setting (e.g. "tbl_user"); it is
    // kept with the value, but a key names one setting whatever the table. A value that the open
    // database refuses is kept in memory for this process, and settingNotStored tells of it.
    void setValue(const QVariant& value, const QString& key, const QString& table = QString());

    // A value kept on this machine, across restarts.
    QVariant localValue(const QString& key, const QVariant& defaultValue = QVariant()) const;
    void setLocalValue(const QString& key, const QVariant& value);

    // The name of the settings table in the application's database.
    static QString settingsTable();

    // The message on show, empty when there is none (cleared, or its time is up).
    QString currentMessage() const { return mMessage; }
    bool currentMessageCritical() const { return mMessageCritical; }

public slots:
    // Messages in the status bar of the main window, or in the log when there is none.
    void showSucces(const QString& text, int milliseconds = 5000);
    void showCritical(const QString& text, int milliseconds = 5000);
    void clearMessage();

signals:
    // Every message shown; `critical` tells an error from a success.
    void messageShown(const QString& text, bool critical);
    void messageCleared();
    // The application's database refused to store the setting `key`, for `reason`; the value counts
    // in this process only, and is lost when it ends.
    void settingNotStored(const QString& key, const QString& reason);

private:
    void showMessage(const QString& text, int milliseconds, bool critical);
    struct SettingReader;
    struct LocalStore;
    bool readStoredValue(const QString& key, QVariant* value) const;
    // False when the value is not in the database: no database is open, or it refused the value, and
    // then `error` says why.
    bool writeStoredValue(const QVariant& value, const QString& key, const QString& table, QString* error);

    // Settings written while no database was open.
    QHash<QString, QVariant> mMemoryValues;
    // The pointer stays; the reader it points to changes as settings are read.
    const std::unique_ptr<SettingReader> mReader;
    const std::unique_ptr<LocalStore> mLocal;
    QString mMessage;
    bool mMessageCritical = false;
    QTimer* mMessageTimer = nullptr;
};

// The same object as FwApplication::app().
extern FWWIDGETS_EXPORT FwApplication* iApp;

#endif // FWAPPLICATION_H
