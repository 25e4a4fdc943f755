// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/foldersyncrequest.h"
#include "requests/folderhierarchychanges.h"

#include "application/mapping/easdatabase.h"
#include "requests/syncrequest.h"
#include "support/hiddentable.h"
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
constexpr qulonglong Id = RequestBed::Id;

QByteArray reply(const char *status, const char *key = nullptr, const QVector<WbxmlNode> &changes = {})
{
    QVector<WbxmlNode> fields { node(FolderHierarchy::Status, status) };
    if (key)
        fields.append(node(FolderHierarchy::SyncKey, key));
    if (!changes.isEmpty())
        fields.append(node(FolderHierarchy::Changes, changes));
    return document(node(FolderHierarchy::FolderSync, fields));
}

QByteArray replyWithOneFolder(const char *key)
{
    return reply("1", key,
        { node(FolderHierarchy::Add,
            { node(FolderHierarchy::ServerId, "9"), node(FolderHierarchy::ParentId, "0"),
                node(FolderHierarchy::DisplayName, "New"), node(FolderHierarchy::Type, "12") }) });
}

/** The signals of a request, in order. */
template <typename SyncKind> QStringList signalsOf(SyncKind &request)
{
    QStringList seen;
    QObject::connect(&request, &SyncKind::syncStarted, [&seen] { seen.append(QStringLiteral("started")); });
    QObject::connect(
        &request, &SyncKind::syncCompleted, [&seen] { seen.append(QStringLiteral("completed")); });
    RequestBed::run(request);
    return seen;
}

} // namespace

/** What becomes of the answers to a request for the folders alone. */
class FolderSyncRequestTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<RequestBed> mBed;

    static QString key() { return *EasDatabase::instance()->folderSyncKey(Account); }

