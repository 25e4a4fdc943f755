// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/logging.h"
#include "protocol/base/eas.h"
#include "protocol/elements/synccollection.h"
#include "protocol/elements/synccommandadd.h"
#include "protocol/elements/synccommandchange.h"
#include "protocol/elements/synccommanddelete.h"
#include "requests/syncresulthandler.h"

#include <QDebug>
#include <QHash>
#include <QMap>
#include <QSet>

/**
 * What the results of events and contacts share: the items that a collection carried up, and those of them
 * that the server has taken.
 *
 * A new item gets its server identifier here, found by the local one under which it went up, and each item
 * its folder. The subclass then hands them to its store and to the mapping database.
 */
template <class Item> class UploadResultHandler : public SyncResultHandler
{
public:
    using SyncResultHandler::SyncResultHandler;

protected:
    struct Kind
    {
        QList<Item> (SyncCommandAdd::*items)() const;
        SyncItemStatus::Operation add;
        SyncItemStatus::Operation change;
        SyncItemStatus::Operation remove;
        // What the log calls them, before their identifier
        const char *added;
        const char *changed;
        const char *removed;
    };

    virtual const Kind &kind() const = 0;

    void collectSent(const SyncCollection &collection)
    {
        for (const QSharedPointer<SyncCommandBase> &command : collection.commands()) {
            switch (command->type()) {
            case SyncCommandBase::AddCommand:
                mSentAdded += itemsOf(command.objectCast<SyncCommandAdd>(),
                    "can't cast command to SyncCommandAdd with type", *command);
                break;
            case SyncCommandBase::ChangeCommand:
                mSentChanged += itemsOf(command.objectCast<SyncCommandChange>(),
                    "can't cast command to SyncCommandChange with type", *command);
                break;
            case SyncCommandBase::DeleteCommand:
                if (const auto deletion = command.objectCast<SyncCommandDelete>())
                    mSentDeleted += deletion->serverIds();
                else
                    warnOfCast("can't cast command to SyncCommandDelete with type", *command);
                break;
            default:
                qCWarning(eas()) << "unhandled SyncCommand with type" << command->type();
            }
        }
        for (QList<Item> *items : { &mSentAdded, &mSentChanged }) {
            for (Item &item : *items)
                item.setCollectionId(collection.id());
        }
    }

    bool collectUploadedAdds(const SyncCollection &collection)
    {
        QHash<QString, int> sent;
        for (int i = 0; i < mSentAdded.size(); ++i)
            sent.insert(mSentAdded.at(i).localId(), i);
        for (const AirSyncResponseAddItem &response : collection.getAddCmdResponses()) {
            bool taken = false;
            if (!judge(kind().add, response.status(), response.serverId(), response.clientId(), taken))
                return false;
            const auto found = taken ? sent.find(response.clientId()) : sent.end();
            if (found == sent.end())
                continue;
            if (response.serverId().isEmpty()) {
                qCWarning(eas()) << "The server has not named the item with client id" << response.clientId();
                continue;
            }
            qCInfo(eas()) << kind().added << response.clientId() << "saved"
                          << "on the server with server id" << response.serverId();
            Item item = mSentAdded.at(*found);
            item.setServerId(response.serverId());
            mUploadedAdded.append(item);
            sent.erase(found); // a server that repeats itself does not make two of one
        }
        return true;
    }

    bool collectUploadedChanges(const SyncCollection &collection, const QMap<QString, QString> &localIds)
    {
        if (!acknowledged(kind().change, collection.id(), mSentChanged, collection.getChangeCmdResponses(),
                localIds, mUploadedChanged))
            return false;
        for (const Item &item : qAsConst(mUploadedChanged))
            qCInfo(eas()) << kind().changed << item.serverId() << "updated successfully";
        return true;
    }

    bool collectUploadedDeletions(const SyncCollection &collection, const QMap<QString, QString> &localIds)
    {
        if (!acknowledged(kind().remove, collection.id(), mSentDeleted, collection.getDeleteCmdResponses(),
                localIds, mUploadedDeleted))
            return false;
        for (const QString &serverId : qAsConst(mUploadedDeleted))
            qCInfo(eas()) << kind().removed << serverId << "was deleted";
        return true;
    }

    /** Received changes of items that neither the mapping, by its server identifiers, nor the reply knows. */
    QStringList unknownChanges(
        const QList<Item> &added, const QList<Item> &changed, const QMap<QString, QString> &localIds) const
    {
        QSet<QString> named;
        for (const QList<Item> *items : { &added, &mUploadedAdded }) {
            for (const Item &item : *items)
                named.insert(item.serverId());
        }
        QStringList unknown;
        for (const Item &item : changed) {
            if (!localIds.contains(item.serverId()) && !named.contains(item.serverId()))
                unknown.append(item.serverId());
        }
        return unknown;
    }

    /** Whether the server has taken everything that went up. */
    bool hasUploadedAll() const
    {
        return mUploadedAdded.size() == mSentAdded.size() && mUploadedChanged.size() == mSentChanged.size()
            && mUploadedDeleted.size() == mSentDeleted.size();
    }

    QList<Item> mSentAdded;
    QList<Item> mSentChanged;
    QList<QString> mSentDeleted;
    QList<Item> mUploadedAdded;
    QList<Item> mUploadedChanged;
    QList<QString> mUploadedDeleted;

private:
    template <class Command>
    QList<Item> itemsOf(
        const QSharedPointer<Command> &command, const char *text, const SyncCommandBase &original) const
    {
        if (command)
            return ((*command).*(kind().items))();
        warnOfCast(text, original);
        return {};
    }

    static void warnOfCast(const char *text, const SyncCommandBase &command)
    {
        qCWarning(eas()) << text << command.type();
    }
};
