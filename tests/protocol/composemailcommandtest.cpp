// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/composemailcommand.h"

#include "common/easrequeststatus.h"
#include "easitems/easemailitem.h"
#include "protocol/sendmailcommand.h"
#include "protocol/smartforwardcommand.h"
#include "protocol/smartreplycommand.h"
#include "support/logcollector.h"
#include "support/requestbed.h"
#include "support/testmain.h"
#include "support/wbxmldocument.h"

#include <QSignalSpy>
#include <QtTest>

#include <memory>

using namespace Wbxml;
using WbxmlDocument::document;
using WbxmlDocument::node;

namespace {

constexpr EasAccountId Account = RequestBed::Account;
constexpr quint64 Message = 12;
const QByteArray Mime = "Subject: hello\r\n\r\nHello\r\n";

enum class Kind { Plain, Reply, Forward };

} // namespace

Q_DECLARE_METATYPE(Kind)

/** The three commands that hand a message over, on the wire. */
class ComposeMailCommandTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<RequestBed> mBed;

    static EasEmailItem itemWith(const QByteArray &mime)
    {
        EasBodyContainer body;
        body.setMime(mime);
        EasEmailItem item;
        item.setBody(body);
        return item;
    }

    static QString root(Kind kind)
    {
        return kind == Kind::Plain ? QStringLiteral("SendMail")
            : kind == Kind::Reply  ? QStringLiteral("SmartReply")
                                   : QStringLiteral("SmartForward");
    }

    ComposeMailCommand *make(Kind kind, bool saveInSent, bool replaceMime = false)
    {
        QObject *const engine = mBed->manager;
        if (kind == Kind::Plain)
            return new SendMailCommand(Account, engine, Message, saveInSent);
        if (kind == Kind::Reply) {
            auto *const reply =
                new SmartReplyCommand(Account, engine, Message, Mime, saveInSent, replaceMime);
            reply->setReplySource(QStringLiteral("5"), QStringLiteral("5:7"), QDateTime());
            return reply;
        }
        auto *const forward =
            new SmartForwardCommand(Account, engine, Message, Mime, saveInSent, replaceMime);
        forward->setForwardSource(QStringLiteral("5"), QStringLiteral("5:7"), QDateTime());
        return forward;
    }

    /** Runs a command to its end; whether it ended well. */
    static bool run(ComposeMailCommand &command)
    {
        QSignalSpy finished(&command, &BaseProtocolCommand::finished);
        command.start();
        if (finished.isEmpty())
            finished.wait(60000);
        return finished.count() == 1 && finished.at(0).at(0).toBool();
    }

    static void kinds()
    {
        QTest::addColumn<Kind>("kind");
        QTest::newRow("SendMail") << Kind::Plain;
        QTest::newRow("SmartReply") << Kind::Reply;
        QTest::newRow("SmartForward") << Kind::Forward;
    }

