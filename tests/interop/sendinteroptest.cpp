// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/account/easaccount.h"
#include "application/requestmanager.h"
#include "easitems/easemailitem.h"
#include "interopbed.h"
#include "storages/mailstorage.h"
#include "support/outgoingmail.h"
#include "support/realserver.h"
#include "support/testmain.h"

#include <QCryptographicHash>
#include <QtTest>

#include <qmailaccount.h>
#include <qmailmessagekey.h>
#include <qmailstore.h>

#include <algorithm>
#include <optional>

/** Messages that the device sends by a real server, as IMAP shows them to those who got them. */
class SendInteropTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void aMessageArrivesByteByByte_data() { versions(); }
    void aMessageArrivesByteByByte();
    void answersArriveWithTheirSource_data() { versions(); }
    void answersArriveWithTheirSource();

private:
    static void versions();
    static bool begin(InteropBed &bed);
    static quint64 write(InteropBed &bed, const QMailMessage &message);
    static QByteArray mimeOf(InteropBed &bed, quint64 id);
    ImapClient clientOf(const char *user) const;
    /** The messages of this subject in a folder of a user. */
    QList<ImapMessage> found(const char *user, const QString &folder, const QString &subject) const;
    static QStringList onDevice(InteropBed &bed, const QString &subject);

    RealServer mServer;
};

