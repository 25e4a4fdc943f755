// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/lookup.h"
#include "common/easaccountid.h"
#include "easitems/emailserverid.h"

#include <QHash>
#include <QList>
#include <QString>

/**
 * The server identifiers of the mail that a reply names, as they stood when it arrived: finds the identifier
 * under which a message of the reply is kept. A value on the stack of a request's slot. Main thread only.
 *
 * Only what the reply names is looked up: a reply has a hundred messages, the account may have a hundred
 * thousand.
 */
class MailServerIds
{
public:
    /** An item as replies name it. */
    struct Item
    {
        QString collectionId;
        WireEmailId wireId;
    };

    /** Looks up all items of a reply together. */
    static Lookup<MailServerIds> lookUp(EasAccountId accountId, const QList<Item> &items);

    /** Whether a message is kept under an identifier of kept(). */
    bool contains(const KeptEmailId &keptId) const;

    /** The identifier of one of the items that were looked up; a new message is entered with add(). */
    KeptEmailId kept(const QString &collectionId, const WireEmailId &wireId) const;
    void add(const KeptEmailId &keptId, const QString &collectionId);

private:
    QHash<KeptEmailId, QString> mCollections;
};
