// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactsobserver.h"

#include "storages/contacts/contactfolders.h"

#include <contactmanagerengine.h>
#include <qtcontacts-extensions.h>

QTCONTACTS_USE_NAMESPACE

ContactsObserver::ContactsObserver(
    EasAccountId accountId, const QString &applicationName, QContactManager &manager, QObject *parent)
    : QObject(parent)
    , mAccountId(accountId)
    , mApplicationName(applicationName)
    , mManager(manager)
{
    const QList<QContactCollection> collections = manager.collections();
    for (const QContactCollection &collection : collections)
        observeCollection(collection);
    using QtContactsSqliteExtensions::ContactManagerEngine;
    if (const auto *engine = QtContactsSqliteExtensions::contactManagerEngine(manager))
        connect(engine, &ContactManagerEngine::collectionContactsChanged, this,
            &ContactsObserver::onCollectionContactsChanged);
}

void ContactsObserver::observeCollection(const QContactCollection &collection)
{
    if (ContactFolders::belongsTo(collection, mAccountId, mApplicationName))
        mServerIds.insert(collection.id(), ContactFolders::serverIdOf(collection));
}

void ContactsObserver::onCollectionContactsChanged(const QList<QContactCollectionId> &ids)
{
    QList<QString> serverFolderIds;
    for (const QContactCollectionId &id : ids) {
        if (!mServerIds.contains(id))
            observeCollection(mManager.collection(id));
        const QString serverId = mServerIds.value(id);
        if (!serverId.isEmpty())
            serverFolderIds.append(serverId);
    }
    if (!serverFolderIds.isEmpty())
        Q_EMIT localChangesAvailable(serverFolderIds);
}
