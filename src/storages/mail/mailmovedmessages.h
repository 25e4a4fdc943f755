// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "storages/mail/mailmessagechanges.h"

#include <QList>
#include <QMap>
#include <QString>

#include <qmailid.h>

struct MailStoreContext;
class EasEmailItem;
class QMailMessage;

/** Takes over what the server says about moves that the user made. */
class MailMovedMessages
{
public:
    explicit MailMovedMessages(const MailStoreContext &context);

    /** New server ids, and no pending move any more. serverToLocal: by the old ids or, already, the new. */
    bool update(const QList<EasEmailItem> &items, const QMap<QString, QString> &serverToLocal) const;

private:
    static QMailMessageId messageOf(const EasEmailItem &item, const QMap<QString, QString> &serverToLocal);
    bool finishMove(QMailMessage &message, const EasEmailItem &item) const;

    const MailStoreContext &mContext;
    MailMessageChanges mChanges;
};
