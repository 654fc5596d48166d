#include "FwApplication.h"

#include "FwLog.h"
#include "FwMainWindow.h"

#include <QDataStream>
#include <QDateTime>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QPointer>
#include <QSettings>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QStatusBar>
#include <QStringList>

#include <memory>
#include <new>

FwApplication* iApp = nullptr;

namespace {
// The default connection when it is open; settings go to memory otherwise.
QSqlDatabase openDatabase()
{
    // Made once: the calendar reads a setting at every construction and paint of a box.
    static const QString name = QLatin1String(QSqlDatabase::defaultConnection);
    if (!QSqlDatabase::contains(name))
        return QSqlDatabase();
    QSqlDatabase db = QSqlDatabase::database(name, false);
    return db.isOpen() ? db : QSqlDatabase();
}

// Types whose text is the value itself: they are kept as text, which anyone who looks into the table
// can read and edit.
bool hasTextForm(int type)
{
    switch (type) {
    case QMetaType::UnknownType:
    case QMetaType::QString:
    case QMetaType::QStringList:
    case QMetaType::QByteArray:
    case QMetaType::QChar:
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::QDate:
    case QMetaType::QTime:
    case QMetaType::QDateTime:
        return true;
    default:
        return false;
    }
}

// Why a write failed, never empty: an empty reason would read as no database at all.
QString failureOf(const QSqlQuery& query)
{
    const QString text = query.lastError().text().trimmed();
    return text.isEmpty() ? QStringLiteral("the database gave no reason") : text;
}

const QDataStream::Version StreamVersion = QDataStream::Qt_5_15;

QVariant streamedValue(const QString& text, int type);

// Bytes are kept as their text when they are text, so that the row reads as what it holds. Bytes that
// aren't UTF-8 wouldn't come back from the text, a zero byte is refused by some databases in a text,
// and a text that reads as the stream form of bytes would come back as those; all these are kept in
// stream form.
bool bytesAsText(const QByteArray& bytes, QString* text)
{
    *text = QString::fromUtf8(bytes);
    return !bytes.contains('\0') && text->toUtf8() == bytes &&
           !streamedValue(*text, QMetaType::QByteArray).isValid();
}

// The text form of a setting. Lists are kept as a JSON array so that commas inside the entries
// survive. Values without a text of their own (lists of values, maps, sizes, colours, ...) would come
// back empty or changed from their text, so they are kept in Qt's stream form, in base64.
QString textOf(const QVariant& value)
{
    const int type = value.userType();
    if (type == QMetaType::QStringList)
        return QString::fromUtf8(
            QJsonDocument(QJsonArray::fromStringList(value.toStringList())).toJson(QJsonDocument::Compact));
    if (type == QMetaType::QByteArray) {
        QString text;
        if (bytesAsText(value.toByteArray(), &text))
            return text;
    } else if (hasTextForm(type)) {
        return value.toString();
    }
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setVersion(StreamVersion);
    out << value;
    return QString::fromLatin1(bytes.toBase64());
}

// A value kept in stream form, or an invalid one when the text isn't the stream of a value of `type`.
QVariant streamedValue(const QString& text, int type)
{
    const QByteArray::FromBase64Result decoded =
        QByteArray::fromBase64Encoding(text.toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded || decoded.decoded.isEmpty())
        return QVariant();
    QDataStream in(decoded.decoded);
    in.setVersion(StreamVersion);
    QVariant value;
    // The stream reserves room for as many entries as a list's count claims before it reads them; a
    // damaged or forged row may claim more than memory holds, which says the text is no such stream.
    try {
        in >> value;
    } catch (const std::bad_alloc&) {
        return QVariant();
    }
    if (in.status() != QDataStream::Ok || !in.atEnd() || value.userType() != type)
        return QVariant();
    return value;
}

// The stored text turned back into a value of the type it was written with. Rows come from outside
// the process: a type we don't know or a text that doesn't convert gives the plain text.
QVariant valueOf(const QVariant& text, int type)
{
    if (text.isNull()) {
        // A null of a known type stays a null of that type, as it was written.
        if (type != QMetaType::UnknownType && QMetaType::isRegistered(type) && QMetaType::sizeOf(type) > 0)
            return QVariant(type, nullptr);
        return QVariant();
    }
    const QString string = text.toString();
    switch (type) {
    case QMetaType::QStringList: {
        const QJsonDocument document = QJsonDocument::fromJson(string.toUtf8());
        if (document.isArray()) {
            QStringList list;
            for (const QJsonValue& entry : document.array())
                list.append(entry.toString());
            return list;
        }
        return string.isEmpty() ? QStringList() : string.split(QLatin1Char(','));
    }
    case QMetaType::QByteArray: {
        const QVariant streamed = streamedValue(string, type);
        return streamed.isValid() ? streamed : QVariant(string.toUtf8());
    }
    case QMetaType::QChar:
        return string.size() == 1 ? QVariant(string.at(0)) : QVariant(string);
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::QDate:
    case QMetaType::QTime:
    case QMetaType::QDateTime: {
        QVariant typed(string);
        if (typed.convert(type))
            return typed;
        return string;
    }
    default:
        if (!hasTextForm(type) && QMetaType::isRegistered(type)) {
            const QVariant streamed = streamedValue(string, type);
            if (streamed.isValid())
                return streamed;
        }
        return string;
    }
}

} // namespace

