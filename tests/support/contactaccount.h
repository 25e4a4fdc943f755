// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascontactsitem.h"
#include "easitems/easfolderitem.h"
#include "storages/contacts/contactstorageimpl.h"
#include "support/contactfixture.h"
#include "support/fakeaccount.h"
#include "support/fakeconfigurations.h"

#include <memory>

/**
 * An account with a contact storage, on an emptied store, with a mapping of its own: each one takes a fresh
 * number.
 */
class ContactAccount
{
public:
    static QString folderId() { return QStringLiteral("F1"); }

    ContactAccount();
    ~ContactAccount();
    Q_DISABLE_COPY(ContactAccount)

    EasAccountId id() const { return account.id(); }
    ContactStorageImpl &storage() { return *mStorage; }
    /** As after the daemon was started anew. */
    void restart();

    /** A folder in store and mapping, folderId() unless told otherwise. */
    QtContacts::QContactCollectionId addFolder(const QString &serverId = folderId());
    static EasFolderItem folder(const QString &serverId = folderId(),
        EasFolderItem::FolderType type = EasFolderItem::DefaultContactsFolder);
    QtContacts::QContactCollectionId collection(const QString &serverId = folderId()) const;

    EasContactsItem item(const QString &serverId, const QString &firstName) const;
    /** Store, then mapping, as a reply is handled. */
    bool receive(
        QList<EasContactsItem> added, QList<EasContactsItem> changed = {}, const QStringList &deleted = {});
    /** The same in any folder. */
    bool receiveIn(const QString &folder, QList<EasContactsItem> added, QList<EasContactsItem> changed = {},
        const QStringList &deleted = {});
    /** Server identifiers of the mapping, of folderId(). */
    QStringList rows() const;
    /** The contact as the manager shows it; empty if it is not mapped or gone. */
    QtContacts::QContact contact(const QString &serverId) const;
    QStringList names(const QString &folder = folderId()) const;
    /** The number of a contact in the store's file. */
    static QString storeNumber(const QString &localId);

    /** "added: Ada; changed: ; deleted: 1" */
    QString localChanges(const QString &folder = folderId());
    /** The files in the account's folder of pictures. */
    QStringList pictures() const;
    QString pictureFolder() const;

    ContactFixture store;
    FakeAccount account;
    QSharedPointer<FakeContactsConfiguration> configuration;

private:
    std::unique_ptr<ContactStorageImpl> mStorage;
};
