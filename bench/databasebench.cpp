// SPDX-License-Identifier: LGPL-2.1-or-later
// How fast the mapping is written, which commits row by row, and read.
#include "benchrow.h"

#include "application/mapping/easdatabase.h"
#include "easitems/easemailitem.h"
#include "easitems/easfolderitem.h"

#include <QCoreApplication>
#include <QLoggingCategory>

namespace {

constexpr EasAccountId account = 1;
constexpr int mailboxSize = 50000;
constexpr int windowSize = 100;

QList<EasEmailItem> window(int first)
{
    QList<EasEmailItem> items;
    for (int number = first; number < first + windowSize; ++number) {
        EasEmailItem item;
        item.setServerId(QStringLiteral("5:%1").arg(number));
        item.setCollectionId(QStringLiteral("5"));
        item.setLocalId(QString::number(number));
        items.append(item);
    }
    return items;
}

QStringList serverIds(const QList<EasEmailItem> &items)
{
    QStringList ids;
    for (const EasEmailItem &item : items)
        ids.append(item.serverId());
    return ids;
}

/** What a sync without writing wants to know, give or take. */
void ask(EasDatabase &database, const EasEmailItem &arrived)
{
    const QString folder = arrived.collectionId();
    (void)database.folderSyncKey(account);
    (void)database.serverToLocalFolderIds(account);
    (void)database.localToServerFolderIds(account);
    (void)database.folderItemByServerId(account, folder);
    (void)database.folderItemByLocalId(account, folder);
    (void)database.folderTypeByServerId(account, folder);
    (void)database.emailFolderItems(account);
    (void)database.emailCollectionIds(account, { arrived.serverId() });
    (void)database.serverToLocalEmailIds(account, QStringList { arrived.serverId() });
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("Fennel.*=false"));
    EasDatabase *database = EasDatabase::instance();

    const double start = BenchRow::processorSeconds();
    for (int first = 0; first < mailboxSize; first += windowSize) {
        if (!database->addEmailItems(account, window(first)))
            return 1;
    }
    const double written = BenchRow::processorSeconds() - start;
    std::printf("Mapping, %d messages\n", mailboxSize);
    BenchRow::print("rows written, one by one", mailboxSize / written, "rows/s");
    BenchRow::print("rows read",
        mailboxSize / BenchRow::seconds([database] { (void)database->serverToLocalEmailIds(account); }),
        "rows/s");
    const QStringList ids = serverIds(window(mailboxSize / 2));
    BenchRow::print("look-up of the messages of one reply",
        1e3 * BenchRow::seconds([database, &ids] { (void)database->emailCollectionIds(account, ids); }),
        "ms");
    EasFolderItem folder;
    folder.setServerId(QStringLiteral("5"));
    folder.setLocalId(QStringLiteral("5"));
    folder.setType(EasFolderItem::DefaultInboxFolder);
    if (!database->addFolderItems(account, { folder }))
        return 1;
    const EasEmailItem arrived = window(mailboxSize).constFirst();
    BenchRow::print("questions of a sync that brings one message",
        1e6 * BenchRow::seconds([database, &arrived] { ask(*database, arrived); }), "us");
    EasDatabase::releaseInstance();
    return 0;
}
