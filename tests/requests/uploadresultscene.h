// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/mapping/easdatabase.h"
#include "protocol/elements/synccollection.h"
#include "protocol/elements/synccommandadd.h"
#include "protocol/elements/synccommandchange.h"
#include "protocol/elements/synccommanddelete.h"
#include "requests/syncstate.h"
#include "support/databasefixture.h"
#include "support/fakeaccount.h"

#include <QSharedPointer>
#include <QtTest>

/** What tests of the result handlers share: an account with a database, and collections as they come back. */
namespace UploadResultScene {

constexpr EasAccountId Account = 7;

/** One account whose store of a class is a recording double, and the handler of that class over it. */
template <class Handler, class Store> class Scene
{
public:
    template <class Storage>
    explicit Scene(QSharedPointer<Storage> FakeAccount::*place)
        : store(QSharedPointer<Store>::create())
        , account(Account)
    {
        account.*place = store;
    }

    bool handle(SyncCollection &collection)
    {
        Handler handler(account, state);
        const bool handled = handler.handle(collection);
        status = handler.status();
        return handled;
    }

    DatabaseFixture database { DatabaseFixture::Opened };
    const QSharedPointer<Store> store;
    FakeAccount account;
    SyncState state;
    /** Of the last collection that was handled. */
    int status = 0;
};

template <class Item> Item item(const char *localId, const char *serverId = "")
{
    Item item;
    item.setLocalId(QString::fromLatin1(localId));
    item.setServerId(QString::fromLatin1(serverId));
    return item;
}

/** A collection that carried additions, changes and deletions. */
template <class Item>
SyncCollection sent(const char *id, void (SyncCommandAdd::*setter)(const QList<Item> &),
    const QList<Item> &added, const QList<Item> &changed, const QStringList &deleted)
{
    SyncCollection collection;
    collection.setId(QString::fromLatin1(id));
    if (!added.isEmpty()) {
        auto *command = new SyncCommandAdd;
        (command->*setter)(added);
        collection.appendCommand(command);
    }
    if (!changed.isEmpty()) {
        auto *command = new SyncCommandChange;
        (command->*setter)(changed);
        collection.appendCommand(command);
    }
    if (!deleted.isEmpty()) {
        auto *command = new SyncCommandDelete;
        command->setServerIds(deleted);
        collection.appendCommand(command);
    }
    return collection;
}

inline void answerAdd(SyncCollection &collection, const char *clientId, const char *serverId, uint status = 1)
{
    AirSyncResponseAddItem response;
    response.setClientId(QString::fromLatin1(clientId));
    response.setServerId(QString::fromLatin1(serverId));
    response.setStatus(status);
    collection.appendAirSyncResponseAddedItem(response);
}

inline void answerChange(SyncCollection &collection, const char *serverId, uint status = 1)
{
    AirSyncResponseChangeItem response;
    response.setServerId(QString::fromLatin1(serverId));
    response.setStatus(status);
    collection.appendAirSyncResponseChangedItem(response);
}

inline void answerDelete(SyncCollection &collection, const char *serverId, uint status = 1)
{
    AirSyncResponseDeleteItem response;
    response.setServerId(QString::fromLatin1(serverId));
    response.setStatus(status);
    collection.appendAirSyncResponseDeletedItem(response);
}

} // namespace UploadResultScene
