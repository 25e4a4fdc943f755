// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascontactsitem.h"
#include "storages/contactstorage.h"
#include "support/stubfolders.h"

/** A contact store that keeps nothing and answers as a test says. */
class StubContactStorage : public ContactStorage
{
public:
    StubContactStorage()
        : ContactStorage(nullptr)
    {
    }

    StubFolders folders;

    bool updateFolders(
        QList<EasFolderItem> &added, QList<EasFolderItem> &changed, const QStringList &deleted) override
    {
        return folders.update(added, changed, deleted);
    }
    bool updateItems(
        const QString &, QList<EasContactsItem> &, QList<EasContactsItem> &, const QStringList &) override
    {
        return false;
    }
    bool cleanUpFolder(const EasFolderItem &) override { return false; }
    bool queryChanges(
        const EasFolderItem &, QList<EasContactsItem> *, QList<EasContactsItem> *, QStringList *) override
    {
        return false;
    }
    bool uploadedLocalChanges(const QStringList &, const QStringList &, const QStringList &) override
    {
        return false;
    }
    void setFailedLocalChangesIds(const QStringList &) override {}
    void onSyncCompleted(EasAccountId, qulonglong, int) override {}
};
