// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/easdatabase.h"
#include "requests/foldercreaterequest.h"
#include "requests/folderdeleterequest.h"
#include "requests/folderupdaterequest.h"
#include "support/logcollector.h"
#include "support/requestbed.h"
#include "support/testmain.h"
#include "support/wbxmldocument.h"

#include <QSignalSpy>
#include <QtTest>

using namespace Wbxml;
using WbxmlDocument::document;
using WbxmlDocument::node;

namespace {

constexpr EasAccountId Account = RequestBed::Account;
constexpr qulonglong Id = RequestBed::Id;

enum Kind { Create, Delete, Update };

const Token Roots[] = { FolderHierarchy::FolderCreate, FolderHierarchy::FolderDelete,
    FolderHierarchy::FolderUpdate };

QByteArray reply(Kind kind, const char *status, const char *key = nullptr, const char *serverId = nullptr)
{
    QVector<WbxmlNode> fields { node(FolderHierarchy::Status, status) };
    if (key)
        fields.append(node(FolderHierarchy::SyncKey, key));
    if (serverId)
        fields.append(node(FolderHierarchy::ServerId, serverId));
    return document(node(Roots[kind], fields));
}

EasFolderItem folder(const char *serverId, const char *parentId, const char *localId, int type)
{
    EasFolderItem item;
    item.setServerId(QString::fromLatin1(serverId));
    item.setServerParentId(QString::fromLatin1(parentId));
    item.setLocalId(QString::fromLatin1(localId));
    item.setType(EasFolderItem::FolderType(type));
    item.setDisplayName(QStringLiteral("folder ") + item.serverId());
    item.setSavedInStorage(true);
    return item;
}

} // namespace

/** What a client's folder calls do on the server, in the stores and in the mapping database. */
class FolderManagementRequestsTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<RequestBed> mBed;

    static EasDatabase &database() { return *EasDatabase::instance(); }
    static QString key() { return *database().folderSyncKey(Account); }
    QStringList folders() const
    {
        const QMap<QString, QString> known = *database().serverToLocalFolderIds(Account);
        QStringList lines;
        for (auto it = known.cbegin(); it != known.cend(); ++it)
            lines.append(it.key() + QLatin1Char('=') + it.value());
        return lines;
    }
    StubFolders &store(int type) const
    {
        return type == 13 ? mBed->calendar->folders
            : type == 14  ? mBed->contacts->folders
                          : mBed->mail->folders;
    }
    int storeCalls() const
    {
        return mBed->mail->folders.calls + mBed->calendar->folders.calls + mBed->contacts->folders.calls;
    }

    void answer(const QByteArray &body) { mBed->answer(body); }
    QStringList sent() const { return mBed->sent(); }

    static std::unique_ptr<Request> make(Kind kind)
    {
        switch (kind) {
        case Create:
            return std::make_unique<FolderCreateRequest>(
                Account, QStringLiteral("101"), QStringLiteral("New"), 0, Id);
        case Delete:
            return std::make_unique<FolderDeleteRequest>(Account, QStringLiteral("101"), Id);
        case Update:
            break;
        }
        return std::make_unique<FolderUpdateRequest>(
            Account, QStringLiteral("101"), QStringLiteral("102"), QStringLiteral("New"), Id);
    }

    static int run(Request &request) { return RequestBed::run(request); }
    static int run(const std::unique_ptr<Request> &request) { return run(*request); }

    static void kinds()
    {
        QTest::addColumn<int>("kind");
        QTest::newRow("create") << int(Create);
        QTest::newRow("delete") << int(Delete);
        QTest::newRow("update") << int(Update);
    }

