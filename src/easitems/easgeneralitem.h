// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/easbaseitem.h"

#include <QList>

/**
 * An item that lives in a folder, with the list of fields that were set since it was read.
 *
 * A field is named by its tag: code page times 256 plus token. Stores and database apply exactly the fields
 * of the list. A plain value.
 */
class EasGeneralItem : public EasBaseItem
{
    Q_GADGET

public:
    QString collectionId() const { return mCollectionId; }
    void setCollectionId(const QString &collectionId) { mCollectionId = collectionId; }

    quint64 localCollectionId() const { return mLocalCollectionId; }
    void setLocalCollectionId(quint64 id) { mLocalCollectionId = id; }

    QString longId() const { return mLongId; }
    void setLongId(const QString &longId) { mLongId = longId; }

    QList<uint> changedFields() const { return mChangedFields; }

    /** Enters a tag once, however often it is appended. */
    void appendChangedField(uint tag);
    void clearChangedFields() { mChangedFields.clear(); }

    void clear() { *this = EasGeneralItem(); }

private:
    QString mCollectionId;
    quint64 mLocalCollectionId = 0;
    QList<uint> mChangedFields;
    QString mLongId;
};