namespace {

const QString Inbox = QStringLiteral("INBOX");
const QString Sent = QStringLiteral("Sent");

QByteArray noise(int size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    quint32 state = 7;
    for (char &byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = char(state >> 24);
    }
    return bytes;
}

QString hash(const QByteArray &bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

QByteArray bodyOf(const QByteArray &mime)
{
    return mime.mid(mime.indexOf("\r\n\r\n") + 4);
}

} // namespace

void SendInteropTest::initTestCase()
{
    const QString obstacle = RealServer::obstacle();
    if (!obstacle.isEmpty())
        QSKIP(qPrintable(obstacle));
    QVERIFY(mServer.start());
}

void SendInteropTest::versions()
{
    QTest::addColumn<QString>("version");
    for (const char *version : { "12.0", "12.1", "14.0", "14.1" })
        QTest::newRow(version) << QString::fromLatin1(version);
}

bool SendInteropTest::begin(InteropBed &bed)
{
    return bed.isReady()
        && bed.accounts().setValue(
            bed.accountId(), AccountFactory::mailService(), QStringLiteral("save_in_sent_items"), true)
        && bed.sync() == 0;
}

quint64 SendInteropTest::write(InteropBed &bed, const QMailMessage &message)
{
    const QMailAccountId account(bed.accountId());
    if (QMailAccount(account).standardFolder(QMailFolder::OutboxFolder).isValid())
        return OutgoingMail::putIntoOutbox(message, account).toULongLong();
    // This server has none; mail applications make one of their own.
    QMailFolder outbox(QStringLiteral("Outbox"), QMailFolderId(), account);
    return QMailStore::instance()->addFolder(&outbox)
        ? OutgoingMail::store(message, account, outbox.id()).toULongLong()
        : 0;
}

QByteArray SendInteropTest::mimeOf(InteropBed &bed, quint64 id)
{
    const EasAccount *const account = RequestManager::instance()->account(bed.accountId());
    return account->mailStorage()->queryMessage(QString::number(id)).body().mime();
}

ImapClient SendInteropTest::clientOf(const char *user) const
{
    return ImapClient(
        RealServer::host(), mServer.imapPort(), QString::fromLatin1(user), RealServer::password());
}

QList<ImapMessage> SendInteropTest::found(
    const char *user, const QString &folder, const QString &subject) const
{
    QList<ImapMessage> matching;
    const QList<ImapMessage> all = clientOf(user).messages();
    std::copy_if(all.cbegin(), all.cend(), std::back_inserter(matching),
        [&](const ImapMessage &message) { return message.folder == folder && message.subject == subject; });
    return matching;
}

QStringList SendInteropTest::onDevice(InteropBed &bed, const QString &subject)
{
    QStringList lines = bed.deviceState();
    lines.erase(std::remove_if(lines.begin(), lines.end(),
                    [&subject](const QString &line) { return !line.contains(subject); }),
        lines.end());
    return lines;
}

void SendInteropTest::aMessageArrivesByteByByte()
{
    QFETCH(QString, version);
    InteropBed bed(mServer, QStringLiteral("alice"), { version });
    QVERIFY(begin(bed));
    const QString subject = QStringLiteral("Grüße 🐟 by ") + version;
    const QByteArray file = noise(5 * 1024 * 1024);
    QMailMessage message = OutgoingMail::plain(subject, QStringLiteral("Jäne 🐟 <jane@elsewhere.org>"),
        QStringLiteral("Ärger mit Öl\n.\nFrom here on 🐟\n") + QString(2000, QLatin1Char('x')));
    message.setFrom(QMailAddress(QStringLiteral("Älice 🐟 <alice@example.org>")));
    // The scripts' own mail transport delivers to one user of the server at a time.
    message.setBcc({ QMailAddress(QStringLiteral("carol@example.org")) });
    OutgoingMail::attach(&message, QStringLiteral("Übersicht.bin"), file);
    const quint64 id = write(bed, message);
    const QByteArray mime = mimeOf(bed, id);
    QCOMPARE(bed.sendMail(id), 0);

    const QList<ImapMessage> received = found("carol", Inbox, subject);
    QCOMPARE(received.size(), 1);
    QCOMPARE(received.at(0).to, ImapAddresses({ { QStringLiteral("Jäne 🐟"), "jane@elsewhere.org" } }));
    QCOMPARE(received.at(0).parts.size(), 1);
    QCOMPARE(received.at(0).parts.at(0).name, QStringLiteral("Übersicht.bin"));
    QCOMPARE(received.at(0).parts.at(0).sha256, hash(file));
    const QByteArray source = clientOf("carol").source(Inbox, subject);
    QVERIFY(bodyOf(source) == bodyOf(mime) || bodyOf(source) == bodyOf(mime) + "\r\n");
    QVERIFY(!source.left(source.indexOf("\r\n\r\n")).toLower().contains("\nbcc:"));
    QCOMPARE(found("alice", Sent, subject).size(), 1);
    QCOMPARE(bed.sync(), 0);
    QCOMPARE(onDevice(bed, subject), QStringList { QStringLiteral("Sent|%1|read").arg(subject) });
}

void SendInteropTest::answersArriveWithTheirSource()
{
    QFETCH(QString, version);
    InteropBed bed(mServer, QStringLiteral("alice"), { version });
    const QString question = QStringLiteral("question at ") + version;
    QVERIFY(bed.imap().append(Inbox, question));
    QVERIFY(begin(bed));
    const QMailMessageId source = bed.deviceMessage(question);
    QVERIFY(source.isValid());
    struct Answer
    {
        const char *kind;
        QMailMessage::ResponseType type;
        bool withSource;
        const char *command;
    };
    const Answer answers[] = {
        { "reply", QMailMessage::Reply, true, "SmartReply" },
        { "forward", QMailMessage::Forward, true, "SmartForward" },
        { "bare reply", QMailMessage::Reply, false, "SendMail" },
        { "bare forward", QMailMessage::Forward, false, "SendMail" },
    };
    for (const Answer &answer : answers) {
        const QString subject = QString::fromLatin1(answer.kind) + QLatin1Char(' ') + version;
        QMailMessage message =
            OutgoingMail::plain(subject, QStringLiteral("carol@example.org"), QStringLiteral("My own words"));
        message.setFrom(QMailAddress(QStringLiteral("alice@example.org")));
        OutgoingMail::attach(&message, QStringLiteral("notes.bin"), noise(3000));
        OutgoingMail::answer(&message, source, answer.type, answer.withSource);
        QCOMPARE(bed.sendMail(write(bed, message)), 0);
        const QList<ImapMessage> received = found("carol", Inbox, subject);
        QVERIFY2(received.size() == 1, qPrintable(subject));
        const QByteArray whole = clientOf("carol").source(Inbox, subject);
        // The server makes HTML of the text that it adds something to.
        const QString text = received.at(0).text + received.at(0).html;
        QVERIFY2(text.contains(QStringLiteral("My own words")), whole.left(2000));
        const bool hasFile = std::any_of(received.at(0).parts.cbegin(), received.at(0).parts.cend(),
            [](const ImapPart &part) { return part.sha256 == hash(noise(3000)); });
        QVERIFY2(hasFile, whole.left(3000));
        const bool hasSource = whole.contains("The text of") || text.contains("The text of");
        QVERIFY2(hasSource == answer.withSource, whole.left(3000));
        QCOMPARE(found("alice", Sent, subject).size(), 1);
    }
    QCOMPARE(bed.sync(), 0);
}

FENNEL_REGISTER_TEST(SendInteropTest)
#include "sendinteroptest.moc"
