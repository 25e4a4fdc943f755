// SPDX-License-Identifier: LGPL-2.1-or-later
#include "integration/sendscene.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QtTest>

using namespace SendScene;
using Simulator::Override;

namespace {

/** What a status of the server makes of a message. */
struct Row
{
    int status;
    int end;
    const char *text;
    int requests = 1;
};

constexpr char Server[] = "server error. We shouldn't retry later. Completing request";
constexpr char Device[] = "invalid Device ID or Type. Trying to update Device information";
constexpr char Body[] = "invalid WBXML/XML. Something really wrong with a request";

const Row statusRows[] = {
    { 1, 0, "Successfully parsed compose mail command response!" },
    { 101, 101, "invalid body of the request. Sent empty body?" },
    { 102, 102, Body },
    { 103, 103, Body },
    { 106, 106, Server },
    { 107, 107, "invalid MIME. Check MIME of the request." },
    { 108, 0, Device, 2 },
    { 109, 0, Device, 2 },
    { 110, 110, Server },
    { 111, 0, "we should try to send command again later. Timeout (in mseconds):", 2 },
    { 113, -6, "The mailbox has reached its size quota" },
    { 114, 114, "error status 114 completing request" },
    { 115, 115, "The request would exceed the send quota." },
    { 116, 116, "error status 116 completing request" },
    { 118, 0, "Successfully parsed compose mail command response!" },
    { 119, 119, "error status 119 completing request" },
    { 139, 139, "Device is not fully Provisionable for account" },
    { 140, 0, "remote wipe is requested for account", 2 },
    { 141, 0, "server requires policy key to be submitted for", 2 },
    { 142, 0, "Provision Policy is in place for account", 2 },
    { 143, 0, "Policy refresh requested for account", 2 },
    { 144, 0, "Invalid policy key for account", 2 },
    { 145, 0, "Exterally managed devices are not allowed for account", 2 },
};

const Row httpRows[] = {
    { 400, 10302, "error status 10302 completing request" },
    { 403, 10201, "error status 10201 completing request" },
    { 404, 10203, "error status 10203 completing request" },
    { 449, 0, "by http status 449", 2 },
    { 500, 10401, "error status 10401 completing request" },
    { 507, -6, "The mailbox has reached its size quota" },
};

} // namespace

/** What each status of a server makes of a message, by each of the three commands. */
class SendStatusTest : public QObject
{
    Q_OBJECT

private:
    /** A message that goes by the command. */
    static QMailMessage messageFor(const QString &command, const QMailMessageId &source)
    {
        QMailMessage message =
            OutgoingMail::plain(QStringLiteral("message"), QStringLiteral("bob@example.com"));
        if (command == QLatin1String("SmartReply"))
            OutgoingMail::answer(&message, source, QMailMessage::Reply);
        else if (command == QLatin1String("SmartForward"))
            OutgoingMail::answer(&message, source, QMailMessage::Forward);
        return message;
    }

    /** Empty if a message that is answered like this ends as the row says. */
    static QString whatIsWrong(SendBed &bed, const QString &command, const QMailMessage &message,
        const Row &row, const Override &answer)
    {
        bed.server().clearRequests();
        bed.server().overrideNext(command, answer);
        const quint64 id = bed.write(message);
        LogCollector log;
        const int end = bed.sendMail(id);
        const bool isDraft = row.status == 115;
        const bool stays = end != 0 && !isDraft;
        const QStringList outbox = bed.inFolder(QMailFolder::OutboxFolder);
        const QStringList drafts = bed.inFolder(QMailFolder::DraftsFolder);
        const int requests = bed.server().requests(command).size();
        QString wrong;
        if (end != row.end)
            wrong += QStringLiteral(" ended with %1, not %2;").arg(end).arg(row.end);
        if (requests != row.requests)
            wrong += QStringLiteral(" %1 requests;").arg(requests);
        if (!log.contains(QString::fromLatin1(row.text)))
            wrong += QStringLiteral(" no line \"%1\";").arg(QLatin1String(row.text));
        if (outbox.size() != (stays ? 1 : 0) || drafts.size() != (isDraft ? 1 : 0))
            wrong += QStringLiteral(" %1 in the Outbox, %2 in Drafts;").arg(outbox.size()).arg(drafts.size());
        if (stays || isDraft)
            SendBed::discard(id);
        return wrong.isEmpty() ? wrong : QString::number(row.status) + QLatin1Char(':') + wrong;
    }

    /** Empty if each row holds, where the server answers its status like this. */
    template <typename Rows>
    static QString wrongAmong(
        const Rows &rows, const QString &version, const QString &command, Override (*answer)(int status))
    {
        SendBed bed(version);
        if (!bed.isReady())
            return QStringLiteral("the device is not ready");
        const QMailMessage message = messageFor(command, bed.receive(QStringLiteral("source")));
        QStringList wrong;
        for (const Row &row : rows)
            wrong.append(whatIsWrong(bed, command, message, row, answer(row.status)));
        wrong.removeAll(QString());
        return wrong.join(QLatin1Char('\n'));
    }

    static void commands(const QStringList &versions)
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<QString>("command");
        for (const QString &version : versions) {
            for (const char *command : { "SendMail", "SmartReply", "SmartForward" })
                QTest::addRow("%s at %s", command, qPrintable(version))
                    << version << QString::fromLatin1(command);
        }
    }

private Q_SLOTS:
    void aStatusOfTheBody_data() { commands({ "14.0", "14.1", "16.0", "16.1" }); }
    void aStatusOfTheBody()
    {
        QFETCH(QString, version);
        QFETCH(QString, command);
        QCOMPARE(
            wrongAmong(statusRows, version, command, [](int status) { return Override::topStatus(status); }),
            QString());
    }

    void aStatusOfHttp_data() { commands({ "12.0", "12.1", "14.1", "16.1" }); }
    void aStatusOfHttp()
    {
        QFETCH(QString, version);
        QFETCH(QString, command);
        QCOMPARE(
            wrongAmong(httpRows, version, command, [](int status) { return Override::httpStatus(status); }),
            QString());
    }

    void aPassingErrorForEverIsGivenUp_data() { commands({ "14.1" }); }
    void aPassingErrorForEverIsGivenUp()
    {
        QFETCH(QString, version);
        QFETCH(QString, command);
        SendBed bed(version);
        QVERIFY(bed.isReady());
        const quint64 id = bed.write(messageFor(command, bed.receive(QStringLiteral("source"))));
        bed.server().overrideAll(command, Override::topStatus(111));
        LogCollector log;
        QCOMPARE(bed.sendMail(id), 111);
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("no mroe attempts, failing request") }));
        QCOMPARE(bed.server().requests(command).size(), 6);
        QCOMPARE(bed.inFolder(QMailFolder::OutboxFolder).size(), 1);
        QVERIFY(bed.received(QStringLiteral("bob")).isEmpty());
    }
};

FENNEL_REGISTER_TEST(SendStatusTest)
#include "sendstatustest.moc"
