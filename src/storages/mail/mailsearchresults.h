// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "storages/mail/mailmessageadder.h"

#include <QList>
#include <QStringList>

struct MailStoreContext;
class EasEmailItem;

/**
 * Keeps what a search on the server has found: as temporary messages in the store's own folder, which no sync
 * looks at and no folder of the account shows. The folder on the server is the one to restore to. An object
 * of the moment.
 */
class MailSearchResults
{
public:
    explicit MailSearchResults(const MailStoreContext &context);

    /**
     * Stores the hits in place of earlier ones of the same names; ids come in the order of the items. A hit
     * that is synchronised anyway is the message that is there, which stays as it is.
     */
    bool add(QList<EasEmailItem> &items, QList<quint64> &ids);

    /** The folder in which the server has a result without a long identifier; invalid for other messages. */
    static QMailFolderId folderOf(const MailStoreContext &context, quint64 messageId);

private:
    bool removeEarlier(const QList<EasEmailItem> &items) const;
    /** Null, logged, if it cannot be built. */
    std::unique_ptr<QMailMessage> messageFor(
        const EasEmailItem &item, const MailRecognition &recognition) const;

    const MailStoreContext &mContext;
    MailMessageAdder mAdder;
};
