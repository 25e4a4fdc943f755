// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QtContacts/QContact>
#include <QtContacts/QContactCollection>
#include <QtContacts/QContactManager>

#include <QList>
#include <QUrl>

struct ContactStoreContext;

/** Writes of the engine to the contact store, which are no changes of the user's. Each one is a transaction.
 */
class ContactStoreCalls
{
public:
    using Contacts = QList<QtContacts::QContact>;

    explicit ContactStoreCalls(const ContactStoreContext &context);

    /** Stores contacts by their status flags; new ones get their identifiers. The user's own changes stay
     * changes. False after it was logged. */
    bool store(const QtContacts::QContactCollection &collection, Contacts &contacts) const;

    /** Writes contacts over as they are now. */
    bool rewrite(const QtContacts::QContactCollection &collection, Contacts contacts) const;

    /** Takes contacts out of the store, with their pictures and without leaving a change; those that the user
     * has removed lose the mark of it. */
    bool remove(const QtContacts::QContactCollection &collection, const QList<QtContacts::QContactId> &ids,
        const QList<QUrl> &avatarFiles) const;

private:
    bool storeChanges(const QtContacts::QContactCollection &collection, Contacts &contacts,
        QtContacts::QContactManager::Error *error) const;
    bool readPresent(const QList<QtContacts::QContactId> &ids, Contacts *present) const;

    const ContactStoreContext &mContext;
};
