// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/easdatabase.h"
#include "requests/fetchmessagesrequest.h"
#include "requests/syncrequest.h"
#include "support/logcollector.h"
#include "support/requestbed.h"
#include "support/testmain.h"
#include "support/wbxmldocument.h"

#include <QtTest>

using namespace Wbxml;
using WbxmlDocument::document;
using WbxmlDocument::node;

namespace {

constexpr EasAccountId Account = RequestBed::Account;

} // namespace

/** Requests whose account goes while the server answers, before anybody has cancelled them. */
class VanishedAccountTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<RequestBed> mBed;

    /** The account goes when so many requests have reached the server. */
    void vanishAt(int requests)
    {
        connect(&mBed->server, &ScriptedServer::received, this, [this, requests] {
            if (mBed->server.requests().size() == requests)
                mBed->manager->storage->forget(Account);
        });
    }

private Q_SLOTS:
    void init()
    {
        mBed = std::make_unique<RequestBed>(
            QStringList { QStringLiteral("Sync"), QStringLiteral("ItemOperations") });
        EasFolderItem inbox;
        inbox.setServerId(QStringLiteral("5"));
        inbox.setLocalId(QStringLiteral("101"));
        inbox.setType(EasFolderItem::DefaultInboxFolder);
        QVERIFY(EasDatabase::instance()->addFolderItems(Account, { inbox }));
        EasDatabase::instance()->setFolderSyncKey(Account, QStringLiteral("7"));
        QTRY_VERIFY(mBed->isOnline());
    }

    void cleanup() { mBed.reset(); }

    void aSyncWithFirstKeysEnds()
    {
        mBed->answer(QByteArray());
        mBed->answer(document(node(AirSync::Sync,
            { node(AirSync::Collections,
                { node(AirSync::Collection,
                    { node(AirSync::SyncKey, "1"), node(AirSync::CollectionId, "5"),
                        node(AirSync::Status, "1") }) }) })));
        vanishAt(2);
        SyncRequest request(Account, RequestBed::Id);
        request.setSyncFolders({ QStringLiteral("101") });
        const LogCollector log;
        QCOMPARE(RequestBed::run(request), -2);
        QCOMPARE(mBed->server.requests().size(), 2);
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("No account") }));
    }

    void aFetchOfMessagesEnds()
    {
        mBed->mail->serverUids.insert(1, QStringLiteral("5:1"));
        mBed->answer(document(node(ItemOperations::ItemOperations,
            { node(ItemOperations::Status, "1"),
                node(ItemOperations::Response,
                    { node(ItemOperations::Fetch,
                        { node(ItemOperations::Status, "1"), node(AirSync::CollectionId, "5"),
                            node(AirSync::ServerId, "5:1") }) }) })));
        vanishAt(1);
        FetchMessagesRequest request(Account, RequestBed::Id, { 1 }, true);
        const LogCollector log;
        QCOMPARE(RequestBed::run(request), -2);
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("No account") }));
    }
};

FENNEL_REGISTER_TEST(VanishedAccountTest)
#include "vanishedaccounttest.moc"
