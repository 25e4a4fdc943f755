// SPDX-License-Identifier: LGPL-2.1-or-later
#include "samplemessages.h"
#include "simulator/email.h"
#include "simulator/filereference.h"
#include "simulator/itemshape.h"
#include "simulator/protocolversion.h"
#include "simulator/wbxmltokens.h"
#include "support/testmain.h"

#include <QtTest>

Q_DECLARE_METATYPE(QVector<Simulator::BodyPreference>)

using namespace Simulator;

namespace {

SyncOptions bodyOptions(const QVector<BodyPreference> &bodies, int mimeSupport = 0, int mimeTruncation = 8)
{
    SyncOptions options;
    options.bodies = bodies;
    options.mimeSupport = mimeSupport;
    options.mimeTruncation = mimeTruncation;
    return options;
}

WbxmlNode shaped(const QByteArray &message, int version, const SyncOptions &options = {})
{
    const ItemShape shape { version, QStringLiteral("2:7"), false, options, nullptr };
    return WbxmlNode(QStringLiteral("AirSync:ApplicationData"), Email::fromMessage(message)->elements(shape));
}

WbxmlNode body(const QByteArray &message, const SyncOptions &options, int version = Version141)
{
    return shaped(message, version, options).at(QStringLiteral("AirSyncBase:Body"));
}

} // namespace

