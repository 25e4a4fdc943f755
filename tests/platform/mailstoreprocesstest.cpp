// SPDX-License-Identifier: LGPL-2.1-or-later
#include "platform/mailfixture.h"
#include "support/buildpaths.h"
#include "support/privatebus.h"
#include "support/testmain.h"

#include <QProcess>
#include <QSignalSpy>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QtTest>

using namespace MailFixture;

/** Two processes on one mail store. */
class MailStoreProcessTest : public QObject
{
    Q_OBJECT

private:
    QMailStore *mStore = nullptr;
    QMailAccountId mAccount;
    QMailFolderId mInbox;

    void start(QProcess &process, const QString &mode) const
    {
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(BuildPaths::binary(QStringLiteral("bin/test-mailstore-process")),
            { mode, QString::number(mAccount.toULongLong()), QString::number(mInbox.toULongLong()) });
    }

    static QString nextLine(QProcess &process)
    {
        while (!process.canReadLine()) {
            if (!process.waitForReadyRead(30000))
                return QString();
        }
        return QString::fromUtf8(process.readLine()).trimmed();
    }

    static QString integrity()
    {
        const QString name = QStringLiteral("integrity");
        QString result;
        {
            QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
            database.setDatabaseName(qEnvironmentVariable("QMF_DATA") + QStringLiteral("/mailstore.db"));
            database.open();
            QSqlQuery query(database);
            if (query.exec(QStringLiteral("PRAGMA integrity_check")) && query.next())
                result = query.value(0).toString();
            query.exec(
                QStringLiteral("SELECT (SELECT COUNT(*) FROM contents) - (SELECT COUNT(*) FROM messages)"));
            if (query.next() && query.value(0).toInt() != 0)
                result = QStringLiteral("contents without a message: %1").arg(query.value(0).toInt());
        }
        QSqlDatabase::removeDatabase(name);
        return result;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(PrivateBus::ensure());
        mStore = QMailStore::instance();
        mAccount = addAccount();
        mInbox = addFolder(mAccount);
    }

    void changesReachTheOtherProcess()
    {
        QProcess other;
        start(other, QStringLiteral("talk"));
        QCOMPARE(nextLine(other), QStringLiteral("ready"));

        QSignalSpy added(mStore, &QMailStore::messagesAdded);
        addMessage(mAccount, mInbox, QStringLiteral("from here"));
        QCOMPARE(added.count(), 1);
        QCOMPARE(nextLine(other), QStringLiteral("heard from here"));

        other.write("from there\n");
        QTRY_COMPARE(added.count(), 2); // One's own change has not come back in between.
        const QMailMessageId id = added.last().first().value<QMailMessageIdList>().first();
        QCOMPARE(QMailMessage(id).serverUid(), QStringLiteral("from there"));
        QCOMPARE(nextLine(other), QStringLiteral("heard from there"));

        other.write("\n");
        QVERIFY(other.waitForFinished());
        QCOMPARE(other.exitCode(), 0);
    }

    void readingWorksWhileAnotherWrites()
    {
        QProcess writer;
        start(writer, QStringLiteral("flood"));
        for (int i = 0; i < 20; ++i) {
            QCOMPARE(nextLine(writer), QStringLiteral("added"));
            const int count = mStore->countMessages(QMailMessageKey::customField(QStringLiteral("uid")));
            QCOMPARE(count % 10, 1); // Whole lists, and the one that was talked of.
            QVERIFY(addMessage(mAccount, mInbox).isValid());
        }
        writer.kill();
        QVERIFY(writer.waitForFinished());
    }

    void aKilledWriterLeavesWholeLists_data()
    {
        QTest::addColumn<int>("lines");
        QTest::newRow("killed after the first list") << 1;
        QTest::newRow("killed after some lists") << 7;
        QTest::newRow("killed after many lists") << 40;
    }

    void aKilledWriterLeavesWholeLists()
    {
        QFETCH(int, lines);
        QVERIFY(mStore->removeMessages(QMailMessageKey::parentFolderId(mInbox)));
        QProcess writer;
        start(writer, QStringLiteral("flood"));
        for (int i = 0; i < lines; ++i)
            QCOMPARE(nextLine(writer), QStringLiteral("added"));
        writer.kill();
        QVERIFY(writer.waitForFinished());

        QCOMPARE(integrity(), QStringLiteral("ok"));
        withOtherStore([&] {
            const QMailMessageIdList ids =
                QMailStore::instance()->queryMessages(QMailMessageKey::parentFolderId(mInbox));
            QVERIFY(ids.size() >= lines * 10);
            QCOMPARE(ids.size() % 10, 0);
            for (const QMailMessageId &id : ids) {
                const QMailMessage message(id);
                const QString uid = message.serverUid();
                QCOMPARE(message.customField(QStringLiteral("uid")), uid);
                QCOMPARE(message.body().data(), uid.repeated(100));
            }
        });
        QVERIFY(addMessage(mAccount, mInbox).isValid());
    }
};

FENNEL_REGISTER_TEST(MailStoreProcessTest)
#include "mailstoreprocesstest.moc"
