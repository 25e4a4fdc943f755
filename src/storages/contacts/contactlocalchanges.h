// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascontactsitem.h"
#include "easitems/easfolderitem.h"
#include "storages/contacts/contactfolderrows.h"
#include "storages/contacts/contactstrays.h"
#include "storages/localquery.h"

#include <QtContacts/QContact>
#include <QtContacts/QContactCollection>

#include <QSet>
#include <QStringList>

class UploadBudget;
struct ContactStoreContext;

/** Finds what the user changed, by the store's own change flags, and clears them once the server has it. */
class ContactLocalChanges
{
public:
    explicit ContactLocalChanges(const ContactStoreContext &context);

    LocalQuery queryChanges(const EasFolderItem &folder, QList<EasContactsItem> *added,
        QList<EasContactsItem> *changed, QStringList *deletedServerIds, UploadBudget *budget = nullptr);
    /** Whether the user has changed anything in the folder that the server does not know. */
    bool hasChanges(const EasFolderItem &folder) const;
    /** Whether the latest query left contacts of the folder out until the server has sent everything. */
    bool awaits(const QString &folderServerId) const { return mAwaiting.contains(folderServerId); }
    bool uploadedLocalChanges(const QStringList &addedLocalIds, const QStringList &changedLocalIds,
        const QStringList &deletedLocalIds) const;

private:
    using Contacts = QList<QtContacts::QContact>;

    struct Fetched
    {
        Contacts added;
        Contacts modified;
        Contacts deleted;
    };

    bool fetch(const EasFolderItem &folder, const QtContacts::QContactCollection &collection,
        Fetched *fetched) const;
    bool appendAdded(const QtContacts::QContactCollection &collection, const ContactFolderRows &rows,
        const EasFolderItem &folder, QList<EasContactsItem> *added, UploadBudget *budget);
    /** Local identifiers of rows whose contacts the store does not show. */
    bool findMissing(const QtContacts::QContactCollection &collection, const ContactFolderRows &rows,
        QStringList *missing) const;
    bool forgetLost(const QStringList &missing, const Contacts &deleted, const ContactFolderRows &rows,
        const QString &folderServerId) const;
    EasContactsItem toItem(const QtContacts::QContact &contact, const EasFolderItem &folder) const;
    EasContactsItem toChangedItem(const QtContacts::QContact &contact, const EasFolderItem &folder,
        const ContactFolderRows &rows) const;

    const ContactStoreContext &mContext;
    const ContactStrays mStrays;
    /** Server identifiers of folders. */
    QSet<QString> mAwaiting;
};
