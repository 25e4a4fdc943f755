// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"
#include "easitems/easfolderitem.h"

#include <QtContacts/QContactCollection>

#include <QUrl>

#include <optional>

struct ContactStoreContext;

/** The account's contact folders as collections of the contact store. */
class ContactFolders
{
public:
    explicit ContactFolders(const ContactStoreContext &context);

    bool updateFolders(
        QList<EasFolderItem> &added, QList<EasFolderItem> &changed, const QStringList &deleted) const;
    bool cleanUpFolder(const EasFolderItem &folder) const;

    /** The collection of a folder; the account's collections, for all of them. */
    struct Lookup
    {
        /** False if the store could not be asked. */
        bool complete = false;
        std::optional<QtContacts::QContactCollection> collection;
    };
    Lookup find(const QString &folderServerId) const;
    QList<QtContacts::QContactCollection> collections(bool *complete) const;

    /** Makes a collection that ought to be there anew, from what the mapping knows, and maps it. */
    std::optional<QtContacts::QContactCollection> recreate(const QString &folderServerId) const;

    /** Removes the collection with its contacts, and the marks that the removal leaves. */
    bool removeCollection(const QtContacts::QContactCollection &collection) const;

    /** Whether the server sends the folder from its beginning and has not come to its end. */
    static bool isSentAnew(const QtContacts::QContactCollection &collection);
    bool markAsSentAnew(QtContacts::QContactCollection collection, bool sentAnew) const;

    static bool belongsTo(const QtContacts::QContactCollection &collection, EasAccountId accountId,
        const QString &applicationName);
    static QString serverIdOf(const QtContacts::QContactCollection &collection);

private:
    bool handleAddedFolders(QList<EasFolderItem> &items) const;
    bool handleUpdatedFolders(QList<EasFolderItem> &items) const;
    bool handleDeletedFolders(const QStringList &serverIds) const;
    bool handleDeletedFolder(const QString &serverId) const;
    void rollBack(const QList<QtContacts::QContactCollection> &added) const;
    /** False if they could not be listed. */
    bool appendAvatarsIn(const QtContacts::QContactCollection &collection, QList<QUrl> *files) const;
    void populateCollection(const EasFolderItem &item, QtContacts::QContactCollection *collection) const;

    const ContactStoreContext &mContext;
};