private Q_SLOTS:
    void init()
    {
        mBed = std::make_unique<RequestBed>(
            QStringList { QStringLiteral("SendMail"), QStringLiteral("SmartReply") });
        mBed->mail->outgoing[QString::number(Message)].whole = itemWith(Mime);
        QTRY_VERIFY(mBed->isOnline());
    }

    void cleanup()
    {
        const int unexpected = mBed->server.unexpected();
        mBed.reset();
        QCOMPARE(unexpected, 0);
    }

    void theIdentifierIsThatOfTheBytes()
    {
        const QString id = ComposeMailCommand::clientId(12, Mime);
        QVERIFY2(
            QRegularExpression(QStringLiteral("^12-[0-9a-f]{16}$")).match(id).hasMatch(), qPrintable(id));
        QCOMPARE(ComposeMailCommand::clientId(12, Mime), id);
        QVERIFY(ComposeMailCommand::clientId(12, Mime + ' ') != id);
        QVERIFY(ComposeMailCommand::clientId(13, Mime) != id);
        // It has to fit into the 40 characters of the element.
        QVERIFY(ComposeMailCommand::clientId(std::numeric_limits<quint64>::max(), Mime).size() <= 40);
    }

    void from14OnTheMessageIsAPartOfADocument_data() { kinds(); }
    void from14OnTheMessageIsAPartOfADocument()
    {
        QFETCH(Kind, kind);
        LogCollector log;
        mBed->answer(QByteArray());
        const std::unique_ptr<ComposeMailCommand> command(make(kind, true));
        QVERIFY(run(*command));
        QCOMPARE(command->status(), 0);
        const QString source =
            kind == Kind::Plain ? QString() : QStringLiteral("Source(FolderId=5,ItemId=5:7),");
        QCOMPARE(mBed->sent(),
            QStringList { QStringLiteral("%1(ClientId=%2,SaveInSentItems,%3MIME=%4)")
                              .arg(root(kind), ComposeMailCommand::clientId(Message, Mime), source,
                                  QString::fromLatin1(Mime)) });
        const ReceivedRequest request = mBed->server.requests().at(0);
        QCOMPARE(request.header("Content-Type"), QByteArray("application/vnd.ms-sync.wbxml"));
        QVERIFY(request.target.contains("Cmd=" + root(kind).toLatin1()));
        QVERIFY(!request.target.contains("SaveInSent"));
        QVERIFY(!request.target.contains("ItemId"));
        QVERIFY(log.contains(root(kind) + QStringLiteral(" MIME")));
        QVERIFY(log.contains(QStringLiteral("Successfully parsed compose mail command response!")));
        QVERIFY(log.contains(QtInfoMsg, { QStringLiteral("Status:"), QStringLiteral("0") }));
        QVERIFY(log.contains(kind == Kind::Plain ? QStringLiteral("Sending send mail command via POST:")
                : kind == Kind::Reply            ? QStringLiteral("Sending smart reply command via POST:")
                                      : QStringLiteral("Sending smart forward command via POST:")));
    }

    void below14TheMessageIsTheBody_data() { kinds(); }
    void below14TheMessageIsTheBody()
    {
        QFETCH(Kind, kind);
        LogCollector log;
        mBed->account->setProtocolVersion(ExchangeActiveSync::ProtocolVersion121);
        mBed->answer(QByteArray());
        const std::unique_ptr<ComposeMailCommand> command(make(kind, true));
        QVERIFY(run(*command));
        const ReceivedRequest request = mBed->server.requests().at(0);
        QCOMPARE(request.body, Mime);
        QCOMPARE(request.header("Content-Type"), QByteArray("message/rfc822"));
        QVERIFY(request.target.contains("&SaveInSent=T"));
        QCOMPARE(request.target.contains("&CollectionId=5"), kind != Kind::Plain);
        QCOMPARE(request.target.contains("&ItemId=5%3A7"), kind != Kind::Plain);
        QVERIFY(!request.target.contains("LongId"));
        QVERIFY(log.contains(QStringLiteral("(Mime data)")));
    }

    void noCopyIsKeptUnlessItIsWanted_data()
    {
        QTest::addColumn<int>("version");
        QTest::newRow("12.1") << int(ExchangeActiveSync::ProtocolVersion121);
        QTest::newRow("14.1") << int(ExchangeActiveSync::ProtocolVersion141);
    }
    void noCopyIsKeptUnlessItIsWanted()
    {
        QFETCH(int, version);
        mBed->account->setProtocolVersion(ExchangeActiveSync::ProtocolVersion(version));
        mBed->answer(QByteArray());
        const std::unique_ptr<ComposeMailCommand> command(make(Kind::Plain, false));
        QVERIFY(run(*command));
        QVERIFY(!mBed->server.requests().at(0).target.contains("SaveInSent"));
        QVERIFY(!mBed->sent().at(0).contains(QStringLiteral("SaveInSentItems")));
    }

    void anOccurrenceAndAReplacedTextAreTold()
    {
        mBed->answer(QByteArray());
        SmartReplyCommand command(Account, mBed->manager, Message, Mime, false, true);
        command.setReplySource(QStringLiteral("5"), QStringLiteral("5:7"),
            QDateTime(QDate(2026, 3, 4), QTime(5, 6, 7), Qt::UTC));
        QVERIFY(run(command));
        QVERIFY2(mBed->sent().at(0).contains(QStringLiteral(
                     "ReplaceMime,Source(FolderId=5,ItemId=5:7,InstanceId=2026-03-04T05:06:07Z),MIME=")),
            qPrintable(mBed->sent().at(0)));
    }

    void aSourceMayBeNamedByASearch()
    {
        mBed->answer(QByteArray());
        mBed->answer(QByteArray());
        SmartForwardCommand command(Account, mBed->manager, Message, Mime, false, false);
        command.setForwardSource(QStringLiteral("RgAAAA+/="));
        QVERIFY(run(command));
        QVERIFY(mBed->sent().at(0).contains(QStringLiteral("Source(LongId=RgAAAA+/=),MIME=")));
        mBed->account->setProtocolVersion(ExchangeActiveSync::ProtocolVersion121);
        QVERIFY(run(command));
        QVERIFY(mBed->server.requests().at(1).target.contains("&LongId=RgAAAA%2B%2F%3D"));
        QVERIFY(!mBed->server.requests().at(1).target.contains("ItemId"));
    }

    void anIdentifierThatIsEncodedAlreadyStaysAsItIs()
    {
        mBed->account->setProtocolVersion(ExchangeActiveSync::ProtocolVersion121);
        mBed->answer(QByteArray());
        SmartReplyCommand command(Account, mBed->manager, Message, Mime, false, false);
        command.setReplySource(QStringLiteral("mail%2F7a"), QStringLiteral("50% &more"), QDateTime());
        QVERIFY(run(command));
        const QByteArray target = mBed->server.requests().at(0).target;
        QVERIFY2(target.contains("&CollectionId=mail%2F7a&"), target);
        QVERIFY2(target.endsWith("&ItemId=50%25%20%26more"), target);
    }

    void theStatusOfTheReplyIsItsOwn_data() { kinds(); }
    void theStatusOfTheReplyIsItsOwn()
    {
        QFETCH(Kind, kind);
        mBed->answer(document(node(kind == Kind::Plain ? ComposeMail::SendMail
                : kind == Kind::Reply                  ? ComposeMail::SmartReply
                                                       : ComposeMail::SmartForward,
            { node(ComposeMail::Status, "150") })));
        const std::unique_ptr<ComposeMailCommand> command(make(kind, true));
        QVERIFY(run(*command));
        QCOMPARE(command->status(), 150);
    }

    void aReplyThatCannotBeReadIsAnInternalError()
    {
        LogCollector log;
        mBed->answer("<html>");
        const std::unique_ptr<ComposeMailCommand> command(make(Kind::Plain, true));
        QVERIFY(!run(*command));
        QCOMPARE(command->status(), int(EasRequestStatus::RequestStatusInternalError));
        QVERIFY(log.contains(QStringLiteral("Failed to parse compose mail command response!")));
    }

    void withoutAMessageNothingIsSent()
    {
        LogCollector log;
        mBed->mail->outgoing.clear();
        const std::unique_ptr<ComposeMailCommand> command(make(Kind::Plain, true));
        QVERIFY(!run(*command));
        QVERIFY(log.contains(QStringLiteral("No MIME")));
        mBed->account->mails.clear();
        QVERIFY(!run(*command));
        QVERIFY(log.contains(QStringLiteral("No mail storage")));
        QVERIFY(mBed->sent().isEmpty());
    }
};

FENNEL_REGISTER_TEST(ComposeMailCommandTest)
#include "composemailcommandtest.moc"
