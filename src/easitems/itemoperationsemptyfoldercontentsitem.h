// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QObject>
#include <QString>

/** The server's answer about one folder that was to be emptied. A plain value. */
class ItemOperationsEmptyFolderContentsItem
{
    Q_GADGET

public:
    int status() const { return mStatus; }
    void setStatus(int status) { mStatus = status; }
    QString collectionId() const { return mCollectionId; }
    void setCollectionId(const QString &collectionId) { mCollectionId = collectionId; }

    void clear() { *this = ItemOperationsEmptyFolderContentsItem(); }

private:
    int mStatus = 0;
    QString mCollectionId;
};
