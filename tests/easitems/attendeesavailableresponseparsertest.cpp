// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/attendeesavailableresponseparser.h"

#include "common/easrequeststatus.h"
#include "support/logcollector.h"
#include "support/testmain.h"
#include "support/wbxmlbytes.h"
#include "support/wbxmldocument.h"

#include <QtTest>

using namespace Wbxml;
using WbxmlDocument::document;
using WbxmlDocument::node;

namespace {

namespace Tag = ResolveRecipients;

QByteArray reply(const QVector<WbxmlNode> &responses, const char *status = "1")
{
    return document(
        node(Tag::ResolveRecipients, QVector<WbxmlNode> { node(Tag::Status, status) } + responses));
}

WbxmlNode recipient(const QString &email, const QString &name, const QString &state, const char *status = "1")
{
    return node(Tag::Recipient,
        { node(Tag::Type, "1"), node(Tag::DisplayName, name), node(Tag::EmailAddress, email),
            node(Tag::Availability, { node(Tag::Status, status), node(Tag::MergedFreeBusy, state) }) });
}

WbxmlNode response(const QString &to, const QVector<WbxmlNode> &recipients, const char *status = "1")
{
    return node(Tag::Response,
        QVector<WbxmlNode> { node(Tag::To, to), node(Tag::Status, status),
            node(Tag::RecipientCount, QString::number(recipients.size())) }
            + recipients);
}

/** "email|name|state", one a row. */
QStringList rows(const AttendeesAvailableResponseParser &parser)
{
    QStringList lines;
    for (const auto &attendee : parser.attendees())
        lines.append(attendee.email + '|' + attendee.name + '|' + attendee.status);
    return lines;
}

} // namespace