private Q_SLOTS:
    void init()
    {
        mBed = std::make_unique<RequestBed>(
            QStringList { QStringLiteral("FolderSync"), QStringLiteral("Sync") });
        EasDatabase::instance()->setFolderSyncKey(Account, QStringLiteral("7"));
        QTRY_VERIFY(mBed->isOnline());
    }

    void cleanup() { QCOMPARE(RequestBed::end(mBed), QString()); }

    void theStartIsToldBeforeTheEnd_data()
    {
        QTest::addColumn<bool>("foldersOnly");
        QTest::newRow("of a sync") << false;
        QTest::newRow("of a request for the folders") << true;
    }

    void theStartIsToldBeforeTheEnd()
    {
        QFETCH(bool, foldersOnly);
        // The key cannot be read, so that the request ends while it is being started.
        const HiddenTable hidden("collections");
        QStringList seen;
        if (foldersOnly) {
            FolderSyncRequest request(Account, Id);
            seen = signalsOf(request);
            QCOMPARE(request.status(), -2);
        } else {
            SyncRequest request(Account, Id);
            seen = signalsOf(request);
            QCOMPARE(request.status(), -2);
        }
        QCOMPARE(seen, QStringList({ QStringLiteral("started"), QStringLiteral("completed") }));
    }

    void theKeyIsStoredOnceTheFoldersAre()
    {
        mBed->answer(replyWithOneFolder("8"));
        FolderSyncRequest request(Account, Id);
        QCOMPARE(RequestBed::run(request), 0);
        QCOMPARE(key(), QStringLiteral("8"));
        QVERIFY(EasDatabase::instance()->serverToLocalFolderIds(Account)->contains(QStringLiteral("9")));
    }

    void aReplyWithoutFoldersLetsTheStoresRepairTheirs()
    {
        mBed->answer(reply("1", "8"));
        FolderSyncRequest request(Account, Id);
        QCOMPARE(RequestBed::run(request), 0);
        QCOMPARE(key(), QStringLiteral("8"));
        QCOMPARE(mBed->mail->folders.calls, 1);
        QCOMPARE(mBed->calendar->folders.calls, 1);
        QCOMPARE(mBed->contacts->folders.calls, 1);
    }

    void aStoreThatRefusesLeavesTheOldKey_data()
    {
        QTest::addColumn<QString>("store");
        QTest::addColumn<QString>("text");
        QTest::newRow("mail") << "mail"
                              << "can't update mail folders";
        QTest::newRow("calendar") << "calendar"
                                  << "failed to update folders in Calendar Storage";
        QTest::newRow("contacts") << "contacts"
                                  << "failed to update folders in Contact Storage";
    }

    void aStoreThatRefusesLeavesTheOldKey()
    {
        QFETCH(QString, store);
        QFETCH(QString, text);
        StubFolders &refusing = store == QLatin1String("mail") ? mBed->mail->folders
            : store == QLatin1String("calendar")               ? mBed->calendar->folders
                                                               : mBed->contacts->folders;
        refusing.accepts = false;
        mBed->answer(replyWithOneFolder("8"));
        const LogCollector log;
        FolderSyncRequest request(Account, Id);
        QCOMPARE(RequestBed::run(request), -2);
        QVERIFY2(log.contains(text), qPrintable(log.texts().join(QLatin1Char('\n'))));
        QCOMPARE(key(), QStringLiteral("7"));
        QVERIFY(!EasDatabase::instance()->serverToLocalFolderIds(Account)->contains(QStringLiteral("9")));
        // The later stores are not touched.
        QCOMPARE(mBed->contacts->folders.calls, store == QLatin1String("contacts") ? 1 : 0);
    }

    void aFolderThatItsStoreKeepsKeepsItsRow_data()
    {
        QTest::addColumn<QString>("store");
        QTest::addColumn<QString>("kept");
        QTest::newRow("mail") << "mail"
                              << "20";
        QTest::newRow("calendar") << "calendar"
                                  << "21";
        QTest::newRow("contacts") << "contacts"
                                  << "22";
    }

    void aFolderThatItsStoreKeepsKeepsItsRow()
    {
        QFETCH(QString, store);
        QFETCH(QString, kept);
        FolderChanges changes;
        for (const auto type : { EasFolderItem::UserCreatedMailFolder,
                 EasFolderItem::UserCreatedCalendarFolder, EasFolderItem::UserCreatedContactsFolder }) {
            EasFolderItem folder;
            folder.setServerId(QString::number(20 + changes.deleted.size()));
            folder.setType(type);
            QVERIFY(EasDatabase::instance()->addFolderItems(Account, { folder }));
            changes.deleted.append(folder.serverId());
        }
        StubFolders &refusing = store == QLatin1String("mail") ? mBed->mail->folders
            : store == QLatin1String("calendar")               ? mBed->calendar->folders
                                                               : mBed->contacts->folders;
        refusing.accepts = false;
        FolderHierarchyChanges hierarchy(*mBed->account, changes);
        QVERIFY(!hierarchy.updateStores(FolderHierarchyChanges::OnFailure::GoOn, "no mail"));
        QVERIFY(hierarchy.updateDatabase());
        // By the next reply, under the old key, it is looked for once more.
        const QStringList left = EasDatabase::instance()->serverToLocalFolderIds(Account)->keys();
        for (const QString &serverId : qAsConst(changes.deleted))
            QCOMPARE(left.contains(serverId), serverId == kept);
    }

    void aDatabaseThatRefusesLeavesTheOldKey()
    {
        mBed->database.refuse("INSERT", "collections");
        mBed->answer(replyWithOneFolder("8"));
        const LogCollector log;
        FolderSyncRequest request(Account, Id);
        QCOMPARE(RequestBed::run(request), -2);
        QVERIFY(log.contains(QStringLiteral("failed to update folders in EAS DB")));
        QVERIFY(log.contains(QStringLiteral("Couldn't process folder sync responce!")));
        QCOMPARE(key(), QStringLiteral("7"));
    }

    void aLostKeyClearsTheAccountAndAsksForItsItems()
    {
        EasFolderItem known;
        known.setServerId(QStringLiteral("1"));
        known.setLocalId(QStringLiteral("101"));
        known.setType(EasFolderItem::UserCreatedMailFolder);
        QVERIFY(EasDatabase::instance()->addFolderItems(Account, { known }));
        mBed->answer(reply("9"));
        mBed->answer(replyWithOneFolder("1"));
        QStringList seen;
        FolderSyncRequest request(Account, Id);
        connect(&request, &Request::requestCompleted, [&] { seen.append(QStringLiteral("end")); });
        connect(&request, &FolderSyncRequest::resyncFolders, [&] { seen.append(QStringLiteral("resync")); });

        mBed->clock.intervals.clear();
        QCOMPARE(RequestBed::run(request), 0);

        QCOMPARE(seen, QStringList({ QStringLiteral("end"), QStringLiteral("resync") }));
        QVERIFY(!EasDatabase::instance()->serverToLocalFolderIds(Account)->contains(QStringLiteral("1")));
        QVERIFY(EasDatabase::instance()->serverToLocalFolderIds(Account)->contains(QStringLiteral("9")));
        QCOMPARE(key(), QStringLiteral("1"));
        // At once: no repetition was waited for.
        QVERIFY(!mBed->clock.intervals.contains(5000));
    }

    void aFailureOfTheTransportIsItsOwnStatus()
    {
        ScriptedAnswer notFound;
        notFound.status = 404;
        mBed->server.answer(notFound);
        const LogCollector log;
        FolderSyncRequest request(Account, Id);
        QVERIFY(RequestBed::run(request) > 10000);
        QVERIFY(!log.contains(QStringLiteral("Unhandled status: ")));
    }
};

FENNEL_REGISTER_TEST(FolderSyncRequestTest)
#include "foldersyncrequesttest.moc"
