// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/testmain.h"

#include <extendedcalendar.h>
#include <extendedstorage.h>
#include <sqlitestorage.h>

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

/** @short Where the calendar of a user is kept. */
class CalendarStoreLocationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        mHome = std::make_unique<QTemporaryDir>();
        mOldHome = qgetenv("HOME");
        mOldName = qgetenv("SQLITESTORAGEDB");
        qputenv("HOME", mHome->path().toLocal8Bit());
        qunsetenv("SQLITESTORAGEDB");
    }

    void cleanup()
    {
        qputenv("HOME", mOldHome);
        if (!mOldName.isNull())
            qputenv("SQLITESTORAGEDB", mOldName);
    }

    void itIsInThePrivilegedFolderIfThereIsOne()
    {
        QCOMPARE(used(), QStringLiteral("Calendar/mkcal/db"));
        mHome = std::make_unique<QTemporaryDir>();
        qputenv("HOME", mHome->path().toLocal8Bit());
        makePrivileged();
        QCOMPARE(used(), QStringLiteral("privileged/Calendar/mkcal/db"));
    }

    void eachOpeningLooksForTheFolderAnew()
    {
        QCOMPARE(used(), QStringLiteral("Calendar/mkcal/db"));
        makePrivileged();
        QCOMPARE(used(), QStringLiteral("privileged/Calendar/mkcal/db"));
    }

    void theVariableGoesFirst()
    {
        makePrivileged();
        const QString named = mHome->filePath(QStringLiteral("named"));
        qputenv("SQLITESTORAGEDB", named.toLocal8Bit());
        QCOMPARE(opened(), named);
        qunsetenv("SQLITESTORAGEDB");
    }

private:
    void makePrivileged() { QVERIFY(QDir(system()).mkpath(QStringLiteral("privileged"))); }
    QString system() const { return mHome->filePath(QStringLiteral(".local/share/system")); }

    static QString opened()
    {
        const auto calendar = mKCal::ExtendedCalendar::Ptr::create(QTimeZone::utc());
        const auto storage = mKCal::ExtendedCalendar::defaultStorage(calendar);
        if (!storage->open())
            return QString();
        const QString name = storage.staticCast<mKCal::SqliteStorage>()->databaseName();
        storage->close();
        return name;
    }

    QString used() const { return QDir(system()).relativeFilePath(opened()); }

    std::unique_ptr<QTemporaryDir> mHome;
    QByteArray mOldHome;
    QByteArray mOldName;
};

FENNEL_REGISTER_TEST(CalendarStoreLocationTest)
#include "calendarstorelocationtest.moc"
