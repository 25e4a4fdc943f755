// SPDX-License-Identifier: LGPL-2.1-or-later
#include "interopbed.h"
#include "support/realserver.h"
#include "support/testmain.h"

#include <QtTest>

#include <qmaildisconnected.h>
#include <qmailmessagekey.h>
#include <qmailstore.h>

/**
 * @short Changes on the device and, through IMAP, on a real server end with both sides equal.
 *
 * The server reports mail by a counter of changes, not by its clock, so that no pause is needed between a
 * sync and a change made behind its back.
 */
class ChangesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void bothSidesEndEqual_data();
    void bothSidesEndEqual();

private:
    void fill(InteropBed &bed);
    void changeOnTheServer(InteropBed &bed, int round);
    void changeOnTheDevice(InteropBed &bed, int round);
    void changeFolders(InteropBed &bed);
    void checkEqual(InteropBed &bed);

    RealServer mServer;
};

namespace {

const QString Inbox = QStringLiteral("INBOX");
const QString Archive = QStringLiteral("Archív");
const QString Nested = QStringLiteral("Archív/2026/会議 & Reisen");
const QString Seen = QStringLiteral("\\Seen");

void setRead(InteropBed &bed, const QString &subject, bool read)
{
    const QMailMessageId id = bed.deviceMessage(subject);
    QVERIFY(id.isValid());
    QVERIFY(
        QMailStore::instance()->updateMessagesMetaData(QMailMessageKey::id(id), QMailMessage::Read, read));
}

void move(InteropBed &bed, const QString &subject, const QString &folder)
{
    const QMailMessageId id = bed.deviceMessage(subject);
    QVERIFY(id.isValid());
    QVERIFY(bed.deviceFolder(folder).isValid());
    QMailDisconnected::moveToFolder(QMailMessageIdList { id }, bed.deviceFolder(folder));
}

void remove(InteropBed &bed, const QString &subject)
{
    const QMailMessageId id = bed.deviceMessage(subject);
    QVERIFY(id.isValid());
    QVERIFY(QMailStore::instance()->removeMessage(id, QMailStore::CreateRemovalRecord));
}

} // namespace

void ChangesTest::initTestCase()
{
    const QString obstacle = RealServer::obstacle();
    if (!obstacle.isEmpty())
        QSKIP(qPrintable(obstacle));
    QVERIFY(mServer.start());
}

void ChangesTest::bothSidesEndEqual_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("user");
    QTest::newRow("12.0") << "12.0"
                          << "alice";
    QTest::newRow("12.1") << "12.1"
                          << "bob";
    QTest::newRow("14.0") << "14.0"
                          << "carol";
    QTest::newRow("14.1") << "14.1"
                          << "dave";
}

void ChangesTest::bothSidesEndEqual()
{
    QFETCH(QString, version);
    QFETCH(QString, user);
    InteropBed bed(mServer, user, { version });
    QVERIFY(bed.isReady());
    fill(bed);
    QCOMPARE(bed.sync(), 0);
    checkEqual(bed);

    changeOnTheServer(bed, 1);
    QCOMPARE(bed.sync(), 0);
    checkEqual(bed);

    changeOnTheDevice(bed, 1);
    QStringList wanted = bed.deviceState();
    // Asked to delete for good, this server puts the message into its Trash all the same.
    wanted.append(InteropBed::stateLine(QStringLiteral("Trash"), QStringLiteral("deleted here 1"), false));
    wanted.sort();
    QCOMPARE(bed.sync(), 0);
    QCOMPARE(bed.deviceState(), wanted);
    checkEqual(bed);

    changeOnTheDevice(bed, 2);
    changeOnTheServer(bed, 2);
    QCOMPARE(bed.sync(), 0);
    // In the reply to changes of the device this server tells none of its own; they come with the next sync.
    QCOMPARE(bed.sync(), 0);
    checkEqual(bed);

    changeFolders(bed);
}

/** Enough messages for two rounds; those of the two folders have the same numbers. */
void ChangesTest::fill(InteropBed &bed)
{
    QVERIFY(bed.imap().createFolder(Archive));
    QVERIFY(bed.imap().createFolder(Nested));
    for (const char *kind : { "read here", "unread here", "moved here", "deleted here", "read there",
             "unread there", "moved there", "deleted there", "untouched" }) {
        const QStringList flags =
            QByteArray(kind).startsWith("unread") ? QStringList { Seen } : QStringList();
        for (const char *round : { "1", "2" }) {
            const QString subject = QString::fromUtf8(kind) + QLatin1Char(' ') + QLatin1String(round);
            QVERIFY(bed.imap().append(Inbox, subject, flags));
        }
    }
    for (int i = 0; i < 5; ++i)
        QVERIFY(bed.imap().append(Archive, QStringLiteral("kept %1").arg(i)));
    QVERIFY(bed.imap().append(Nested, QStringLiteral("deep in the tree — 漢字")));
}

void ChangesTest::changeOnTheServer(InteropBed &bed, int round)
{
    const auto named = [round](const char *kind) {
        return QStringLiteral("%1 %2").arg(QString::fromUtf8(kind)).arg(round);
    };
    ImapClient &imap = bed.imap();
    QVERIFY(imap.append(Inbox, named("arrived — žluťoučký")));
    QVERIFY(imap.append(Nested, named("arrived in the tree"), { Seen }));
    QVERIFY(imap.setFlag(Inbox, named("read there"), Seen, true));
    QVERIFY(imap.setFlag(Inbox, named("unread there"), Seen, false));
    QVERIFY(imap.move(Inbox, named("moved there"), Archive));
    QVERIFY(imap.remove(Inbox, named("deleted there")));
}

void ChangesTest::changeOnTheDevice(InteropBed &bed, int round)
{
    const auto named = [round](const char *kind) {
        return QStringLiteral("%1 %2").arg(QString::fromUtf8(kind)).arg(round);
    };
    setRead(bed, named("read here"), true);
    setRead(bed, named("unread here"), false);
    move(bed, named("moved here"), round == 1 ? Nested : Archive);
    remove(bed, named("deleted here"));
}

void ChangesTest::changeFolders(InteropBed &bed)
{
    ImapClient &imap = bed.imap();
    const QString fresh = QStringLiteral("Nový");
    QVERIFY(imap.createFolder(fresh));
    QVERIFY(imap.append(fresh, QStringLiteral("first of the new folder")));
    QCOMPARE(bed.sync(), 0);
    checkEqual(bed);

    const QString renamed = QStringLiteral("Přejmenovaný 漢字");
    QVERIFY(imap.renameFolder(fresh, renamed));
    QVERIFY(imap.append(renamed, QStringLiteral("second of the folder")));
    QCOMPARE(bed.sync(), 0);
    checkEqual(bed);

    QVERIFY(imap.removeFolder(renamed));
    QCOMPARE(bed.sync(), 0);
    checkEqual(bed);
    QVERIFY(!bed.deviceFolder(renamed).isValid());
}

void ChangesTest::checkEqual(InteropBed &bed)
{
    QCOMPARE(bed.deviceFolders(), bed.serverFolders());
    const QStringList device = bed.deviceState();
    const QStringList server = bed.serverState();
    for (const QString &line : server) {
        if (!device.contains(line))
            qWarning().noquote() << "only on the server:" << line;
    }
    for (const QString &line : device) {
        if (!server.contains(line))
            qWarning().noquote() << "only on the device:" << line;
    }
    QCOMPARE(device, server);
    QVERIFY(bed.imap().isValid());
}

FENNEL_REGISTER_TEST(ChangesTest)
#include "changestest.moc"
