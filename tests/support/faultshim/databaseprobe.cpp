// SPDX-License-Identifier: LGPL-2.1-or-later
//
// Opens a mapping database below the home folder and writes an account's first synchronisation into it, in
// the order of the engine: rows first, the key last. Tells which step it has come to.
#include "application/mapping/easdatabase.h"
#include "easitems/easemailitem.h"

#include <QCoreApplication>

#include <cstdio>

namespace {

constexpr EasAccountId Account = 5;

void tell(const char *step, bool success)
{
    std::printf("%s %s\n", step, success ? "done" : "failed");
    std::fflush(stdout);
}

QList<EasFolderItem> folders()
{
    EasFolderItem inbox;
    inbox.setServerId(QStringLiteral("2"));
    inbox.setLocalId(QStringLiteral("20"));
    inbox.setType(EasFolderItem::DefaultInboxFolder);
    inbox.setSyncKey(QStringLiteral("0"));
    return { inbox };
}

QList<EasEmailItem> messages()
{
    QList<EasEmailItem> items;
    for (int number = 1; number <= 3; ++number) {
        EasEmailItem item;
        item.setServerId(QStringLiteral("2:%1").arg(number));
        item.setCollectionId(QStringLiteral("2"));
        item.setLocalId(QString::number(100 + number));
        items.append(item);
    }
    return items;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "usage: database-probe PATH NAME\n");
        return 2;
    }
    EasDatabase::initializeInstance(&application, argv[1], argv[2]);
    EasDatabase *database = EasDatabase::instance();
    tell("open", true);
    database->onAccountAdded(Account);
    tell("account", true);
    if (!database->folderItemsChanges(Account, folders(), {}, {})) {
        tell("folders", false);
        return 0;
    }
    tell("folders", true);
    if (!database->emailItemsChanges(Account, messages(), {}, {})) {
        tell("messages", false);
        return 0;
    }
    tell("messages", true);
    QList<EasFolderItem> synchronised = folders();
    synchronised.first().setSyncKey(QStringLiteral("2"));
    synchronised.first().appendChangedField(11);
    tell("key", database->updateFolderItems(Account, synchronised));
    return 0;
}
