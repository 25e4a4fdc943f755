// SPDX-License-Identifier: LGPL-2.1-or-later
#include "platform/calendarfixture.h"
#include "support/buildpaths.h"
#include "support/testmain.h"

#include <QProcess>
#include <QtTest>

using namespace CalendarFixture;
using KCalendarCore::Incidence;

/** Two processes on one calendar store. */
class CalendarProcessTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir mFolder;
    std::unique_ptr<CalendarStore> mStore;

    QString path() const { return mFolder.filePath(QStringLiteral("db")); }

    void start(QProcess &process, const QString &mode, const QString &argument = QString()) const
    {
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(BuildPaths::binary(QStringLiteral("bin/test-calendarstore-process")),
            { mode, path(), notebookUid, argument });
    }

    static QString nextLine(QProcess &process)
    {
        while (!process.canReadLine()) {
            if (!process.waitForReadyRead(60000))
                return QString();
        }
        return QString::fromUtf8(process.readLine()).trimmed();
    }

    int storedEvents()
    {
        Incidence::List list;
        return mStore->storage->allIncidences(&list) ? list.size() : -1;
    }

private Q_SLOTS:
    void init()
    {
        mStore = std::make_unique<CalendarStore>(path());
        QVERIFY(addNotebook(*mStore));
    }

    void cleanup()
    {
        mStore.reset();
        QVERIFY(QDir(mFolder.path()).removeRecursively() && QDir().mkpath(mFolder.path()));
    }

    void changesReachTheOtherProcess()
    {
        QProcess other;
        start(other, QStringLiteral("listen"));
        QCOMPARE(nextLine(other), QStringLiteral("ready"));
        QVERIFY(mStore->calendar->addEvent(makeEvent(QStringLiteral("from here")), notebookUid));
        QVERIFY(mStore->storage->save());
        QCOMPARE(nextLine(other), QStringLiteral("heard from here"));
        other.kill();
        QVERIFY(other.waitForFinished());
    }

    void changesComeFromTheOtherProcess()
    {
        CalendarNotices notices;
        mStore->storage->registerObserver(&notices);
        QProcess other;
        start(other, QStringLiteral("add"), QStringLiteral("from there"));
        QVERIFY(other.waitForFinished(60000));
        QCOMPARE(other.exitCode(), 0);
        QTRY_VERIFY_WITH_TIMEOUT(
            (mStore->storage->load(), mStore->event(QStringLiteral("from there"))), 60000);
        QTRY_VERIFY_WITH_TIMEOUT(!notices.modified.isEmpty(), 60000);
        mStore->storage->unregisterObserver(&notices);
    }

    void aKilledWriterLeavesWholeSaves_data()
    {
        QTest::addColumn<int>("saves");
        QTest::newRow("killed after the first save") << 1;
        QTest::newRow("killed after some saves") << 5;
        QTest::newRow("killed after many saves") << 20;
    }

    void aKilledWriterLeavesWholeSaves()
    {
        QFETCH(int, saves);
        QProcess writer;
        start(writer, QStringLiteral("flood"));
        for (int i = 0; i < saves; ++i) {
            QCOMPARE(nextLine(writer), QStringLiteral("saved"));
            QCOMPARE(storedEvents() % 10, 0); // Reading works meanwhile.
        }
        writer.kill();
        QVERIFY(writer.waitForFinished(60000));
        const int count = storedEvents();
        QCOMPARE(count % 10, 0);
        QVERIFY(count >= saves * 10);
        // And the store still takes changes.
        QVERIFY(mStore->calendar->addEvent(makeEvent(QStringLiteral("afterwards")), notebookUid));
        QVERIFY(mStore->storage->save());
        QCOMPARE(storedEvents(), count + 1);
    }

    void twoWritersWaitForEachOther()
    {
        QProcess writer;
        start(writer, QStringLiteral("flood"));
        QCOMPARE(nextLine(writer), QStringLiteral("saved"));
        for (int i = 0; i < 20; ++i) {
            mStore->calendar->close();
            QVERIFY(
                mStore->calendar->addEvent(makeEvent(QStringLiteral("own event %1").arg(i)), notebookUid));
            QVERIFY(mStore->storage->save());
        }
        writer.kill();
        QVERIFY(writer.waitForFinished(60000));
        QCOMPARE(storedEvents() % 10, 0); // Twenty of ours.
    }
};

FENNEL_REGISTER_TEST(CalendarProcessTest)
#include "calendarprocesstest.moc"
