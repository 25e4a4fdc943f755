// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QHash>
#include <QList>
#include <QPair>
#include <QSet>
#include <QString>
#include <QStringList>

/**
 * The server identifiers of an account's mail as they stood when a reply arrived: finds the identifier under
 * which a message of the reply is kept. A value on the stack of a request's slot. Main thread only.
 *
 * Only what is asked for is looked up: a reply has a hundred messages, the account may have a hundred
 * thousand.
 */
class MailServerIds
{
public:
    explicit MailServerIds(EasAccountId accountId);

    /** An item as replies name it: its collection, and its identifier there. */
    using Item = QPair<QString, QString>;

    /** Looks items up together; those that are not named here are looked up one by one. */
    void lookUp(const QList<Item> &items);
    /** True if the database could not be read; then nothing is known of any message. */
    bool lookupFailed() const { return mLookupFailed; }

    bool contains(const QString &keptId) const;

    /** The identifier of an item in the reply of a collection; a new item is entered with add(). */
    QString kept(const QString &collectionId, const QString &wireId) const;
    void add(const QString &keptId, const QString &collectionId);

private:
    void read(const QStringList &keptIds) const;

    EasAccountId mAccountId;
    mutable QSet<QString> mRead;
    mutable QHash<QString, QString> mCollections;
    mutable bool mLookupFailed = false;
};
