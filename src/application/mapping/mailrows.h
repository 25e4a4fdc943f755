// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/mapping/itemrows.h"

#include <QList>
#include <QVariantList>

class EasEmailItem;

/** Rows of messages. Belongs to EasDatabase, whose connection outlives it. Main thread only. */
class MailRows : public ItemRows
{
public:
    explicit MailRows(PreparedStatements &statements);

    bool add(EasAccountId accountId, const QList<EasEmailItem> &items) const;
    /** Writes the folder of items that have changed it, and nothing else. */
    bool update(EasAccountId accountId, const QList<EasEmailItem> &items) const;
    /** Gives rows their new server identifier and folder after a move; the local identifier stays. */
    bool updateMoved(EasAccountId accountId, const QList<EasEmailItem> &items) const;

private:
    bool selectMovedRows(
        EasAccountId accountId, const QList<EasEmailItem> &items, QVariantList *rowIds) const;
};
