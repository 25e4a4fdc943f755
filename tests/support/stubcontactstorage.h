// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascontactsitem.h"
#include "storages/contactstorage.h"
#include "support/itemlines.h"
#include "support/stubfolders.h"

#include <functional>

/** A contact store that keeps a line for each call, and answers as a test says. */
class StubContactStorage : public ContactStorage
{
public:
    StubContactStorage()
        : ContactStorage(nullptr)
    {
    }

    StubFolders folders;
    /** "uploaded ", "received ", "failed " or "query " and what came with it. */
    QStringList calls;
    bool takesUploads = true;
    bool takesItems = true;
    LocalQuery answersQueries = LocalQuery::Answered;
    bool settlesFolders = true;
    QList<EasContactsItem> localAdded;
    QList<EasContactsItem> localChanged;
    QStringList localDeleted;
    std::function<void(const QString &call)> onCall;
    /** Sees the received items before they get local identifiers, and may change them. */
    std::function<void(QList<EasContactsItem> &added, QList<EasContactsItem> &changed)> onReceived;

    bool updateFolders(
        QList<EasFolderItem> &added, QList<EasFolderItem> &changed, const QStringList &deleted) override
    {
        return folders.update(added, changed, deleted);
    }
    bool updateItems(const QString &folder, QList<EasContactsItem> &added, QList<EasContactsItem> &changed,
        const QStringList &deleted) override
    {
        note(QStringLiteral("received ") + folder + ItemLines::of(added, changed, deleted));
        if (onReceived)
            onReceived(added, changed);
        for (EasContactsItem &item : added) {
            if (item.localId().isEmpty())
                item.setLocalId(QStringLiteral("local-") + item.serverId());
        }
        return takesItems;
    }
    bool cleanUpFolder(const EasFolderItem &) override { return true; }
    LocalQuery queryChanges(const EasFolderItem &folder, QList<EasContactsItem> *added,
        QList<EasContactsItem> *changed, QStringList *deleted, UploadBudget *) override
    {
        note(QStringLiteral("query ") + folder.serverId());
        *added = localAdded;
        *changed = localChanged;
        *deleted = localDeleted;
        return answersQueries;
    }
    bool uploadedLocalChanges(
        const QStringList &added, const QStringList &changed, const QStringList &deleted) override
    {
        note(QStringLiteral("uploaded +%1 *%2 -%3")
                 .arg(added.join(QLatin1Char(',')), changed.join(QLatin1Char(',')),
                     deleted.join(QLatin1Char(','))));
        return takesUploads;
    }
    void setFailedLocalChangesIds(const QStringList &localIds) override
    {
        note(QStringLiteral("failed ") + localIds.join(QLatin1Char(',')));
    }
    bool expectAll(const EasFolderItem &folder) override
    {
        note(QStringLiteral("expects all of ") + folder.serverId());
        return true;
    }
    bool allReceived(const QString &folder) override
    {
        note(QStringLiteral("has all of ") + folder);
        return settlesFolders;
    }
    bool unchanged(const QString &folder) override
    {
        note(QStringLiteral("has no news of ") + folder);
        return settlesFolders;
    }
    void onSyncCompleted(EasAccountId, qulonglong, int) override {}

private:
    void note(const QString &call)
    {
        calls.append(call);
        if (onCall)
            onCall(call);
    }
};