// The statement that reads one setting, prepared once for the connection it was made on, and what the
// reads gave since the application last handled events. A calendar reads a setting at each
// construction and paint of a booking box: thousands of reads in one rebuild or paint of a large
// group, each a round trip to a database server (about 120 µs to a local PostgreSQL). Within one
// piece of work each setting is read once and keeps its value throughout; the next event reads it
// anew, so an edit made by another program counts from then on, and one made through setValue at once.
struct FwApplication::SettingReader
{
    // The database that a read came from; a read kept from one says nothing of another. The driver is
    // watched, so that a connection made anew in the place of a removed one counts as another even
    // where it takes the same address.
    struct Source
    {
        QPointer<const QSqlDriver> driver;
        QString name;
        QString host;
        QString user;
        int port = -1;

        static Source of(const QSqlDatabase& db)
        {
            return Source{db.driver(), db.databaseName(), db.hostName(), db.userName(), db.port()};
        }
        bool is(const QSqlDatabase& db) const
        {
            return driver && driver == db.driver() && port == db.port() && name == db.databaseName() &&
                   host == db.hostName() && user == db.userName();
        }
    };
    // One read: whether the key was there, and its value.
    struct Read
    {
        bool found = false;
        QVariant value;
    };

    QPointer<QSqlDriver> driver;
    std::unique_ptr<QSqlQuery> query;
    QHash<QString, Read> reads;
    Source readsFrom;
    bool forgetQueued = false;

    // What an earlier read of this piece of work gave for the key on this database, or null.
    const Read* readBefore(const QSqlDatabase& db, const QString& key)
    {
        if (reads.isEmpty())
            return nullptr;
        if (!readsFrom.is(db)) {
            reads.clear();
            return nullptr;
        }
        const auto read = reads.constFind(key);
        return read != reads.constEnd() ? &read.value() : nullptr;
    }

    // Keeps a read until the application next handles events.
    void keep(const QSqlDatabase& db, const QString& key, bool found, const QVariant& value)
    {
        if (reads.isEmpty())
            readsFrom = Source::of(db);
        reads.insert(key, Read{found, found ? value : QVariant()});
        if (forgetQueued)
            return;
        forgetQueued = true;
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [this] {
                forgetQueued = false;
                reads.clear();
            },
            Qt::QueuedConnection);
    }

    // The statement on this connection, prepared if need be; null while the table is missing.
    QSqlQuery* prepared(const QSqlDatabase& db, bool again)
    {
        if (!again && query && driver == db.driver())
            return query.get();
        query.reset();
        auto fresh = std::make_unique<QSqlQuery>(db);
        fresh->setForwardOnly(true);
        // A missing table simply fails to prepare: then nothing is stored yet.
        if (!fresh->prepare(
                QStringLiteral("SELECT fw_value, fw_type FROM %1 WHERE fw_key = ?").arg(settingsTable())))
            return nullptr;
        driver = db.driver();
        query = std::move(fresh);
        return query.get();
    }
};

// The values local to this machine, opened once for the application's organisation and name. Opening
// a QSettings locks, reads and parses its file (about 17 µs on the project's machine), and a calendar
// column reads its width from them at every build of the column. A read still looks at the file's
// time and size, and takes the file in again when another process has written it since, so that a
// change made elsewhere counts at once as before. The files it falls back on (the organisation's and
// the system's, which only an administrator writes) are taken in again along with it.
struct FwApplication::LocalStore
{
    // What the file looked like when it was last taken in: its time and size, a size of -1 when it
    // was not there, and -2 when it is to be taken in at the next read whatever it looks like.
    struct Stamp
    {
        QDateTime modified;
        qint64 size = -2;
        bool operator!=(const Stamp& other) const { return size != other.size || modified != other.modified; }
    };

