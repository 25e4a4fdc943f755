// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/easdatabase.h"
#include "protocol/synccollection.h"
#include "protocol/synccommandadd.h"
#include "protocol/synccommandchange.h"
#include "protocol/synccommanddelete.h"
#include "requests/syncstate.h"
#include "support/fakeaccount.h"

#include <QtTest>

/** What tests of the result handlers share: an account with a database, and collections as they come back. */
namespace UploadResultScene {

constexpr EasAccountId Account = 7;

inline void openDatabase()
{
    static int counter = 0;
    const QByteArray path = "result-databases/" + QByteArray::number(++counter) + '/';
    EasDatabase::initializeInstance(nullptr, path.constData(), "mapping.db");
}

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
