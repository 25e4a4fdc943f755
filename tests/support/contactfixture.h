// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "support/privatebus.h"

#include <contactmanagerengine.h>
#include <qcontactstatusflags.h>

#include <QtContacts/QContact>
#include <QtContacts/QContactCollection>
#include <QtContacts/QContactManager>

#include <memory>

/** The contact store for tests: a folder of its own, a manager and its engine. */
class ContactFixture
{
public:
    using Engine = QtContactsSqliteExtensions::ContactManagerEngine;

    /** Lists of fetchContactChanges(). */
    struct Changes
    {
        QList<QtContacts::QContact> added;
        QList<QtContacts::QContact> modified;
        QList<QtContacts::QContact> deleted;
        QList<QtContacts::QContact> unmodified;
        /** Sizes in this order, as "1 0 0 2". */
        QString counts() const;
    };

    /** Empties the store. */
    ContactFixture();

    QtContacts::QContactManager &manager() const { return *mManager; }
    Engine *engine() const;

    QtContacts::QContactCollection addCollection(const QString &name, const QVariantMap &extended = {}) const;
    QtContacts::QContact addContact(
        const QtContacts::QContactCollectionId &collection, const QString &firstName) const;
    Changes changes(const QtContacts::QContactCollectionId &collection) const;
    /** What the manager shows of the collection. */
    QList<QtContacts::QContact> contacts(const QtContacts::QContactCollectionId &collection) const;
    /** The first names of these contacts, in alphabetical order. */
    static QStringList names(const QList<QtContacts::QContact> &contacts);
    static QString name(const QtContacts::QContact &contact);
    static QtContacts::QContact named(const QString &firstName);

private:
    static void empty();

    // The first engine decides whether there is a bus for this process.
    bool mHasBus = PrivateBus::ensure();
    std::unique_ptr<QtContacts::QContactManager> mManager;
};