    QString organization;
    QString application;
    std::unique_ptr<QSettings> settings;
    Stamp seen;
    // Whether the log already tells that the file, as last taken in, holds a value that can't be read.
    bool damageLogged = false;

    static Stamp stampOf(const QString& path)
    {
        const QFileInfo file(path);
        return Stamp{file.lastModified(), file.exists() ? file.size() : -1};
    }

    QSettings* current()
    {
        // QSettings refuses to write without an organisation; hosts that set none share one.
        QString org = QCoreApplication::organizationName();
        if (org.isEmpty())
            org = QStringLiteral("FwCalendar");
        const QString app = QCoreApplication::applicationName();
        if (!settings || org != organization || app != application) {
            settings = std::make_unique<QSettings>(org, app);
            organization = org;
            application = app;
            seen = Stamp();
        }
        // The look comes before the reading, so that a write in between is taken in at the next read.
        const Stamp now = stampOf(settings->fileName());
        if (now != seen) {
            seen = now;
            damageLogged = false;
            settings->sync();
        }
        return settings.get();
    }

    // The file may hold a value whose stream claims more entries than memory holds, which QSettings
    // tries to make room for when it reads the value. Such a value is taken as unreadable: the file
    // stays as it is and the default stands in for it.
    void logDamage(const QString& what, int line)
    {
        if (damageLogged)
            return;
        damageLogged = true;
        FwLog::log(QStringLiteral("[host/src/FwApplication:%1] %2 in %3")
                       .arg(line)
                       .arg(what, settings ? settings->fileName() : QString()));
    }
};

FwApplication::FwApplication(int& argc, char** argv)
    : QApplication(argc, argv)
    , mReader(std::make_unique<SettingReader>())
    , mLocal(std::make_unique<LocalStore>())
    , mMessageTimer(new QTimer(this))
{
    iApp = this;
    mMessageTimer->setSingleShot(true);
    connect(mMessageTimer, &QTimer::timeout, this, &FwApplication::clearMessage);
}

FwApplication::~FwApplication()
{
    if (iApp == this)
        iApp = nullptr;
}

FwApplication* FwApplication::app()
{
    return iApp;
}

QString FwApplication::settingsTable()
{
    return QStringLiteral("fw_setting");
}

QVariant FwApplication::getValue(const QString& key, const QString& fallback) const
{
    // Values written while no database was open are the newest ones this process knows.
    const auto memory = mMemoryValues.constFind(key);
    if (memory != mMemoryValues.constEnd())
        return memory.value();
    QVariant stored;
    if (readStoredValue(key, &stored))
        return stored;
    return QVariant(fallback);
}

void FwApplication::setValue(const QVariant& value, const QString& key, const QString& table)
{
    if (key.isEmpty())
        return;
    mReader->reads.remove(key);
    QString error;
    if (writeStoredValue(value, key, table, &error)) {
        mMemoryValues.remove(key);
        return;
    }
    mMemoryValues.insert(key, value);
    // Without a database memory is where settings live; a database that refused the value is news.
    if (!error.isEmpty())
        emit settingNotStored(key, error);
}

bool FwApplication::readStoredValue(const QString& key, QVariant* value) const
{
    QSqlDatabase db = openDatabase();
    if (!db.isValid()) {
        mReader->reads.clear();
        return false;
    }
    if (const SettingReader::Read* read = mReader->readBefore(db, key)) {
        if (read->found)
            *value = read->value;
        return read->found;
    }
    auto run = [&key](QSqlQuery* query) {
        query->bindValue(0, key);
        return query->exec();
    };
    // A kept statement fails once its connection was closed and opened again, or its table made
    // anew; it is then prepared again, once.
    QSqlQuery* query = mReader->prepared(db, false);
    if (query && !run(query)) {
        query = mReader->prepared(db, true);
        // A read that fails tells nothing, so it is not kept.
        if (query && !run(query))
            return false;
    }
    // Without the table nothing is stored yet.
    bool found = false;
    if (query) {
        found = query->next();
        if (found)
            *value = valueOf(query->value(0), query->value(1).toInt());
        // Done with the row, so that the statement holds no read lock on the database until the next read.
        query->finish();
    }
    mReader->keep(db, key, found, *value);
    return found;
}

