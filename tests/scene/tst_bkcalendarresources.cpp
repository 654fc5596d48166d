// The calendar's pictures come with the library: a program that only links it finds them under
// ":/calendar" without registering anything itself.

#include <FwCalendar.h>

#include <QFile>
#include <QImage>
#include <QtTest>

class tst_BkCalendarResources : public QObject
{
    Q_OBJECT

private slots:
    void shouldFindEveryPictureOnceTheLibraryIsLoaded_data();
    void shouldFindEveryPictureOnceTheLibraryIsLoaded();
    void shouldCarryTheInformationSymbolAsVectorPicture();
    void shouldNotCarryTheResourceIconFolder();
};

void tst_BkCalendarResources::shouldFindEveryPictureOnceTheLibraryIsLoaded_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QSize>("size");

    const QSize toolbar(32, 32);
    const QSize small(16, 16);
    QTest::newRow("1day") << ":/calendar/1day.png" << toolbar;
    QTest::newRow("5days") << ":/calendar/5days.png" << toolbar;
    QTest::newRow("7days") << ":/calendar/7days.png" << toolbar;
    QTest::newRow("month") << ":/calendar/month.png" << toolbar;
    QTest::newRow("calgroup") << ":/calendar/calgroup.png" << toolbar;
    QTest::newRow("calendar") << ":/calendar/calendar.png" << toolbar;
    // Drawn unscaled in a 20-unit header and side by side 20 apart in booking boxes.
    QTest::newRow("user") << ":/calendar/user.png" << small;
    QTest::newRow("users") << ":/calendar/users.png" << small;
    QTest::newRow("mail") << ":/calendar/mail.png" << small;
    QTest::newRow("phone") << ":/calendar/phone.png" << small;
    QTest::newRow("resize") << ":/calendar/resize.png" << small;
    QTest::newRow("kexi") << ":/calendar/kexi.png" << small;
}

void tst_BkCalendarResources::shouldFindEveryPictureOnceTheLibraryIsLoaded()
{
    QFETCH(QString, path);
    QFETCH(QSize, size);
    // Using a class keeps the library loaded and linked; its resources register with the load.
    const BkCalendarColorScheme scheme;
    Q_UNUSED(scheme)

    QVERIFY(QFile::exists(path));
    const QImage image(path);
    QVERIFY2(!image.isNull(), qPrintable(path));
    QCOMPARE(image.size(), size);
    QVERIFY(image.hasAlphaChannel());
    // Not blank: some pixels are opaque, some (the margin) are transparent.
    int opaque = 0;
    int clear = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const int alpha = qAlpha(image.pixel(x, y));
            opaque += alpha == 255;
            clear += alpha == 0;
        }
    QVERIFY(opaque > image.width() * image.height() / 16);
    QVERIFY(clear > 0);
}

void tst_BkCalendarResources::shouldCarryTheInformationSymbolAsVectorPicture()
{
    QFile file(QStringLiteral(":/calendar/information.svg"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray data = file.readAll();
    QVERIFY(data.contains("<svg"));
    QVERIFY(data.contains("viewBox"));
}

void tst_BkCalendarResources::shouldNotCarryTheResourceIconFolder()
{
    // The resource header looks for ":/calendar/icons/kexi.png", which only a host provides.
    QVERIFY(!QFile::exists(QStringLiteral(":/calendar/icons/kexi.png")));
    QVERIFY(QFile::exists(QStringLiteral(":/calendar/kexi.png")));
}

QTEST_MAIN(tst_BkCalendarResources)
#include "tst_bkcalendarresources.moc"
