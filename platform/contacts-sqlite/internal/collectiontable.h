// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "internal/contactdatabase.h"

#include <QtContacts/QContactCollection>

#include <QList>

#include <optional>

/** The rows of collections. Those that are marked as deleted are still there for whoever synchronises. */
class CollectionTable
{
public:
    enum Origin { Local, Synchronised };

    struct Row
    {
        QtContacts::QContactCollection collection;
        int flags;
    };

    explicit CollectionTable(ContactDatabase &database);

    QList<QtContacts::QContactCollection> collections() const;
    std::optional<QtContacts::QContactCollection> collection(quint64 number) const;
    bool exists(quint64 number) const;
    QList<Row> withDeleted() const;

    /** Sets the collection's identifier. */
    bool insert(QtContacts::QContactCollection *collection, Origin origin);
    bool update(const QtContacts::QContactCollection &collection, Origin origin);
    bool markDeleted(quint64 number);
    bool clearFlags(quint64 number);
    bool purge(quint64 number);
    /** False if it could not be read. */
    bool readMarkedDeleted(quint64 number, bool *marked) const;

private:
    QList<Row> read(const QString &condition, const QVariantList &values) const;

    ContactDatabase &mDatabase;
};