bool FwApplication::writeStoredValue(const QVariant& value, const QString& key, const QString& table,
                                     QString* error)
{
    QSqlDatabase db = openDatabase();
    if (!db.isValid())
        return false;
    QSqlQuery create(db);
    if (!create.exec(QStringLiteral("CREATE TABLE IF NOT EXISTS %1 (fw_key VARCHAR(250) PRIMARY KEY, "
                                    "fw_table VARCHAR(250), fw_value TEXT, fw_type INTEGER)")
                         .arg(settingsTable()))) {
        *error = failureOf(create);
        FwLog::log(QStringLiteral("[host/src/FwApplication:%1] %2").arg(__LINE__).arg(*error));
        return false;
    }
    const QVariant text = value.isNull() ? QVariant(QVariant::String) : QVariant(textOf(value));
    const int type = value.userType();

    QSqlQuery update(db);
    update.prepare(QStringLiteral("UPDATE %1 SET fw_table = ?, fw_value = ?, fw_type = ? WHERE fw_key = ?")
                       .arg(settingsTable()));
    update.addBindValue(table);
    update.addBindValue(text);
    update.addBindValue(type);
    update.addBindValue(key);
    if (!update.exec()) {
        *error = failureOf(update);
        FwLog::log(QStringLiteral("[host/src/FwApplication:%1] %2").arg(__LINE__).arg(*error));
        return false;
    }
    if (update.numRowsAffected() > 0)
        return true;

    QSqlQuery insert(db);
    insert.prepare(QStringLiteral("INSERT INTO %1 (fw_key, fw_table, fw_value, fw_type) VALUES (?, ?, ?, ?)")
                       .arg(settingsTable()));
    insert.addBindValue(key);
    insert.addBindValue(table);
    insert.addBindValue(text);
    insert.addBindValue(type);
    if (!insert.exec()) {
        *error = failureOf(insert);
        FwLog::log(QStringLiteral("[host/src/FwApplication:%1] %2").arg(__LINE__).arg(*error));
        return false;
    }
    return true;
}

QVariant FwApplication::localValue(const QString& key, const QVariant& defaultValue) const
{
    try {
        return mLocal->current()->value(key, defaultValue);
    } catch (const std::bad_alloc&) {
        mLocal->logDamage(QStringLiteral("A damaged local value can't be read"), __LINE__);
        return defaultValue;
    }
}

void FwApplication::setLocalValue(const QString& key, const QVariant& value)
{
    QSettings* settings = nullptr;
    try {
        settings = mLocal->current();
        // Writing takes in every value of the file, and one that can't be read would break off the write
        // half done, with the settings object left unusable. So every value is read first.
        settings->allKeys();
    } catch (const std::bad_alloc&) {
        mLocal->damageLogged = false;
        mLocal->logDamage(QStringLiteral("The local value %1 can't be stored beside a damaged one").arg(key),
                          __LINE__);
        return;
    }
    settings->setValue(key, value);
    settings->sync();
    // Another process may write between this write and a look at the file; the next read takes
    // the file in once more rather than miss that.
    mLocal->seen = LocalStore::Stamp();
}

void FwApplication::showSucces(const QString& text, int milliseconds)
{
    showMessage(text, milliseconds, false);
}

void FwApplication::showCritical(const QString& text, int milliseconds)
{
    showMessage(text, milliseconds, true);
}

void FwApplication::showMessage(const QString& text, int milliseconds, bool critical)
{
    FwMainWindow* window = FwMainWindow::wnd();
    if (window) {
        QStatusBar* bar = window->statusBar();
        // Errors in red, successes in green, so that the two can't be taken for each other.
        bar->setStyleSheet(critical ? QStringLiteral("QStatusBar { color: #b00000; }")
                                    : QStringLiteral("QStatusBar { color: #006000; }"));
        bar->showMessage(text, qMax(0, milliseconds));
    }
    mMessage = text;
    mMessageCritical = critical;
    // Zero keeps the message until the next one, as QStatusBar does.
    if (milliseconds > 0)
        mMessageTimer->start(milliseconds);
    else
        mMessageTimer->stop();
    if (!window || critical)
        FwLog::log(critical ? QStringLiteral("Critical: %1").arg(text)
                            : QStringLiteral("Success: %1").arg(text));
    emit messageShown(text, critical);
}

void FwApplication::clearMessage()
{
    mMessageTimer->stop();
    const bool had = !mMessage.isEmpty();
    mMessage.clear();
    mMessageCritical = false;
    if (FwMainWindow* window = FwMainWindow::wnd()) {
        window->statusBar()->clearMessage();
        window->statusBar()->setStyleSheet(QString());
    }
    if (had)
        emit messageCleared();
}
