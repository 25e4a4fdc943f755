// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "storages/mail/mailmessageadder.h"

#include <QList>
#include <QStringList>

struct MailStoreContext;
class EasEmailItem;

/** Keeps what a search on the server has found as temporary messages of the store. */
class MailSearchResults
{
public:
    explicit MailSearchResults(const MailStoreContext &context);

    /**
     * Stores the hits in place of earlier ones of the same names; ids come in the order of the items. A hit
     * that is synchronised anyway is the message that is there.
     */
    bool add(QList<EasEmailItem> &items, QList<quint64> &ids);

private:
    bool removeEarlier(const QList<EasEmailItem> &items) const;

    const MailStoreContext &mContext;
    MailMessageAdder mAdder;
};
