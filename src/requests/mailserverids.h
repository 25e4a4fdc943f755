// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QMap>
#include <QString>

/**
 * The server identifiers of an account's mail as they stood when a reply arrived: finds the identifier under
 * which a message of the reply is kept. A value on the stack of a request's slot. Main thread only.
 */
class MailServerIds
{
public:
    explicit MailServerIds(EasAccountId accountId);

    /** True if the database could not be read; then nothing is known of any message. */
    bool lookupFailed() const { return mLookupFailed; }
    bool contains(const QString &keptId) const;

    /** The identifier of an item in the reply of a collection; a new item is entered with add(). */
    QString kept(const QString &collectionId, const QString &wireId) const;
    void add(const QString &keptId, const QString &collectionId);

private:
    const QMap<QString, QString> &collections() const;

    EasAccountId mAccountId;
    QMap<QString, QString> mLocalIds;
    QMap<QString, QString> mAddedCollections;
    mutable QMap<QString, QString> mCollections;
    mutable bool mCollectionsRead = false;
    mutable bool mLookupFailed = false;
};
