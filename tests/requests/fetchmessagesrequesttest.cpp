// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/fetchmessagesrequest.h"

#include "application/mapping/easdatabase.h"
#include "protocol/base/protocolutils.h"
#include "requests/fetchpartrequest.h"
#include "support/logcollector.h"
#include "support/requestbed.h"
#include "support/testmain.h"
#include "support/wbxmldocument.h"

#include <QtTest>

using namespace Wbxml;
using WbxmlDocument::document;
using WbxmlDocument::node;

namespace {

QByteArray reply(const QVector<WbxmlNode> &fetches)
{
    return document(node(ItemOperations::ItemOperations,
        { node(ItemOperations::Status, "1"), node(ItemOperations::Response, fetches) }));
}

WbxmlNode messageNode(const char *serverId, const char *status = "1")
{
    const WbxmlNode body = node(AirSyncBase::Body,
        { node(AirSyncBase::Type, "1"),
            node(AirSyncBase::Data, QStringLiteral("body of %1").arg(serverId)) });
    return node(ItemOperations::Fetch,
        { node(ItemOperations::Status, status),
            node(AirSync::CollectionId, QString::fromLatin1(serverId).left(1)),
            node(AirSync::ServerId, serverId), node(ItemOperations::Properties, { body }) });
}

QByteArray fileReply(const QString &reference, const QByteArray &data)
{
    return reply({ node(ItemOperations::Fetch,
        { node(ItemOperations::Status, "1"), node(AirSyncBase::FileReference, reference),
            node(ItemOperations::Properties,
                { node(AirSyncBase::ContentType, "text/plain"),
                    node(ItemOperations::Data, data.toBase64().constData()) }) }) });
}

} // namespace

/** Which messages and files are asked for, and how the request ends if some of them do not come. */
class FetchMessagesRequestTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<RequestBed> mBed;

    void addMessage(quint64 id, const QString &serverId)
    {
        mBed->mail->serverUids.insert(id, serverId);
        EasEmailItem row;
        row.setServerId(serverId);
        row.setCollectionId(serverId.left(1));
        row.setLocalId(QString::number(id));
        QVERIFY(EasDatabase::instance()->addEmailItems(RequestBed::Account, { row }));
    }

    static QString reference(quint64 id, const char *location)
    {
        return StubMailStorage::reference(id, QString::fromLatin1(location));
    }

private Q_SLOTS:
    void init()
    {
        mBed = std::make_unique<RequestBed>(QStringList { ProtocolUtils::CommandItemOperations });
        QTRY_VERIFY(mBed->isOnline());
        mBed->mail->takesEmails = true;
        addMessage(1, "5:1");
        addMessage(2, "5:2");
        addMessage(3, "6:3");
    }
    void cleanup() { mBed.reset(); }

    void attachmentsOfAMessageShareOneRequestAndOneWrite()
    {
        mBed->mail->attachments = { { 1, { "1-2", "1-3" } }, { 2, { "2-2" } } };
        mBed->answer(reply({ messageNode("5:1"), messageNode("5:2") }));
        mBed->answer(fileReply(reference(1, "1-2"), "one"));
        mBed->answer(fileReply(reference(1, "1-3"), "two"));
        mBed->answer(fileReply(reference(2, "2-2"), "three"));
        FetchMessagesRequest request(RequestBed::Account, RequestBed::Id, { 1, 2 }, true);
        QList<FetchPartRequest *> parts;
        QObject::connect(&mBed->server, &ScriptedServer::received, &request, [&] {
            for (FetchPartRequest *part : request.findChildren<FetchPartRequest *>()) {
                if (!parts.contains(part))
                    parts.append(part);
            }
        });
        QCOMPARE(RequestBed::run(request), 0);
        QCOMPARE(parts.size(), 2); // one for each message
        QCOMPARE(mBed->mail->files,
            (QMap<QString, QByteArray> { { reference(1, "1-2"), "one" }, { reference(1, "1-3"), "two" },
                { reference(2, "2-2"), "three" } }));
        QCOMPARE(mBed->mail->writes, 2);
    }

    void aFileThatFailsLosesNoneOfThoseBefore()
    {
        mBed->mail->attachments = { { 1, { "1-2", "1-3", "1-4" } } };
        mBed->answer(reply({ messageNode("5:1") }));
        mBed->answer(fileReply(reference(1, "1-2"), "one"));
        mBed->answer(reply({ node(ItemOperations::Fetch, { node(ItemOperations::Status, "15") }) }));
        FetchMessagesRequest request(RequestBed::Account, RequestBed::Id, { 1 }, true);
        QCOMPARE(RequestBed::run(request), 15);
        QCOMPARE(mBed->mail->files.keys(), QStringList { reference(1, "1-2") });
    }

    void aRefusedMessageDoesNotHoldUpTheRest()
    {
        mBed->mail->attachments = { { 1, { "1-2" } }, { 2, { "2-2" } }, { 3, { "3-2" } } };
        mBed->answer(reply({ messageNode("5:1", "6"), messageNode("5:2") }));
        mBed->answer(reply({ messageNode("6:3") }));
        mBed->answer(fileReply(reference(2, "2-2"), "two"));
        mBed->answer(fileReply(reference(3, "3-2"), "three"));
        FetchMessagesRequest request(RequestBed::Account, RequestBed::Id, { 1, 2, 3 }, true);
        QCOMPARE(RequestBed::run(request), 6);
        QCOMPARE(mBed->mail->bodies.keys(), (QList<quint64> { 2, 3 }));
        QCOMPARE(mBed->mail->files.size(), 2);
        QCOMPARE(mBed->server.unexpected(), 0);
    }

    void aBodyThatCannotBeStoredIsAFailureOfThatMessage()
    {
        mBed->mail->lockedMessages = { 1 };
        mBed->answer(reply({ messageNode("5:1"), messageNode("5:2") }));
        FetchMessagesRequest request(RequestBed::Account, RequestBed::Id, { 1, 2 }, false);
        QCOMPARE(RequestBed::run(request), -2);
        QCOMPARE(mBed->mail->bodies.value(2), QStringLiteral("body of 5:2"));
    }

    void aMessageWithoutAnAnswerIsAFailureAndTheOthersCome()
    {
        mBed->answer(reply({ messageNode("5:2") }));
        mBed->answer(reply({ messageNode("6:3") }));
        FetchMessagesRequest request(RequestBed::Account, RequestBed::Id, { 1, 2, 3 }, false);
        QCOMPARE(RequestBed::run(request), -2);
        QCOMPARE(mBed->mail->bodies.keys(), (QList<quint64> { 2, 3 }));
    }
};

FENNEL_REGISTER_TEST(FetchMessagesRequestTest)
#include "fetchmessagesrequesttest.moc"
