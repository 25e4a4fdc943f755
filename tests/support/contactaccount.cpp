// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/contactaccount.h"

#include "application/mapping/easdatabase.h"

#include <QDir>

QTCONTACTS_USE_NAMESPACE

namespace {

EasAccountId nextAccountId()
{
    static EasAccountId last = 500;
    return ++last;
}

} // namespace

ContactAccount::ContactAccount()
    : account(nextAccountId())
    , configuration(new FakeContactsConfiguration(account.id()))
{
    account.contacts = configuration;
    restart();
}

ContactAccount::~ContactAccount()
{
    EasDatabase::instance()->removeAccount(id());
}

void ContactAccount::restart()
{
    mStorage.reset();
    mStorage = std::make_unique<ContactStorageImpl>(account, nullptr);
}

EasFolderItem ContactAccount::folder(const QString &serverId, EasFolderItem::FolderType type)
{
    EasFolderItem item;
    item.setServerId(serverId);
    item.setServerParentId(QStringLiteral("0"));
    item.setDisplayName(QLatin1String("Name of ") + serverId);
    item.setSyncKey(QStringLiteral("0"));
    item.setType(type);
    return item;
}

QContactCollectionId ContactAccount::addFolder(const QString &serverId)
{
    QList<EasFolderItem> added { folder(serverId) };
    QList<EasFolderItem> none;
    if (!mStorage->updateFolders(added, none, {}) || !EasDatabase::instance()->addFolderItems(id(), added))
        qFatal("no folder %s", qPrintable(serverId));
    return collection(serverId);
}

QContactCollectionId ContactAccount::collection(const QString &serverId) const
{
    return QContactCollectionId::fromString(
        EasDatabase::instance()->folderItemByServerId(id(), serverId)->localId());
}

EasContactsItem ContactAccount::item(const QString &serverId, const QString &firstName) const
{
    EasContactsItem item;
    item.setServerId(serverId);
    item.setCollectionId(folderId());
    item.setFirstName(firstName);
    return item;
}

bool ContactAccount::receive(
    QList<EasContactsItem> added, QList<EasContactsItem> changed, const QStringList &deleted)
{
    return receiveIn(folderId(), added, changed, deleted);
}

bool ContactAccount::receiveIn(const QString &folder, QList<EasContactsItem> added,
    QList<EasContactsItem> changed, const QStringList &deleted)
{
    for (QList<EasContactsItem> *items : { &added, &changed }) {
        for (EasContactsItem &item : *items)
            item.setCollectionId(folder);
    }
    return mStorage->updateItems(folder, added, changed, deleted)
        && EasDatabase::instance()->contactsItemsChanges(id(), added, changed, deleted, folder);
}

QStringList ContactAccount::rows() const
{
    const QMap<QString, QString> rows = *EasDatabase::instance()->localToServerContactIds(id(), folderId());
    QStringList serverIds = rows.values();
    serverIds.sort();
    return serverIds;
}

QContact ContactAccount::contact(const QString &serverId) const
{
    const QMap<QString, QString> rows = *EasDatabase::instance()->localToServerContactIds(id(), folderId());
    return store.manager().contact(QContactId::fromString(rows.key(serverId)));
}

QStringList ContactAccount::names(const QString &folder) const
{
    return ContactFixture::names(store.contacts(collection(folder)));
}

QString ContactAccount::storeNumber(const QString &localId)
{
    return QString::fromLatin1(QContactId::fromString(localId).localId().mid(4)); // behind "sql-"
}

QString ContactAccount::localChanges(const QString &folderServerId)
{
    QList<EasContactsItem> added;
    QList<EasContactsItem> changed;
    QStringList deleted;
    if (mStorage->queryChanges(folder(folderServerId), &added, &changed, &deleted) != LocalQuery::Answered)
        return QStringLiteral("failed");
    const auto text = [](const QList<EasContactsItem> &items) {
        QStringList names;
        for (const EasContactsItem &entry : items) {
            names.append(entry.serverId().isEmpty()
                    ? entry.firstName()
                    : entry.serverId() + QLatin1Char('=') + entry.firstName());
        }
        names.sort();
        return names.join(QLatin1Char(','));
    };
    return QStringLiteral("added: %1; changed: %2; deleted: %3")
        .arg(text(added), text(changed), deleted.join(QLatin1Char(',')));
}

QString ContactAccount::pictureFolder() const
{
    return QDir::homePath() + QStringLiteral("/.avatars/account-%1").arg(id());
}

QStringList ContactAccount::pictures() const
{
    return QDir(pictureFolder()).entryList(QDir::Files);
}
