// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/easdatabase.h"
#include "easitems/containers/easattachmentcontainer.h"
#include "easitems/eascalendaritem.h"
#include "easitems/eascontactsitem.h"
#include "easitems/easemailitem.h"
#include "support/databasefixture.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QtTest>

namespace {

constexpr EasAccountId Account = 5;

template <typename Item> QList<Item> oneItem()
{
    Item item;
    item.setServerId("1:1");
    item.setCollectionId("1");
    item.setLocalId("local");
    return { item };
}

QList<EasEmailItem> refiledEmail()
{
    QList<EasEmailItem> items = oneItem<EasEmailItem>();
    items.first().setCollectionId("2");
    items.first().appendChangedField(18);
    items.first().setPreviousServerId("1:1");
    return items;
}

EasAttachmentContainer attachment()
{
    EasAttachmentContainer container;
    container.setContentId("cid");
    container.setFileReference("ref");
    return container;
}

QList<EasFolderItem> oneFolder()
{
    EasFolderItem item;
    item.setServerId("1");
    item.setLocalId("local");
    return { item };
}

/** An operation of a table, and what is logged when its statement fails. */
struct Operation
{
    const char *name;
    const char *table;
    const char *whenItRuns;
    bool (*isRefused)(EasDatabase *db);
    /** Where it differs, the text for a statement that cannot be prepared. */
    const char *whenItIsPrepared = nullptr;
};

const Operation Changes[] = {
    { "addFolderItems", "collections", "can't add folder items for account",
        [](EasDatabase *db) {
            return !db->addFolderItems(Account, oneFolder());
        } },
    { "updateFolderItems", "collections", "can't update folder items for account",
        [](EasDatabase *db) {
            return !db->updateFolderItems(Account, oneFolder());
        } },
    { "deleteFolderItems", "collections", "can't delete folder items for account",
        [](EasDatabase *db) {
            return !db->deleteFolderItems(Account, { "1" });
        } },
    { "setSavedInStorage", "collections", "can't update folder items",
        [](EasDatabase *db) {
            return !db->setSavedInStorage(Account, "local", true);
        } },
    { "addEmailItems", "emails", "can't add email items for account",
        [](EasDatabase *db) {
            return !db->addEmailItems(Account, oneItem<EasEmailItem>());
        } },
    { "updateEmailItems", "emails", "can't update email items for account",
        [](EasDatabase *db) {
            return !db->updateEmailItems(Account, refiledEmail());
        } },
    { "updateMovedEmailItems", "emails", "can't update email items for account",
        [](EasDatabase *db) { return !db->updateMovedEmailItems(Account, refiledEmail()); },
        "can't select email items for account" },
    { "deleteEmailItems", "emails", "can't delete email items for account",
        [](EasDatabase *db) {
            return !db->deleteEmailItems(Account, { "1:1" });
        } },
    { "clearEmailFolder", "emails", "can't delete items for account",
        [](EasDatabase *db) {
            return !db->clearEmailFolder(Account, "1");
        } },
    { "addCalendarItems", "calendar", "can't add calendar items for account",
        [](EasDatabase *db) {
            return !db->addCalendarItems(Account, oneItem<EasCalendarItem>());
        } },
    { "updateCalendarItems", "calendar", "can't update calendar items for account",
        [](EasDatabase *db) {
            return !db->updateCalendarItems(Account, oneItem<EasCalendarItem>());
        } },
    { "deleteCalendarItems", "calendar", "can't delete calendar items for account",
        [](EasDatabase *db) {
            return !db->deleteCalendarItems(Account, { "1:1" });
        } },
    { "clearCalendarFolder", "calendar", "can't delete items for account",
        [](EasDatabase *db) {
            return !db->clearCalendarFolder(Account, "1");
        } },
    { "addContactsItems", "contacts", "Can't add contacts items for account:",
        [](EasDatabase *db) { return !db->addContactsItems(Account, oneItem<EasContactsItem>()); },
        "Can't execute PREPARE contacts query for account:" },
    { "updateContactsItems", "contacts", "can't update contacts items for account",
        [](EasDatabase *db) {
            return !db->updateContactsItems(Account, oneItem<EasContactsItem>());
        } },
    { "deleteContactsItems", "contacts", "can't delete contacts items for account",
        [](EasDatabase *db) {
            return !db->deleteContactsItems(Account, { "1:1" });
        } },
    { "clearContactsFolder", "contacts", "can't delete items for account",
        [](EasDatabase *db) {
            return !db->clearContactsFolder(Account, "1");
        } },
    { "addCalendarAttachment", "attachments", "Сan't EXECUTE add attachment for event:",
        [](EasDatabase *db) { return !db->addCalendarAttachment("local", attachment()); },
        "Сan't PREPARE add attachment for event:" },
    { "updateCalendarAttachmentFileRefernce", "attachments",
        "Сan't EXECUTE update attachment query for event:",
        [](EasDatabase *db) { return !db->updateCalendarAttachmentFileRefernce("local", attachment()); },
        "Сan't PREPARE update attachment query for event:" },
    { "updateCalendarAttachmentContentId", "attachments", "Сan't UPDATE attachment for event:",
        [](EasDatabase *db) {
            return !db->updateCalendarAttachmentContentId("local", attachment());
        } },
    { "deleteCalendarAttachmentByContentId", "attachments", "Сan't DELETE attachment by contentId for event:",
        [](EasDatabase *db) {
            return !db->deleteCalendarAttachmentByContentId("local", "cid");
        } },
    { "deleteCalendarAttachmentByFileReference", "attachments",
        "Сan't DELETE attachment by fileReference for event:",
        [](EasDatabase *db) {
            return !db->deleteCalendarAttachmentByFileReference("local", "ref");
        } },
    { "setFolderSyncKey", "collections", "can't update table collections Error:",
        [](EasDatabase *db) {
            db->setFolderSyncKey(Account, "2");
            return true;
        },
        "collections table is not initialized for account" },
    { "setEmailAccountId", "accounts", "can't update table accounts Error:",
        [](EasDatabase *db) {
            db->setEmailAccountId(Account, 2);
            return true;
        },
        "accounts table is not initialized." },
};

const char collections[] = "can't execute collections table query. Error:";
const char emails[] = "can't execute emails table query. Error:";
const char calendar[] = "Calendar table query failed, error:";
const char contacts[] = "can't execute contacts table query. Error:";

const Operation Lookups[] = {
    { "folderItemByLocalId", "collections", collections,
        [](EasDatabase *db) {
            return !db->folderItemByLocalId(Account, "local");
        } },
    { "folderItemByServerId", "collections", collections,
        [](EasDatabase *db) {
            return !db->folderItemByServerId(Account, "1");
        } },
    { "emailFolderItems", "collections", collections,
        [](EasDatabase *db) {
            return !db->emailFolderItems(Account);
        } },
    { "calendarFolderItems", "collections", "SQL request failed:",
        [](EasDatabase *db) {
            return !db->calendarFolderItems(Account);
        } },
    { "folderItemsByFolderType", "collections", collections,
        [](EasDatabase *db) {
            return !db->folderItemsByFolderType(Account, EasFolderItem::DefaultInboxFolder);
        } },
    { "folderTypeByServerId", "collections", collections,
        [](EasDatabase *db) {
            return !db->folderTypeByServerId(Account, "1");
        } },
    { "serverToLocalFolderIds", "collections", collections,
        [](EasDatabase *db) {
            return !db->serverToLocalFolderIds(Account);
        } },
    { "localToServerFolderIds", "collections", collections,
        [](EasDatabase *db) {
            return !db->localToServerFolderIds(Account);
        } },
    { "folderSyncKey", "collections", "can't get a folderSyncKey. Error:",
        [](EasDatabase *db) {
            return !db->folderSyncKey(Account);
        } },
    { "emailAccountId", "accounts", "can't execute accounts table query. Error:",
        [](EasDatabase *db) {
            return !db->emailAccountId(Account);
        } },
    { "cleanUp", "accounts", "can't execute accounts table query. Error:",
        [](EasDatabase *db) {
            return !db->cleanUp({});
        } },
    { "localEmailIds", "emails", emails,
        [](EasDatabase *db) {
            return !db->localEmailIds(Account, "1");
        } },
    { "serverToLocalEmailIds", "emails", emails,
        [](EasDatabase *db) {
            return !db->serverToLocalEmailIds(Account);
        } },
    { "localToServerEmailIds", "emails", emails,
        [](EasDatabase *db) {
            return !db->localToServerEmailIds(Account);
        } },
    { "folderServerIdByEmailServerId", "emails", emails,
        [](EasDatabase *db) {
            return !db->folderServerIdByEmailServerId(Account, "1:1");
        } },
    { "collectionServerIdFromEmailItemId", "emails", emails,
        [](EasDatabase *db) {
            return !db->collectionServerIdFromEmailItemId(Account, "1:1");
        } },
    { "localCalendarIds", "calendar", "can't execute calendar table query. Error:",
        [](EasDatabase *db) {
            return !db->localCalendarIds(Account, "1");
        } },
    { "serverToLocalCalendarIds", "calendar", calendar,
        [](EasDatabase *db) {
            return !db->serverToLocalCalendarIds(Account);
        } },
    { "localToServerCalendarIds", "calendar", "EAS DB query failed, error:",
        [](EasDatabase *db) {
            return !db->localToServerCalendarIds(Account);
        } },
    { "serverCalendarIdToCollectionIds", "calendar", calendar,
        [](EasDatabase *db) {
            return !db->serverCalendarIdToCollectionIds(Account);
        } },
    { "serverCalendarIdToCollectionId", "calendar", calendar,
        [](EasDatabase *db) {
            return !db->serverCalendarIdToCollectionId(Account, "1:1");
        } },
    { "localToServerCalendarId", "calendar", "EAS DB query failed, error:",
        [](EasDatabase *db) {
            return !db->localToServerCalendarId(Account, "local");
        } },
    { "calendarItemUpdateTime", "calendar", "SQL query failed, error:",
        [](EasDatabase *db) {
            return !db->calendarItemUpdateTime(Account, "local");
        } },
    { "localContactIds", "contacts", contacts,
        [](EasDatabase *db) {
            return !db->localContactIds(Account, "1");
        } },
    { "localToServerContactIds", "contacts", contacts,
        [](EasDatabase *db) {
            return !db->localToServerContactIds(Account, QString());
        } },
    { "serverToLocalContactIds", "contacts", contacts,
        [](EasDatabase *db) {
            return !db->serverToLocalContactIds(Account);
        } },
    { "localContactIdsToAvatarsUrls", "contacts", contacts,
        [](EasDatabase *db) {
            return !db->localContactIdsToAvatarsUrls(Account);
        } },
    { "folderServerIdByContactLocalId", "contacts", contacts,
        [](EasDatabase *db) {
            return !db->folderServerIdByContactLocalId(Account, "1:1");
        } },
    { "getAppDataType", "emails", "Can't exec getAppDataType() query for serverId:",
        [](EasDatabase *db) { return !db->getAppDataType("1:1"); },
        "Can't prepare getAppDataType() query for serverId:" },
    { "getAttachmentByFileReference", "attachments", "Can't execute GET attachment query for event:",
        [](EasDatabase *db) { return !db->getAttachmentByFileReference("local", "ref"); },
        "Can't execute PREPARE attachment query for event:" },
    { "getAttachmentByContentId", "attachments", "Can't execute GET attachment query for event:",
        [](EasDatabase *db) { return !db->getAttachmentByContentId("local", "cid"); },
        "Can't execute PREPARE attachment query for event:" },
    { "getCalendarAttachments", "attachments", "Can't execute GET attachments query for event:",
        [](EasDatabase *db) { return !db->getCalendarAttachments("local"); },
        "Can't execute PREPARE attachments query for event:" },
    { "isCalendarAttachmentExists", "attachments", "Сan't execute found attachment query for event:",
        [](EasDatabase *db) { return !db->isCalendarAttachmentExists("local", "cid"); },
        "Сan't prepare found attachment query for event:" },
};

template <std::size_t Count> void addRows(const Operation (&operations)[Count])
{
    QTest::addColumn<const Operation *>("operation");
    for (const Operation &operation : operations)
        QTest::newRow(operation.name) << &operation;
}

QString whenItIsPrepared(const Operation &operation)
{
    return operation.whenItIsPrepared ? operation.whenItIsPrepared : operation.whenItRuns;
}

} // namespace

