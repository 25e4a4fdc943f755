// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/smartmailcommand.h"

/** Forwards a message, which the server adds with all its attachments. */
class SmartForwardCommand : public SmartMailCommand
{
    Q_OBJECT

public:
    SmartForwardCommand(EasAccountId accountId, QObject *parent, quint64 messageId, const QByteArray &mime,
        bool saveInSent, bool replaceMime);

    void setForwardSource(const QString &collectionId, const QString &itemId, const QDateTime &instanceId)
    {
        setSource(collectionId, itemId, instanceId);
    }
    void setForwardSource(const QString &longId) { setSource(longId); }

protected:
    const Kind &kind() const override;
};