private Q_SLOTS:
    void init()
    {
        mBed = std::make_unique<RequestBed>(QStringList {
            QStringLiteral("FolderCreate"), QStringLiteral("FolderDelete"), QStringLiteral("FolderUpdate") });
        database().setFolderSyncKey(Account, QStringLiteral("7"));
        QVERIFY(database().addFolderItems(Account,
            { folder("1", "0", "101", 12), folder("2", "0", "102", 12), folder("3", "1", "103", 12),
                folder("4", "3", "cal", 13), folder("5", "0", "people", 14), folder("6", "0", "", 12) }));
        QTRY_VERIFY(mBed->isOnline());
    }

    void cleanup() { QCOMPARE(RequestBed::end(mBed), QString()); }

    void aFolderOfEachKindIsCreated_data()
    {
        QTest::addColumn<uint>("kind");
        QTest::addColumn<int>("type");
        QTest::newRow("mail") << 0U << 12;
        QTest::newRow("events") << 1U << 13;
        QTest::newRow("contacts") << 2U << 14;
    }

    void aFolderOfEachKindIsCreated()
    {
        QFETCH(uint, kind);
        QFETCH(int, type);
        answer(reply(Create, "1", "8", "20"));
        LogCollector log;
        FolderCreateRequest request(Account, QStringLiteral("101"), QStringLiteral("New"), kind, Id);
        QCOMPARE(run(request), 0);
        QCOMPARE(sent(),
            QStringList(
                QStringLiteral("FolderCreate(SyncKey=7,ParentId=1,DisplayName=New,Type=%1)").arg(type)));
        QCOMPARE(store(type).changes, QStringList(QStringLiteral("+20 1 New %1").arg(type)));
        QCOMPARE(storeCalls(), 1);
        QVERIFY(folders().contains(QStringLiteral("20=local-20")));
        QCOMPARE(int(*database().folderTypeByServerId(Account, QStringLiteral("20"))), type);
        QCOMPARE(key(), QStringLiteral("8"));
        QVERIFY(log.contains(QStringLiteral("Success:  true")));
    }

    void aFolderBelowTheRootSendsZero()
    {
        answer(reply(Create, "1", "8", "20"));
        LogCollector log;
        FolderCreateRequest request(Account, QStringLiteral("0"), QStringLiteral("New"), 0, Id);
        QCOMPARE(run(request), 0);
        QCOMPARE(sent(),
            QStringList(QStringLiteral("FolderCreate(SyncKey=7,ParentId=0,DisplayName=New,Type=12)")));
        QVERIFY(log.contains(QStringLiteral("Local folder id is 0, so parent folder is a root folder")));
    }

    void aFolderThatIsKnownAlreadyIsNoSecondOne()
    {
        answer(reply(Create, "1", "8", "2"));
        FolderCreateRequest request(Account, QStringLiteral("0"), QStringLiteral("New"), 0, Id);
        QCOMPARE(run(request), 0);
        QCOMPARE(mBed->mail->folders.changes, QStringList(QStringLiteral("*2 0 New")));
        QCOMPARE(folders().filter(QStringLiteral("2=")), QStringList(QStringLiteral("2=102")));
    }

    void aReplyThatDoesNotNameTheFolderLeavesTheKey()
    {
        answer(reply(Create, "1", "8"));
        QCOMPARE(run(make(Create)), -2);
        QCOMPARE(key(), QStringLiteral("7"));
        QCOMPARE(storeCalls(), 0);
    }

    void aFolderIsDeletedWithWhatIsBelowIt()
    {
        answer(reply(Delete, "1", "8"));
        QCOMPARE(run(make(Delete)), 0);
        QCOMPARE(sent(), QStringList(QStringLiteral("FolderDelete(SyncKey=7,ServerId=1)")));
        QCOMPARE(mBed->mail->folders.changes, QStringList({ QStringLiteral("-1"), QStringLiteral("-3") }));
        QCOMPARE(mBed->calendar->folders.changes, QStringList(QStringLiteral("-4")));
        QCOMPARE(mBed->contacts->folders.calls, 0);
        for (const char *gone : { "1", "3", "4" })
            QVERIFY(
                database().folderItemByServerId(Account, QString::fromLatin1(gone))->serverId().isEmpty());
        QVERIFY(folders().contains(QStringLiteral("2=102")));
        QVERIFY(folders().contains(QStringLiteral("5=people")));
        QCOMPARE(key(), QStringLiteral("8"));
    }

    void aFolderOfAnotherKindIsDeleted()
    {
        answer(reply(Delete, "1", "8"));
        FolderDeleteRequest request(Account, QStringLiteral("people"), Id);
        QCOMPARE(run(request), 0);
        QCOMPARE(mBed->contacts->folders.changes, QStringList(QStringLiteral("-5")));
        QCOMPARE(storeCalls(), 1);
    }

    void aFolderIsRenamedAndMoved()
    {
        answer(reply(Update, "1", "8"));
        QCOMPARE(run(make(Update)), 0);
        QCOMPARE(sent(),
            QStringList(QStringLiteral("FolderUpdate(SyncKey=7,ServerId=1,ParentId=2,DisplayName=New)")));
        QCOMPARE(mBed->mail->folders.changes, QStringList(QStringLiteral("*1 2 New")));
        QCOMPARE(storeCalls(), 1);
        const EasFolderItem row = *database().folderItemByServerId(Account, QStringLiteral("1"));
        QCOMPARE(row.displayName(), QStringLiteral("New"));
        QCOMPARE(row.localId(), QStringLiteral("101"));
        QCOMPARE(int(row.type()), 12);
        QVERIFY(row.savedInStorage());
        QCOMPARE(database().serverFolderParentIds(Account)->value(QStringLiteral("1")), QStringLiteral("2"));
        QCOMPARE(key(), QStringLiteral("8"));
    }

    void aFolderIsMovedToTheRoot()
    {
        answer(reply(Update, "1", "8"));
        FolderUpdateRequest request(
            Account, QStringLiteral("cal"), QStringLiteral("0"), QStringLiteral("New"), Id);
        QCOMPARE(run(request), 0);
        QCOMPARE(mBed->calendar->folders.changes, QStringList(QStringLiteral("*4 0 New")));
        QCOMPARE(storeCalls(), 1);
    }

    void aFolderWithoutANewParentStaysWhereItIs()
    {
        answer(reply(Update, "1", "8"));
        FolderUpdateRequest request(Account, QStringLiteral("103"), QString(), QStringLiteral("New"), Id);
        QCOMPARE(run(request), 0);
        QCOMPARE(sent(),
            QStringList(QStringLiteral("FolderUpdate(SyncKey=7,ServerId=3,ParentId=1,DisplayName=New)")));
    }

    void argumentsThatAreNotValidEndBeforeTheServerIsAsked_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("text");
        const auto row = [](const char *name, const QStringList &arguments, Kind kind, const char *text) {
            QTest::newRow(name) << arguments << int(kind) << QString::fromLatin1(text);
        };
        const QString name = QStringLiteral("New");
        row("a folder without a name", { QStringLiteral("101"), QString(), QStringLiteral("0") }, Create,
            "Display name is empty, this is an invalid request data");
        row("a parent that is not known", { QStringLiteral("999"), name, QStringLiteral("0") }, Create,
            "failed to find parent folder id by local id");
        row("an empty parent", { QString(), name, QStringLiteral("0") }, Create,
            "failed to find parent folder id by local id");
        row("a kind that cannot be made", { QStringLiteral("101"), name, QStringLiteral("3") }, Create,
            "Unsupported custom folder type in folder create request");
        row("a folder to delete that is not known", { QStringLiteral("999") }, Delete,
            "failed to find folder id by local id");
        row("no folder to delete", { QString() }, Delete, "failed to find folder id by local id");
        row("a new name that is empty", { QStringLiteral("101"), QStringLiteral("0"), QString() }, Update,
            "Display name is empty, this is an invalid request data");
        row("a folder to rename that is not known", { QStringLiteral("999"), QStringLiteral("0"), name },
            Update, "failed to find folder id by local id");
        row("a new parent that is not known", { QStringLiteral("101"), QStringLiteral("999"), name }, Update,
            "failed to find parent folder id by local id");
    }

    void argumentsThatAreNotValidEndBeforeTheServerIsAsked()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, kind);
        QFETCH(QString, text);
        std::unique_ptr<Request> request;
        if (kind == Create)
            request = std::make_unique<FolderCreateRequest>(
                Account, arguments.at(0), arguments.at(1), arguments.at(2).toUInt(), Id);
        else if (kind == Delete)
            request = std::make_unique<FolderDeleteRequest>(Account, arguments.at(0), Id);
        else
            request = std::make_unique<FolderUpdateRequest>(
                Account, arguments.at(0), arguments.at(1), arguments.at(2), Id);
        LogCollector log;
        QCOMPARE(run(request), -3);
        QVERIFY2(log.contains(text), qPrintable(text));
        QVERIFY(sent().isEmpty());
    }

    void aRefusalEndsWithoutAChange_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QByteArray>("status");
        QTest::addColumn<QStringList>("text");
        const auto row = [](const char *name, Kind kind, const char *status, const QStringList &text) {
            QTest::newRow(name) << int(kind) << QByteArray(status) << text;
        };
        const auto one = [](const char *text) {
            return QStringList(QString::fromLatin1(text));
        };
        const QStringList exists { QStringLiteral("Folder with a name"), QStringLiteral("New"),
            QStringLiteral("already exists on a server, need to request a new name") };
        const QStringList absent { QStringLiteral("Folder does not exist:"), QStringLiteral("1") };
        row("create 0", Create, "0", one("Undefined FolderCreate status. Something went wrong."));
        row("create 2", Create, "2", exists);
        row("create 3", Create, "3", one("Parent folder is a recipient information folder"));
        row("create 5", Create, "5", one("Invalid parent folder id."));
        row("create 6", Create, "6", one("Server error. Try again later or run sync request first"));
        row("create 9", Create, "9", one("wrong sync key, need to resync account"));
        row("create 10", Create, "10", one("Sent a bad request. Tried to create a default folder?"));
        row("create 11", Create, "11", one("Unknown error on the server."));
        row("create 12", Create, "12", one("Unusual back-end issue on the server."));
        row("delete 0", Delete, "0", one("Undefined FolderDelete status. Something went wrong."));
        row("delete 2", Delete, "2", one("Folder id is a special folder."));
        row("delete 3", Delete, "3", one("Folder id is a special folder."));
        row("delete 4", Delete, "4", absent);
        row("delete 6", Delete, "6", one("Server error. Try again later or run sync request first"));
        row("delete 9", Delete, "9", one("wrong sync key, need to resync account"));
        row("delete 10", Delete, "10", one("Sent a bad request. Tried to delete a default folder?"));
        row("delete 11", Delete, "11", one("Unknown error on the server."));
        row("update 0", Update, "0", one("Undefined FolderUpdate status. Something went wrong."));
        row("update 2", Update, "2", exists);
        row("update 3", Update, "3", one("Folder id is a special folder."));
        row("update 4", Update, "4", absent);
        row("update 5", Update, "5",
            { QStringLiteral("Parent folder does not exist:"), QStringLiteral("2") });
        row("update 6", Update, "6", one("Server error. Try again later or run sync request first"));
        row("update 9", Update, "9", one("Wrong sync key, need to resync account"));
        row("update 10", Update, "10", one("Sent a bad request. Tried to update a default folder?"));
        row("update 11", Update, "11", one("Unknown error on the server."));
    }

    void aRefusalEndsWithoutAChange()
    {
        QFETCH(int, kind);
        QFETCH(QByteArray, status);
        QFETCH(QStringList, text);
        const QStringList before = folders();
        answer(reply(Kind(kind), status.constData()));
        LogCollector log;
        QCOMPARE(run(make(Kind(kind))), -3);
        QVERIFY2(log.contains(QtWarningMsg, text), qPrintable(log.texts().join(QLatin1Char('\n'))));
        QCOMPARE(folders(), before);
        QCOMPARE(storeCalls(), 0);
        QCOMPARE(key(), QStringLiteral("7"));
    }

    void anEmptyReplyIsNoSuccess_data() { kinds(); }
    void anEmptyReplyIsNoSuccess()
    {
        QFETCH(int, kind);
        answer(QByteArray());
        QCOMPARE(run(make(Kind(kind))), -3);
        QCOMPARE(key(), QStringLiteral("7"));
    }

    void theCommonStatuses_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QByteArray>("status");
        QTest::addColumn<int>("end");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("repeated");
        const QString noRetry = QStringLiteral("server error. We shouldn't retry later. Completing request");
        const QString device =
            QStringLiteral("invalid Device ID or Type. Trying to update Device information");
        const QString later =
            QStringLiteral("we should try to send command again later. Timeout (in mseconds):");
        const char *const names[] = { "create", "delete", "update" };
        for (const int kind : { Create, Delete, Update }) {
            const auto row = [&](const char *status, int end, const QString &text, bool repeated) {
                QTest::newRow(qPrintable(QStringLiteral("%1 %2").arg(
                    QString::fromLatin1(names[kind]), QString::fromLatin1(status))))
                    << kind << QByteArray(status) << end << text << repeated;
            };
            row("106", 106, noRetry, false);
            row("110", 110, noRetry, false);
            row("108", 0, device, true);
            row("109", 0, device, true);
            row("111", 0, later, true);
            row("8", 8, QStringLiteral("Unhandled status: "), false);
        }
    }

    void theCommonStatuses()
    {
        QFETCH(int, kind);
        QFETCH(QByteArray, status);
        QFETCH(int, end);
        QFETCH(QString, text);
        QFETCH(bool, repeated);
        answer(reply(Kind(kind), status.constData()));
        if (repeated)
            answer(reply(Kind(kind), "1", "8", "20"));
        LogCollector log;
        mBed->clock.intervals.clear();
        QCOMPARE(run(make(Kind(kind))), end);
        QVERIFY2(log.contains(text), qPrintable(log.texts().join(QLatin1Char('\n'))));
        QCOMPARE(mBed->server.requests().size(), repeated ? 2 : 1);
        QCOMPARE(key(), repeated ? QStringLiteral("8") : QStringLiteral("7"));
        if (repeated) {
            QVERIFY(mBed->clock.intervals.contains(5000));
            QVERIFY(log.contains(QStringLiteral("trying to send command again. Attempt:  1")));
        }
    }

    void theAttemptsHaveAnEnd()
    {
        for (int i = 0; i < 6; ++i)
            answer(reply(Delete, "111"));
        QCOMPARE(run(make(Delete)), 111);
        QCOMPARE(mBed->server.requests().size(), 6);
        QCOMPARE(key(), QStringLiteral("7"));
    }

    void aStoreThatRefusesKeepsDatabaseAndKey_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("text");
        const auto row = [](const char *name, Kind kind, int type, const char *text) {
            QTest::newRow(name) << int(kind) << type << QString::fromLatin1(text);
        };
        row("create mail", Create, 12, "Failed to create mail folder");
        row("create events", Create, 13, "Failed to create calendar folder");
        row("create contacts", Create, 14, "Failed to create contact folder");
        row("delete mail", Delete, 12, "Failed to delete mail folder");
        row("delete events", Delete, 13, "Failed to delete calendar folder");
        row("delete contacts", Delete, 14, "Failed to delete contacts folder");
        row("update mail", Update, 12, "Failed to update mail folder");
        row("update events", Update, 13, "Failed to update calendar folder");
        row("update contacts", Update, 14, "Failed to update contacts folder");
    }

    void aStoreThatRefusesKeepsDatabaseAndKey()
    {
        QFETCH(int, kind);
        QFETCH(int, type);
        QFETCH(QString, text);
        const QString name = QStringLiteral("New");
        const QString root = QStringLiteral("0");
        const QString local = QString::fromLatin1(type == 13 ? "cal" : type == 14 ? "people" : "102");
        std::unique_ptr<Request> request;
        if (kind == Create)
            request = std::make_unique<FolderCreateRequest>(Account, root, name, uint(type - 12), Id);
        else if (kind == Delete)
            request = std::make_unique<FolderDeleteRequest>(Account, local, Id);
        else
            request = std::make_unique<FolderUpdateRequest>(Account, local, root, name, Id);
        store(type).accepts = false;
        const QStringList before = folders();
        answer(reply(Kind(kind), "1", "8", "20"));
        LogCollector log;
        QCOMPARE(run(request), -2);
        QVERIFY2(log.contains(QtCriticalMsg, { text }), qPrintable(text));
        QCOMPARE(folders(), before);
        QCOMPARE(storeCalls(), 1);
        QCOMPARE(key(), QStringLiteral("7"));
    }

    void aMissingStoreKeepsTheKey_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("calendar") << QStringLiteral("CalendarStorage is null");
        QTest::newRow("contacts") << QStringLiteral("ContactStorage is null");
        QTest::newRow("mail") << QStringLiteral("MailStorage is null");
    }

    void aMissingStoreKeepsTheKey()
    {
        QFETCH(QString, text);
        if (text.startsWith(QLatin1Char('M')))
            mBed->account->mails.reset();
        else if (text.startsWith(QStringLiteral("Ca")))
            mBed->account->events.reset();
        else
            mBed->account->people.reset();
        answer(reply(Create, "1", "8", "20"));
        LogCollector log;
        QCOMPARE(run(make(Create)), -2);
        QVERIFY(log.contains(QtCriticalMsg, { text }));
        QCOMPARE(key(), QStringLiteral("7"));
        QCOMPARE(storeCalls(), 0);
    }

    void aDatabaseThatRefusesKeepsTheKey_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("trigger");
        QTest::addColumn<QString>("text");
        QTest::newRow("create") << int(Create) << QStringLiteral("INSERT")
                                << QStringLiteral("failed to update created folder in EAS DB");
        QTest::newRow("create, and the key") << int(Create) << QStringLiteral("UPDATE")
                                             << QStringLiteral("failed to update created folder in EAS DB");
        QTest::newRow("delete, and the key") << int(Delete) << QStringLiteral("UPDATE")
                                             << QStringLiteral("failed to update deleted folder in EAS DB");
        QTest::newRow("delete") << int(Delete) << QStringLiteral("DELETE")
                                << QStringLiteral("failed to update deleted folder in EAS DB");
        QTest::newRow("update") << int(Update) << QStringLiteral("UPDATE")
                                << QStringLiteral("failed to update changed folder in EAS DB");
    }

    void aDatabaseThatRefusesKeepsTheKey()
    {
        QFETCH(int, kind);
        QFETCH(QString, trigger);
        QFETCH(QString, text);
        mBed->database.refuse(qPrintable(trigger), "collections");
        answer(reply(Kind(kind), "1", "8", "20"));
        LogCollector log;
        QCOMPARE(run(make(Kind(kind))), -2);
        QVERIFY2(log.contains(QtCriticalMsg, { text }), qPrintable(text));
        QCOMPARE(key(), QStringLiteral("7"));
        QCOMPARE(mBed->mail->folders.calls, 1);
    }

    void theInitialKeyOfAServerIsNotStored_data() { kinds(); }
    void theInitialKeyOfAServerIsNotStored()
    {
        QFETCH(int, kind);
        answer(reply(Kind(kind), "1", "0", "20"));
        QCOMPARE(run(make(Kind(kind))), 0);
        // It would stand for an account that is half cleared, and the next FolderSync would clear the rest.
        QCOMPARE(key(), QStringLiteral("7"));
        QCOMPARE(mBed->mail->folders.calls, 1);
    }

    void aCancelledRequestHasOneEnd_data() { kinds(); }
    void aCancelledRequestHasOneEnd()
    {
        QFETCH(int, kind);
        mBed->answerNever();
        const std::unique_ptr<Request> request = make(Kind(kind));
        QSignalSpy completed(request.get(), &Request::requestCompleted);
        request->setParent(mBed->manager);
        request->start();
        QTRY_COMPARE(mBed->server.requests().size(), 1);
        request->cancel();
        QCOMPARE(completed.count(), 1);
        QCOMPARE(request->status(), -4);
        QCOMPARE(key(), QStringLiteral("7"));
    }

    void aServerWithoutTheCommandIsNotAsked_data() { kinds(); }
    void aServerWithoutTheCommandIsNotAsked()
    {
        QFETCH(int, kind);
        mBed->account->negotiated({ QStringLiteral("Sync") });
        QCOMPARE(run(make(Kind(kind))), -8);
        QVERIFY(sent().isEmpty());
    }
};

FENNEL_REGISTER_TEST(FolderManagementRequestsTest)
#include "foldermanagementrequeststest.moc"
