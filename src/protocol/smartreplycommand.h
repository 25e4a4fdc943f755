// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/smartmailcommand.h"

/** Sends an answer, below which the server quotes the message that is answered. */
class SmartReplyCommand : public SmartMailCommand
{
    Q_OBJECT

public:
    SmartReplyCommand(EasAccountId accountId, QObject *parent, quint64 messageId, const QByteArray &mime,
        bool saveInSent, bool replaceMime);

    void setReplySource(const QString &collectionId, const QString &itemId, const QDateTime &instanceId)
    {
        setSource(collectionId, itemId, instanceId);
    }
    void setReplySource(const QString &longId) { setSource(longId); }

protected:
    const Kind &kind() const override;
};
