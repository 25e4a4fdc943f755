// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/easemailitem.h"
#include "easitems/easfolderitem.h"
#include "storages/mail/mailstorageimpl.h"
#include "support/fakeaccount.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>
#include <memory>
#include <thread>

namespace {

/** Runs a function on a thread of its own, whose mail store finds a file where its folder should be. */
void withoutStore(const std::function<void()> &function)
{
    QTemporaryDir folder;
    QFile file(folder.filePath("file"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const QByteArray before = qgetenv("QMF_DATA");
    qputenv("QMF_DATA", file.fileName().toLocal8Bit());
    std::thread(function).join();
    qputenv("QMF_DATA", before);
}

using Operation = std::function<bool(MailStorageImpl &)>;

struct NamedOperation
{
    const char *name;
    /** True if the operation gave nothing, as it has to. */
    Operation refused;
};

const NamedOperation operations[] = {
    { "updateFolders",
        [](MailStorageImpl &storage) {
            QList<EasFolderItem> added;
            QList<EasFolderItem> changed;
            return !storage.updateFolders(added, changed, {});
        } },
    { "updateEmails",
        [](MailStorageImpl &storage) {
            QList<EasEmailItem> added;
            QList<EasEmailItem> changed;
            return !storage.updateEmails(added, changed, {});
        } },
    { "addSearchResults",
        [](MailStorageImpl &storage) {
            QList<EasEmailItem> items;
            QList<quint64> ids;
            return !storage.addSearchResults(items, ids);
        } },
    { "successfullyUpdatedEmails",
        [](MailStorageImpl &storage) {
            QList<EasEmailItem> items;
            return !storage.successfullyUpdatedEmails(items);
        } },
    { "addedEmails",
        [](MailStorageImpl &storage) {
            return storage.addedEmails("1")->isEmpty();
        } },
    { "updatedEmails",
        [](MailStorageImpl &storage) {
            return storage.updatedEmails("1")->isEmpty();
        } },
    { "movedEmails",
        [](MailStorageImpl &storage) {
            return storage.movedEmails()->isEmpty();
        } },
    { "deletedEmails",
        [](MailStorageImpl &storage) {
            return storage.deletedEmails("1")->isEmpty();
        } },
    { "purgeDeletedEmails",
        [](MailStorageImpl &storage) {
            return !storage.purgeDeletedEmails({ KeptEmailId("1") });
        } },
    { "deleteEmailsByLocalIds",
        [](MailStorageImpl &storage) {
            return !storage.deleteEmailsByLocalIds({ 1 });
        } },
    { "addedFolders",
        [](MailStorageImpl &storage) {
            return storage.addedFolders().isEmpty();
        } },
    { "queryMessage",
        [](MailStorageImpl &storage) {
            return storage.queryMessage("1").localId().isEmpty();
        } },
    { "smartQueryMessage",
        [](MailStorageImpl &storage) {
            return storage.smartQueryMessage("1").localId().isEmpty();
        } },
    { "isReply",
        [](MailStorageImpl &storage) {
            return !storage.isReply("1");
        } },
    { "isForward",
        [](MailStorageImpl &storage) {
            return !storage.isForward("1");
        } },
    { "updateMovedEmails",
        [](MailStorageImpl &storage) {
            return !storage.updateMovedEmails({});
        } },
    { "updateBodyPart",
        [](MailStorageImpl &storage) {
            return !storage.updateBodyPart(1, EasBodyContainer());
        } },
    { "updateMessagePart",
        [](MailStorageImpl &storage) {
            return !storage.updateMessagePart(1, "1", "a/b", QByteArray("x"), "n");
        } },
    { "queryAttachmentsLocations",
        [](MailStorageImpl &storage) {
            return storage.queryAttachmentsLocations(1, false).isEmpty();
        } },
    { "isAttachmentDownloaded",
        [](MailStorageImpl &storage) {
            return !storage.isAttachmentDownloaded(1, "1");
        } },
    { "isAttachmentPart",
        [](MailStorageImpl &storage) {
            return storage.isAttachmentPart(1, "1") == EasItemsCommon::TUndefined;
        } },
    { "fileReferenceFromLocation",
        [](MailStorageImpl &storage) {
            return storage.fileReferenceFromLocation(1, "1").isEmpty();
        } },
    { "serverUidFromMessageId",
        [](MailStorageImpl &storage) {
            return storage.serverUidFromMessageId(1).isEmpty();
        } },
    { "estimatedDataSizeFromLocation",
        [](MailStorageImpl &storage) {
            return storage.estimatedDataSizeFromLocation(1, "1") == 0;
        } },
    { "foldersToSynchronize",
        [](MailStorageImpl &storage) {
            return !storage.foldersToSynchronize();
        } },
    { "cleanUpAccounts",
        [](MailStorageImpl &) {
            return !MailStorageImpl::cleanUpAccounts({ 1 });
        } },
};

} // namespace

/** The device's mail store did not start: nothing is done, and each operation says so. */
class MailStorageOutageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theStartSaysWhy()
    {
        LogCollector log;
        withoutStore([] {
            FakeAccount account(1);
            const MailStorageImpl storage(&account);
            QVERIFY(!storage.initialized());
        });
        QVERIFY(log.contains(QtCriticalMsg, { "can't initialize MailStorage. mMailStore is null" }));
    }

    void eachOperationRefuses_data()
    {
        QTest::addColumn<int>("index");
        for (size_t i = 0; i < sizeof(operations) / sizeof(operations[0]); ++i)
            QTest::newRow(operations[i].name) << int(i);
    }
    void eachOperationRefuses()
    {
        QFETCH(int, index);
        LogCollector log;
        bool refused = false;
        withoutStore([&refused, &log, index] {
            FakeAccount account(1);
            MailStorageImpl storage(&account);
            log.clear();
            refused = operations[index].refused(storage);
        });
        QVERIFY(refused);
        QVERIFY(log.contains(QtCriticalMsg, { "QMailStore is null" }));
    }
};

FENNEL_REGISTER_TEST(MailStorageOutageTest)
#include "mailstorageoutagetest.moc"
