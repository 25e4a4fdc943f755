// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QObject>
#include <QString>

/** The server's answer about one conversation that was to be moved. A plain value. */
class ItemOperationsMoveItem
{
    Q_GADGET

public:
    int status() const { return mStatus; }
    void setStatus(int status) { mStatus = status; }
    QString conversationId() const { return mConversationId; }
    void setConversationId(const QString &conversationId) { mConversationId = conversationId; }

    void clear() { *this = ItemOperationsMoveItem(); }

private:
    int mStatus = 0;
    QString mConversationId;
};
