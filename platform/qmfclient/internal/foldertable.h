// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "internal/customfieldtable.h"
#include "internal/mailchanges.h"
#include "internal/maildatabase.h"

#include <qmailfolder.h>

class MailKeyNode;

/** The folders. Writing needs a transaction of the caller's. */
class FolderTable
{
public:
    explicit FolderTable(MailDatabase &database);

    /** The account of the folder has been found to exist. The object gets its id. */
    bool add(QMailFolder &folder, MailChanges &changes);
    bool update(QMailFolder &folder, MailChanges &changes);
    bool remove(const QList<quint64> &ids, MailChanges &changes);

    QList<quint64> query(const MailKeyNode &key, uint limit, uint offset);
    int count(const MailKeyNode &key);
    bool load(quint64 id, QMailFolder &folder);
    bool exists(quint64 id);
    /** The folder itself and all below it. */
    QList<quint64> withDescendants(quint64 id);
    QList<quint64> ancestors(quint64 id);

private:
    MailDatabase &mDatabase;
    CustomFieldTable mFields;
};
