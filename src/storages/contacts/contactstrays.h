// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "storages/contacts/contactfolders.h"

#include <QtContacts/QContact>
#include <QtContacts/QContactManager>

#include <QList>
#include <QMap>

struct ContactStoreContext;

/**
 * Contacts of the account's collections that the mapping does not know: new ones of the user's, and those
 * that an interrupted run has stored without getting as far as the mapping.
 */
class ContactStrays
{
public:
    explicit ContactStrays(const ContactStoreContext &context);

    /** Of one folder. False if store or mapping could not be asked. */
    bool find(const QtContacts::QContactCollection &collection, QList<QtContacts::QContact> *strays) const;

    /** Those that came from the server, by their server identifiers. */
    QMap<QString, QtContacts::QContact> byServerId(const QList<QtContacts::QContact> &strays) const;
    QString serverIdOf(const QtContacts::QContact &contact) const;

    /** What the user changed and the server does not know yet. */
    static bool hasLocalChange(const QtContacts::QContact &contact);

    /** Takes contacts out of the store, with their pictures and without leaving a change. */
    bool removeContacts(const QtContacts::QContactCollection &collection,
        const QList<QtContacts::QContactId> &ids, const QList<QUrl> &avatarFiles) const;

    /**
     * Heals what an interrupted run has left: folders and contacts that the mapping does not know, and
     * pictures that no contact has. Their keys were not advanced, so the server sends them again, or has
     * deleted them; what the user changed in them stays.
     */
    void repair() const;

private:
    bool removePresent(const QtContacts::QContactCollection &collection,
        const QList<QtContacts::QContactId> &ids, QtContacts::QContactManager::Error *error) const;
    bool repairFolder(const QtContacts::QContactCollection &collection) const;
    bool removeUnknownFolder(const QtContacts::QContactCollection &collection) const;
    void removeOrphanedPictures(const QList<QtContacts::QContactCollection> &collections) const;

    const ContactStoreContext &mContext;
    const ContactFolders mFolders;
};
