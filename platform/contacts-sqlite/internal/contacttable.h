// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "internal/contactdatabase.h"

#include <QtContacts/QContact>

#include <QList>
#include <QSet>

/** The rows of contacts. Those that are marked as deleted are still there for whoever synchronises. */
class ContactTable
{
public:
    /** How a change is to be known later. */
    enum Origin { Local, Synchronised };

    explicit ContactTable(ContactDatabase &database);

    /** Contacts that are not deleted, of these collections; of all without any. */
    QList<quint64> numbers(const QSet<quint64> &collections) const;
    QList<QtContacts::QContact> contacts(const QSet<quint64> &collections) const;
    /** Without an identifier if there is none, or it is deleted. */
    QtContacts::QContact contact(quint64 number) const;
    /** The collection of a contact that is not deleted. */
    quint64 collectionOf(quint64 number) const;

    /** All of the collection, with their flags, deleted ones too. */
    QList<QtContacts::QContact> withDeleted(quint64 collection) const;
    /** Those of them that have a flag. */
    QList<QtContacts::QContact> changed(quint64 collection) const;

    /** Sets the contact's identifier. */
    bool insert(QtContacts::QContact *contact, quint64 collection, Origin origin);
    bool update(const QtContacts::QContact &contact, Origin origin);
    /** Marks the contact as deleted; its flags are to be cleared before the row goes. */
    bool remove(quint64 number, Origin origin);
    /** Takes the row out at once. */
    bool purge(quint64 number);
    /** Marks all contacts of a collection and gives their numbers. */
    bool removeAll(quint64 collection, QList<quint64> *numbers);

    /** From now on changes are apart from those seen so far. */
    bool startRecording(quint64 collection);
    bool clearFlags(quint64 number);
    bool clearAllFlags(quint64 collection);
    bool purgeAll(quint64 collection);

private:
    QList<QtContacts::QContact> read(const QString &condition, const QVariantList &values) const;

    ContactDatabase &mDatabase;
};