Q_DECLARE_METATYPE(const Operation *)

/** Each operation on tables that are gone, that refuse each change, or whose rows cannot be read. */
class EasDatabaseFailureTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        mFixture = std::make_unique<DatabaseFixture>();
        mFixture->open();
    }

    void cleanup() { mFixture.reset(); }

    void aChangeIsRefused_data() { addRows(Changes); }

    void aChangeIsRefused()
    {
        QFETCH(const Operation *, operation);
        const QString table = operation->table;
        const QString whenItRuns = operation->whenItRuns;
        const QString subject = table == "attachments" ? "local" : "5";
        const bool isPlain = whenItRuns.contains("can't update table");
        fillTables();
        mFixture->execute({ refuse("INSERT", table), refuse("UPDATE", table), refuse("DELETE", table) });
        const QStringList before = mFixture->content();
        {
            const LogCollector log;
            QVERIFY(operation->isRefused(EasDatabase::instance()));
            QStringList pieces { whenItRuns };
            if (!isPlain)
                pieces << subject << ". Error:";
            QVERIFY2(log.contains(QtCriticalMsg, pieces << "refused"), qPrintable(log.texts().join('\n')));
        }
        QCOMPARE(mFixture->content(), before);

        mFixture->execute({ "DROP TABLE " + table });
        mFixture->closeConnection();
        const LogCollector log;
        QVERIFY(operation->isRefused(EasDatabase::instance()));
        QVERIFY2(log.contains(QtCriticalMsg, { whenItIsPrepared(*operation) }),
            qPrintable(log.texts().join('\n')));
        QVERIFY(log.contains(QtCriticalMsg, { "no such table", table }));
    }

    void aLookupCannotRead_data() { addRows(Lookups); }

    void aLookupCannotRead()
    {
        QFETCH(const Operation *, operation);
        const QString table = operation->table;
        const QString whenItRuns = operation->whenItRuns;
        fillTables();
        replaceByUnreadableView(table);
        mFixture->closeConnection();
        {
            const LogCollector log;
            QVERIFY(operation->isRefused(EasDatabase::instance()));
            QVERIFY2(log.contains(QtCriticalMsg, { whenItRuns, "integer overflow" }),
                qPrintable(log.texts().join('\n')));
        }
        mFixture->execute({ "DROP VIEW " + table });
        mFixture->closeConnection();
        const LogCollector log;
        QVERIFY(operation->isRefused(EasDatabase::instance()));
        QVERIFY2(log.contains(QtCriticalMsg, { whenItIsPrepared(*operation), "no such table" }),
            qPrintable(log.texts().join('\n')));
    }

    void aMapThatBreaksOffAfterItsFirstRowIsNotPassedOff()
    {
        mFixture->execute({ "DROP TABLE emails",
            "CREATE VIEW emails AS SELECT 5 AS account_id, 'server ' || n AS server_id, abs(n) AS local_id "
            "FROM (SELECT 1 AS n UNION ALL SELECT -9223372036854775807 - 1)" });
        const LogCollector log;
        QVERIFY(!EasDatabase::instance()->serverToLocalEmailIds(Account));
        QVERIFY(
            log.contains(QtCriticalMsg, { "can't execute emails table query. Error:", "integer overflow" }));
    }

    void anAccountRowThatCannotBeMadeIsLogged()
    {
        mFixture->execute({ refuse("INSERT", "accounts"), refuse("INSERT", "collections") });
        const LogCollector log;
        EasDatabase::instance()->onAccountAdded(Account);
        QVERIFY(log.contains(
            QtCriticalMsg, { "Can't add an account row for account", "5", ". Error:", "refused" }));
        QVERIFY(log.contains(QtWarningMsg, { "failed to initialize accounts table for account", "5" }));
        QVERIFY(log.contains(QtCriticalMsg, { "can't create a folderSyncKey row. Error:", "refused" }));
        QVERIFY(log.contains(QtWarningMsg, { "failed to initialize collections table for account", "5" }));
        QVERIFY(!EasDatabase::instance()->emailAccountId(Account));
        QVERIFY(log.contains(QtCriticalMsg, { "accounts table is not initialized" }));
        QVERIFY(!EasDatabase::instance()->folderSyncKey(Account));
        QVERIFY(log.contains(QtCriticalMsg, { "collections table is not initialized for account", "5" }));
    }

    void aFailedClearanceNamesTheFolderAndTheTable()
    {
        fillTables();
        mFixture->execute({ refuse("DELETE", "emails") });
        const LogCollector log;
        QVERIFY(!EasDatabase::instance()->clearEmailFolder(Account, "1"));
        QVERIFY(log.contains(QtCriticalMsg,
            { "can't delete items for account", "5", "in folder", "1", ", table", "emails", ". Error:" }));
    }

