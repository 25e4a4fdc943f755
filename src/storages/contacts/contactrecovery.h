// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "storages/contacts/contactcases.h"
#include "storages/contacts/contactfolderrows.h"
#include "storages/contacts/contactfolders.h"
#include "storages/contacts/contactstorecalls.h"
#include "storages/contacts/contactstrays.h"

#include <QHash>
#include <QSet>
#include <QStringList>

struct ContactStoreContext;

/**
 * Brings store and mapping of an account's contacts back into step, as ContactCases has it: at the start,
 * when a folder is sent anew from its beginning, and when everything of a folder has been received.
 *
 * A folder that is sent anew bears a mark in its collection until all of it is there. Which of its contacts
 * the server has not named yet is kept in memory alone, so a marked folder that an earlier process left
 * begins once more. Owned by the storage.
 */
class ContactRecovery
{
public:
    explicit ContactRecovery(const ContactStoreContext &context);

    /**
     * At the start: folders and contacts that the mapping does not know, and pictures that no contact has,
     * are removed as far as the server sends them again. What the user changed stays.
     */
    void repair();

    /** Before the hierarchy is updated: a collection that was removed from the store is made again, and its
     * contacts are sent anew, as are those of a folder of which only a part was sent anew. */
    bool repairFolders();

    /** From now on the server sends the folder from its beginning. */
    bool expectAll(const QString &folderServerId);
    /** Whether the server sends the folder from its beginning and has not come to its end. */
    bool isSentAnew(const QString &folderServerId) const { return mNotNamed.contains(folderServerId); }
    /** These contacts are known to the server: it has named them, or has taken a change of them. */
    void named(const QStringList &localIds);
    /** The server has taken these new contacts; their rows are about to be written. */
    void uploaded(const QStringList &localIds);
    /**
     * The server has nothing more to send of the folder. What it did not name of a folder that was sent anew
     * it has deleted: such contacts go, and those that the user has edited go up as new ones.
     */
    bool allReceived(const QString &folderServerId);

private:
    using Contacts = QList<QtContacts::QContact>;

    /** What is to be done to the contacts of one folder. */
    struct Repairs
    {
        QList<QtContacts::QContactId> toRemove;
        QList<QUrl> avatars;
        Contacts toRewrite;
    };

    void collect(ContactCases::Moment moment, const QtContacts::QContact &contact, const QString &serverId,
        Repairs *repairs) const;
    bool carryOut(const QtContacts::QContactCollection &collection, const Repairs &repairs) const;

    bool repairFolder(const QtContacts::QContactCollection &collection) const;
    bool removeUnknownFolder(const QtContacts::QContactCollection &collection) const;
    void removeOrphanedPictures(const QList<QtContacts::QContactCollection> &collections) const;
    bool startAnew(EasFolderItem row) const;
    bool remake(const EasFolderItem &row) const;
    bool collectStrays(const QtContacts::QContactCollection &collection, const ContactFolderRows &rows,
        Repairs *repairs) const;
    bool collectNotNamed(const QStringList &localIds, Repairs *repairs) const;
    bool collectKnown(ContactCases::Moment moment, const ContactFolderRows &rows, const QStringList &localIds,
        Repairs *repairs) const;
    bool forgetRows(
        const QString &folderServerId, const ContactFolderRows &rows, const QStringList &localIds) const;

    const ContactStoreContext &mContext;
    const ContactFolders mFolders;
    const ContactStrays mStrays;
    const ContactStoreCalls mStore;
    /** Local identifiers of contacts that the server has not named yet, by folders that are sent anew. */
    QHash<QString, QSet<QString>> mNotNamed;
    /** Local identifiers of contacts that the server has taken and that have no origin yet. */
    QSet<QString> mUnsigned;
};