/** @short A message as each protocol version sees it: fields, bodies, attachments, meeting requests. */
class SimulatorEmailTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void headersComeDecoded()
    {
        const WbxmlNode data = shaped(SampleMessages::nested(), Version161);
        QCOMPARE(data.text(QStringLiteral("Email:From")),
            QStringLiteral("\"Jürgen Müller\" <juergen@example.com>"));
        QCOMPARE(data.text(QStringLiteral("Email:To")),
            QStringLiteral("\"Bob Reader\" <bob@example.com>, carol@example.com"));
        QCOMPARE(data.text(QStringLiteral("Email:Cc")), QStringLiteral("\"Dave, D.\" <dave@example.com>"));
        QCOMPARE(data.text(QStringLiteral("Email:Subject")), QStringLiteral("RE: Übersicht €"));
        QCOMPARE(data.text(QStringLiteral("Email:ThreadTopic")), QStringLiteral("Übersicht €"));
        QCOMPARE(
            data.text(QStringLiteral("Email:DisplayTo")), QStringLiteral("Bob Reader; carol@example.com"));
        QCOMPARE(data.text(QStringLiteral("Email:ReplyTo")), QStringLiteral("team@example.com"));
        QCOMPARE(data.text(QStringLiteral("Email:DateReceived")), QStringLiteral("2024-05-02T07:30:00.000Z"));
        QCOMPARE(data.text(QStringLiteral("Email:Importance")), QStringLiteral("2"));
        QCOMPARE(data.text(QStringLiteral("Email:Read")), QStringLiteral("0"));
        QCOMPARE(data.text(QStringLiteral("Email:MessageClass")), QStringLiteral("IPM.Note"));
    }

    void attachmentsAreListedWithNameSizeAndPlace()
    {
        const WbxmlNode data = shaped(SampleMessages::nested(), Version120);
        const QVector<WbxmlNode> list = data.all(QStringLiteral("AirSyncBase:Attachments/Attachment"));
        QCOMPARE(list.size(), 2);
        QCOMPARE(list.at(0).text(QStringLiteral("DisplayName")), QStringLiteral("logo.png"));
        QCOMPARE(list.at(0).text(QStringLiteral("ContentId")), QStringLiteral("image1"));
        QCOMPARE(list.at(0).text(QStringLiteral("IsInline")), QStringLiteral("1"));
        QCOMPARE(list.at(1).text(QStringLiteral("DisplayName")), QStringLiteral("Übersicht 2024.txt"));
        QCOMPARE(list.at(1).text(QStringLiteral("EstimatedDataSize")).toInt(),
            SampleMessages::attachment().size());
        QVERIFY(!list.at(1).has(QStringLiteral("IsInline")));
        const auto reference = FileReference::parse(list.at(1).text(QStringLiteral("FileReference")));
        QCOMPARE(reference.serverId, QStringLiteral("2:7"));
        QCOMPARE(reference.attachment, 1);
    }

    void eachVersionHasElementsOfItsOwnAlone_data()
    {
        QTest::addColumn<int>("version");
        for (const int version : protocolVersions())
            QTest::newRow(qPrintable(versionText(version))) << version;
    }

    void eachVersionHasElementsOfItsOwnAlone()
    {
        QFETCH(int, version);
        SyncOptions options = bodyOptions({ { 1, -1, false, 80 }, { 2, -1, false, 80 } });
        options.bodyParts = { { 2, -1, false, -1 } };
        for (const QByteArray &message : { SampleMessages::nested(), SampleMessages::meetingRequest() })
            checkElements(shaped(message, version, options), version);
    }

    void versionsDiffer()
    {
        const SyncOptions options = bodyOptions({ { 2, -1, false, 10 } });
        const WbxmlNode old = shaped(SampleMessages::nested(), Version121, options);
        QVERIFY(!old.has(QStringLiteral("Email2:ConversationId")));
        QVERIFY(!old.has(QStringLiteral("Email:Categories")));
        QVERIFY(!old.has(QStringLiteral("AirSyncBase:Body/Preview")));
        const WbxmlNode newer = shaped(SampleMessages::nested(), Version140, options);
        QVERIFY(newer.at(QStringLiteral("Email2:ConversationId")).isOpaque());
        QCOMPARE(newer.at(QStringLiteral("Email2:ConversationId")).bytes().size(), 16);
        QCOMPARE(newer.at(QStringLiteral("Email2:ConversationIndex")).bytes().size(), 5);
        QCOMPARE(newer.text(QStringLiteral("AirSyncBase:Body/Preview")), QStringLiteral("Grüße aus "));
    }

    void aMeetingRequestTakesTheShapeOfItsVersion()
    {
        const QString request = QStringLiteral("Email:MeetingRequest/");
        const WbxmlNode old = shaped(SampleMessages::meetingRequest(), Version121);
        QCOMPARE(
            old.text(QStringLiteral("Email:MessageClass")), QStringLiteral("IPM.Schedule.Meeting.Request"));
        QCOMPARE(old.text(request + QStringLiteral("StartTime")), QStringLiteral("2024-05-10T07:00:00.000Z"));
        QCOMPARE(old.text(request + QStringLiteral("EndTime")), QStringLiteral("2024-05-10T08:00:00.000Z"));
        QCOMPARE(old.text(request + QStringLiteral("Location")), QStringLiteral("Room, 2nd floor"));
        QCOMPARE(old.text(request + QStringLiteral("Organizer")), QStringLiteral("olga@example.com"));
        QCOMPARE(old.text(request + QStringLiteral("Recurrences/Recurrence/Interval")), QStringLiteral("2"));
        QCOMPARE(
            old.text(request + QStringLiteral("Recurrences/Recurrence/DayOfWeek")), QStringLiteral("34"));
        const QByteArray global =
            QByteArray::fromBase64(old.text(request + QStringLiteral("GlobalObjId")).toLatin1());
        QVERIFY(global.contains("event-1@example.com"));
        QVERIFY(!old.has(request + QStringLiteral("Calendar:UID")));

        const WbxmlNode newest = shaped(SampleMessages::meetingRequest(), Version160);
        QCOMPARE(newest.text(request + QStringLiteral("AirSyncBase:Location/DisplayName")),
            QStringLiteral("Room, 2nd floor"));
        QCOMPARE(
            newest.text(request + QStringLiteral("Calendar:UID")), QStringLiteral("event-1@example.com"));
        QVERIFY(!newest.has(request + QStringLiteral("GlobalObjId")));
        QVERIFY(!newest.has(request + QStringLiteral("Location")));
    }

    void theBodyFollowsThePreferences_data()
    {
        using Preferences = QVector<BodyPreference>;
        QTest::addColumn<QByteArray>("message");
        QTest::addColumn<Preferences>("bodies");
        QTest::addColumn<int>("mimeSupport");
        QTest::addColumn<int>("type");
        const BodyPreference plain { 1, -1, false, -1 };
        const BodyPreference html { 2, -1, false, -1 };
        const BodyPreference mime { 4, -1, false, -1 };
        const QByteArray both = SampleMessages::nested();
        const QByteArray text = SampleMessages::meetingRequest();
        const QByteArray smime = SampleMessages::signedMessage();
        QTest::newRow("no preference gives the own type") << both << Preferences {} << 0 << 2;
        QTest::newRow("the own type goes before") << both << Preferences { plain, html } << 0 << 2;
        QTest::newRow("plain alone is plain") << both << Preferences { plain } << 0 << 1;
        QTest::newRow("a text message stays plain") << text << Preferences { html, plain } << 0 << 1;
        QTest::newRow("a text message becomes HTML if asked") << text << Preferences { html } << 0 << 2;
        QTest::newRow("MIME needs its support") << both << Preferences { html, mime } << 0 << 2;
        QTest::newRow("MIME for all") << both << Preferences { html, mime } << 2 << 4;
        QTest::newRow("MIME for S/MIME alone, another") << both << Preferences { html, mime } << 1 << 2;
        QTest::newRow("MIME for S/MIME alone, that one") << smime << Preferences { html, mime } << 1 << 4;
        QTest::newRow("what is too large as a whole is passed over")
            << both << Preferences { { 2, 5, true, -1 }, plain } << 0 << 1;
    }

    void theBodyFollowsThePreferences()
    {
        QFETCH(QByteArray, message);
        QFETCH(QVector<Simulator::BodyPreference>, bodies);
        QFETCH(int, mimeSupport);
        QFETCH(int, type);
        const WbxmlNode node = body(message, bodyOptions(bodies, mimeSupport));
        QCOMPARE(node.text(QStringLiteral("Type")).toInt(), type);
        QCOMPARE(node.text(QStringLiteral("EstimatedDataSize")).toInt(),
            node.at(QStringLiteral("Data")).bytes().size());
        QVERIFY(!node.has(QStringLiteral("Truncated")));
        if (type == 4)
            QCOMPARE(node.at(QStringLiteral("Data")).bytes(), message);
    }

    void bodiesAreCutBetweenCharacters()
    {
        const QByteArray whole = QStringLiteral("Grüße aus Köln").toUtf8();
        for (int limit = 0; limit < whole.size(); ++limit) {
            const WbxmlNode node = body(SampleMessages::nested(), bodyOptions({ { 1, limit, false, -1 } }));
            const QByteArray data = node.at(QStringLiteral("Data")).bytes();
            QCOMPARE(node.text(QStringLiteral("Truncated")), QStringLiteral("1"));
            QVERIFY(data.size() <= limit && data.size() >= limit - 1);
            QVERIFY(whole.startsWith(data));
            QVERIFY(node.text(QStringLiteral("EstimatedDataSize")).toInt() >= whole.size());
        }
    }

    void mimeTruncationCutsMimeBodiesAlone()
    {
        const BodyPreference html { 2, -1, false, -1 };
        const BodyPreference mime { 4, -1, false, -1 };
        const QByteArray message = SampleMessages::nested() + QByteArray(9000, 'x');
        QVERIFY(!body(message, bodyOptions({ html }, 2, 0)).has(QStringLiteral("Truncated")));
        const WbxmlNode none = body(message, bodyOptions({ html, mime }, 2, 0));
        QCOMPARE(none.text(QStringLiteral("Truncated")), QStringLiteral("1"));
        QVERIFY(!none.has(QStringLiteral("Data")));
        const WbxmlNode some = body(message, bodyOptions({ html, mime }, 2, 1));
        QCOMPARE(some.at(QStringLiteral("Data")).bytes(), message.left(4096));
        QCOMPARE(
            body(message, bodyOptions({ html, mime }, 2, 8)).at(QStringLiteral("Data")).bytes(), message);
    }

    void aBodyPartNeedsFourteenOne()
    {
        SyncOptions options = bodyOptions({ { 1, -1, false, -1 } });
        options.bodyParts = { { 2, -1, false, -1 } };
        QVERIFY(!shaped(SampleMessages::nested(), Version140, options)
                     .has(QStringLiteral("AirSyncBase:BodyPart")));
        const WbxmlNode data = shaped(SampleMessages::nested(), Version141, options);
        QCOMPARE(data.text(QStringLiteral("AirSyncBase:BodyPart/Type")), QStringLiteral("2"));
        QCOMPARE(data.text(QStringLiteral("AirSyncBase:BodyPart/Status")), QStringLiteral("1"));
        QCOMPARE(data.text(QStringLiteral("AirSyncBase:Body/Type")), QStringLiteral("1"));
    }

    void attachmentBytesAreThoseOfTheMessage()
    {
        const Email::Ptr email = Email::fromMessage(SampleMessages::nested());
        const std::optional<ItemAttachment> second = email->attachment(1);
        QVERIFY(second);
        QCOMPARE(second->bytes, SampleMessages::attachment());
        QCOMPARE(second->contentType, QByteArray("application/octet-stream"));
        QVERIFY(!email->attachment(2));
        QVERIFY(!email->attachment(-1));
    }

private:
    void checkElements(const WbxmlNode &node, int version)
    {
        const auto token = WbxmlTokens::find(node.name());
        QVERIFY2(token && WbxmlTokens::existsAt(*token, version), qPrintable(node.name()));
        for (const WbxmlNode &child : node.children())
            checkElements(child, version);
    }
};

FENNEL_REGISTER_TEST(SimulatorEmailTest)
#include "simulatoremailtest.moc"
