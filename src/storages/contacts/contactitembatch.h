// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascontactsitem.h"
#include "storages/contacts/contactfolders.h"
#include "storages/contacts/contactstrays.h"
#include "storages/contacts/contactwriter.h"

#include <QtContacts/QContact>
#include <QtContacts/QContactCollection>

#include <QMap>

struct ContactStoreContext;

/**
 * Writes the contacts of one reply to the store: added, changed, deleted. Made for one reply.
 *
 * The store is written before the mapping, so after a crash or a failure the server's answer comes again and
 * meets contacts that are there already. One that is mapped is changed instead of added, one that is not is
 * adopted. The caller's lists are sorted accordingly and leave with local identifiers and avatar URLs, as the
 * mapping wants them.
 */
class ContactItemBatch
{
public:
    explicit ContactItemBatch(const ContactStoreContext &context);

    bool updateItems(const QString &folderServerId, QList<EasContactsItem> &added,
        QList<EasContactsItem> &changed, const QStringList &deleted);

private:
    using Contacts = QList<QtContacts::QContact>;

    bool readMapping();
    bool findStrays(const std::optional<QtContacts::QContactCollection> &collection);
    void sortOut(QList<EasContactsItem> &added, QList<EasContactsItem> &changed) const;
    bool handleAddedContacts(QList<EasContactsItem> &items, Contacts &contacts);
    bool handleUpdatedContacts(QList<EasContactsItem> &items, Contacts &contacts);
    bool handleDeletedContacts(const QStringList &serverIds, QList<QtContacts::QContactId> &contacts,
        QList<QUrl> &avatarFiles) const;
    void prepare(EasContactsItem &item, int index, Contacts &contacts);
    bool store(const QtContacts::QContactCollection &collection, Contacts &contacts) const;
    void takeLocalIds(const Contacts &stored, QList<EasContactsItem> &items) const;

    const ContactStoreContext &mContext;
    const ContactFolders mFolders;
    const ContactStrays mStrays;
    ContactWriter mWriter;
    QMap<QString, QString> mServerToLocal;
    QMap<QString, QUrl> mAvatars;
    /** By server identifiers. */
    QMap<QString, QtContacts::QContact> mAdoptable;
    /** Nothing of what is mapped is there any more. */
    bool mCollectionIsNew = false;
};