private:
    static QString refuse(const QString &change, const QString &table)
    {
        return QStringLiteral("CREATE TRIGGER refuse_%1_%2 BEFORE %1 ON %2 "
                              "BEGIN SELECT RAISE(ABORT, 'refused'); END")
            .arg(change, table);
    }

    void fillTables() const
    {
        mFixture->execute({ "INSERT INTO accounts VALUES (5, 5)",
            "INSERT INTO collections VALUES (NULL, 5, '', '', '', '', '7', 0, '', 0)",
            "INSERT INTO collections VALUES (NULL, 5, '1', '0', 'local', '', 'k', 2, 'Inbox', 1)",
            "INSERT INTO emails VALUES (NULL, 5, '1:1', '1', 'local')",
            "INSERT INTO calendar VALUES (NULL, 5, '1:1', '1', 'local', 1)",
            "INSERT INTO contacts VALUES (5, '1:1', '1', 'local', '')",
            "INSERT INTO attachments VALUES ('local', 'cid', 'ref')" });
    }

    /** A view of the table's name and columns whose first row cannot be computed. */
    void replaceByUnreadableView(const QString &table) const
    {
        QStringList columns =
            mFixture->rows(QStringLiteral("SELECT name FROM pragma_table_info('%1')").arg(table));
        columns.replaceInStrings(QRegularExpression("^(.*)$"), "abs(n) AS \\1");
        mFixture->execute({ "DROP TABLE " + table,
            QStringLiteral("CREATE VIEW %1 AS SELECT %2 FROM (SELECT -9223372036854775807 - 1 AS n)")
                .arg(table, columns.join(", ")) });
    }

    std::unique_ptr<DatabaseFixture> mFixture;
};

FENNEL_REGISTER_TEST(EasDatabaseFailureTest)
#include "easdatabasefailuretest.moc"