/** People's free and busy times as a server sends them. */
class AttendeesAvailableResponseParserTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachPersonIsARow()
    {
        AttendeesAvailableResponseParser parser;
        parser.parse(reply({ response("ann@example.com", { recipient("ann@example.com", "Ann", "0022") }),
            response("bo@example.com", { recipient("bo@example.com", "Bo", "3341") }) }));
        QVERIFY(parser.ready());
        QCOMPARE(parser.status(), 1);
        QCOMPARE(parser.responseStatus(), 1);
        QCOMPARE(rows(parser), QStringList({ "ann@example.com|Ann|0022", "bo@example.com|Bo|3341" }));
    }

    void anAddressReturnedTwiceGivesOneRow()
    {
        AttendeesAvailableResponseParser parser;
        parser.parse(reply({ response("ann@example.com", { recipient("ann@example.com", "Ann", "00") }),
            response("ANN@example.com", { recipient("Ann@Example.com", "Anna", "22") }) }));
        QCOMPARE(rows(parser), QStringList("ann@example.com|Ann|00"));
        const auto *const found = parser.findAttendee("ANN@EXAMPLE.COM");
        QVERIFY(found);
        QCOMPARE(found->name, QStringLiteral("Ann"));
        QVERIFY(!parser.findAttendee("bo@example.com"));
    }

    void aResponseWithoutAnAddressAddsNothing()
    {
        AttendeesAvailableResponseParser parser;
        parser.parse(reply({ node(Tag::Response, { node(Tag::Status, "1") }),
            response(QString(), { recipient(QString(), "Ann", "00") }) }));
        QVERIFY(parser.ready());
        QCOMPARE(rows(parser), QStringList());
    }

    void aPersonWhoIsNotFoundDoesNotSpoilTheOthers()
    {
        AttendeesAvailableResponseParser parser;
        parser.parse(reply({ response("nobody@example.com", {}, "4"),
            response("bo@example.com", { recipient("bo@example.com", "Bo", "00") }),
            response("gone@example.com", {}, "4") }));
        QCOMPARE(parser.responseStatus(), 1);
        QCOMPARE(rows(parser),
            QStringList({ "nobody@example.com||", "bo@example.com|Bo|00", "gone@example.com||" }));
    }

    void withNobodyFoundTheFirstResponseTellsTheStatus()
    {
        AttendeesAvailableResponseParser parser;
        parser.parse(reply({ response("a@example.com", {}, "4"), response("b@example.com", {}, "2") }));
        QCOMPARE(parser.responseStatus(), 4);
    }

    void aNameForSeveralPeopleIsARowForEach()
    {
        AttendeesAvailableResponseParser parser;
        parser.parse(reply({ response("team",
            { recipient("ann@example.com", "Ann", "00"), recipient("bo@example.com", "Bo", "22") }) }));
        QCOMPARE(rows(parser), QStringList({ "ann@example.com|Ann|00", "bo@example.com|Bo|22" }));
    }

    void aStateWhoseStatusIsNotOneIsEmpty_data()
    {
        QTest::addColumn<QString>("status");
        for (const char *status : { "160", "161", "162", "163", "0", "many" })
            QTest::newRow(status) << status;
    }

    void aStateWhoseStatusIsNotOneIsEmpty()
    {
        QFETCH(QString, status);
        AttendeesAvailableResponseParser parser;
        parser.parse(reply({ response("ann@example.com",
            { recipient("ann@example.com", "Ann", "00", status.toLatin1().constData()) }) }));
        QCOMPARE(rows(parser), QStringList("ann@example.com|Ann|"));
        QCOMPARE(parser.status(), 1);
        QCOMPARE(parser.responseStatus(), 1);
    }

    void theStatusOfTheCommandIsTheOutermost()
    {
        AttendeesAvailableResponseParser parser;
        parser.parse(reply({ response("a", {}, "4") }, "5"));
        QCOMPARE(parser.status(), 5);
        QCOMPARE(parser.responseStatus(), 4);
        parser.parse(reply({}, "good"));
        QCOMPARE(parser.status(), int(EasRequestStatus::RequestStatusInternalError));
        QCOMPARE(parser.responseStatus(), 0);
    }

    void whatIsNotExpectedIsLogged()
    {
        LogCollector log;
        AttendeesAvailableResponseParser parser;
        parser.parse(reply({ response("ann@example.com",
            { node(Tag::Recipient,
                { node(Tag::EmailAddress, "ann@example.com"), node(Tag::MiniCertificate, "x"),
                    node(Tag::Availability, { node(Tag::Status, "fine") }) }) }) }));
        QVERIFY(parser.ready());
        QVERIFY(log.contains(QStringLiteral("Unexpected element, page:  10  and token:  14")));
        QVERIFY(log.contains(QStringLiteral("Unexpected content:  \"x\" , codePage:  10 , token:  14")));
        QVERIFY(log.contains(QStringLiteral("Cannot convert to uint:  \"fine\"")));
    }

    void aReplyOfSomethingElseIsNoAnswer()
    {
        AttendeesAvailableResponseParser parser;
        parser.parse({});
        QVERIFY(!parser.ready());
        parser.parse(document(node(Ping::Ping, { node(Ping::Status, "1") })));
        QVERIFY(!parser.ready());
    }

    void aStateOfTenMegabytesCountsAsNone()
    {
        LogCollector log;
        AttendeesAvailableResponseParser parser;
        parser.parse(reply({ response("ann@example.com",
                                 { recipient("ann@example.com", "Ann", QString(10 << 20, '2')) }),
            response("bo@example.com", { recipient("bo@example.com", "Bo", QString(32 * 1024, '0')) }) }));
        QVERIFY(parser.ready());
        QCOMPARE(parser.findAttendee("ann@example.com")->status, QString());
        QCOMPARE(parser.findAttendee("bo@example.com")->status.size(), 32 * 1024);
        QVERIFY(log.contains(QStringLiteral("Left out an availability of 10485760 characters")));
    }

    void longAddressesAreNoneAndLongNamesAreCut()
    {
        AttendeesAvailableResponseParser parser;
        parser.parse(reply({ response(QString(4096, 'a'), { recipient(QString(4096, 'a'), "Ann", "0") }),
            response("bo@example.com", { recipient("bo@example.com", QString(4096, 'b'), "0") }),
            response(QString(4096, 'c'), {}, "4") }));
        QVERIFY(parser.ready());
        QCOMPARE(rows(parser), QStringList("bo@example.com|" + QString(1024, 'b') + "|0"));
    }

    void rowsWithoutAnEndAreRefused()
    {
        QByteArray body = WbxmlBytes::document("000A 45"); // ResolveRecipients
        for (int i = 0; i < 100000; ++i)
            body += WbxmlBytes::hex("46 49 4B 03") + QByteArray::number(i) + WbxmlBytes::hex("00 01 01 01");
        body += WbxmlBytes::hex("01");
        LogCollector log;
        AttendeesAvailableResponseParser parser;
        parser.parse(body);
        QVERIFY(!parser.ready());
        QCOMPARE(parser.attendees().size(), 1000);
        QVERIFY(log.contains(QStringLiteral("Refused a reply:")));
    }
};

FENNEL_REGISTER_TEST(AttendeesAvailableResponseParserTest)
#include "attendeesavailableresponseparsertest.moc"
