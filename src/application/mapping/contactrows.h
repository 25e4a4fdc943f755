// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/mapping/itemrows.h"

#include <QList>
#include <QUrl>

class EasContactsItem;

/** Rows of contacts. Belongs to EasDatabase, whose connection outlives it. Main thread only. */
class ContactRows : public ItemRows
{
public:
    explicit ContactRows(PreparedStatements &statements);

    /** A contact that is there already, by server, folder and local identifier, is left as it is. */
    bool add(EasAccountId accountId, const QList<EasContactsItem> &items) const;
    /** An empty collection means all folders of the account, here and in the next ones. */
    bool update(
        EasAccountId accountId, const QList<EasContactsItem> &items, const QString &collectionId) const;
    bool remove(EasAccountId accountId, const QStringList &serverIds, const QString &collectionId) const;
    Lookup<QStringList> localIds(EasAccountId accountId, const QString &collectionId) const;
    Lookup<Map> localToServerIds(EasAccountId accountId, const QString &collectionId) const;
    Lookup<QMap<QString, QUrl>> avatarUrls(EasAccountId accountId) const;
};
