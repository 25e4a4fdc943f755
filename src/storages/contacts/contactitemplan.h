// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascontactsitem.h"
#include "storages/contacts/contactcases.h"
#include "storages/contacts/contactfolderrows.h"

#include <QList>
#include <QMap>
#include <QStringList>
#include <QUrl>

/** What is known of a folder before a reply is written to it. */
struct ContactFolderState
{
    /** A contact with an origin and without a row. */
    struct Stray
    {
        QString localId;
        bool isEdited = false;
        QUrl avatar;
    };

    ContactFolderRows rows;
    /** By their server identifiers. */
    QMap<QString, Stray> strays;
    /** The collection was lost: no contact of the rows is there any more. */
    bool collectionIsNew = false;
};

/**
 * What a reply means for the contacts of its folder: which ones are stored, which ones go, and which rows the
 * mapping gets. Looks at neither store nor mapping; ContactItemBatch carries it out.
 */
class ContactItemPlan
{
public:
    struct Entry
    {
        /** With the local identifier of the contact that it becomes, which is empty for a new one, and the
         * picture that is known of it. */
        EasContactsItem item;
        /** False for a contact that keeps the user's details. */
        bool isStored = true;
        bool hasRow = false;
    };
    struct Deletion
    {
        QString serverId;
        QString localId;
        /** Empty if the mapping knows of none. */
        QUrl avatar;
    };

    /**
     * An item of a reply that already has a local identifier is that contact: the same reply has acknowledged
     * its upload. Of several items with one server identifier the last one holds.
     */
    ContactItemPlan(const ContactFolderState &state, const QList<EasContactsItem> &added,
        const QList<EasContactsItem> &changed, const QStringList &deleted);

    const QList<Entry> &entries() const { return mEntries; }
    const QList<Deletion> &deletions() const { return mDeletions; }
    /** Server identifiers of changes and deletions of which nothing was known. */
    const QStringList &unknown() const { return mUnknown; }

private:
    void enter(const ContactFolderState &state, const EasContactsItem &item);
    Entry entryOf(const ContactFolderState &state, EasContactsItem item) const;
    void remove(const ContactFolderState &state, const QString &serverId);

    QList<Entry> mEntries;
    QList<Deletion> mDeletions;
    QStringList mUnknown;
    /** Of entries, by server identifiers. */
    QMap<QString, int> mPlaces;
    /** Local identifiers of contacts whose upload the reply acknowledges, by server identifiers. */
    QMap<QString, QString> mAcknowledged;
};
