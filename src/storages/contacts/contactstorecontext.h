// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <contactmanagerengine.h>

#include <QtContacts/QContactCollectionFilter>
#include <QtContacts/QContactManager>

#include <QString>

/**
 * Where a contact storage works: the platform's store and the account.
 *
 * ContactStorageImpl owns it; its collaborators look at it by reference. Without a manager nothing but the
 * front may be called.
 */
struct ContactStoreContext
{
    /** Under this name the collections belong to the engine. */
    static QString applicationName();

    /** The manager's extension. */
    QtContactsSqliteExtensions::ContactManagerEngine *engine() const;

    /** A filter for the contacts of a collection. */
    static QtContacts::QContactCollectionFilter contactsOf(const QtContacts::QContactCollection &collection);

    /** Reads a contact, which is empty if there is none. False if the store could not be asked. */
    bool read(const QtContacts::QContactId &id, QtContacts::QContact *contact) const;

    /** The mark of origin, by which a contact of the server is known whatever becomes of the mapping. */
    QString guid(const QString &serverId) const;
    /** The server identifier in such a text; empty for any other. */
    QString serverIdOf(const QString &guid) const;

    QtContacts::QContactManager *manager = nullptr;
    EasAccountId accountId = 0;
};
