// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QObject>
#include <QString>

/** The server's answer about one message that was to be moved. A plain value. */
class MoveItemsResponse
{
    Q_GADGET

public:
    int status() const { return mStatus; }
    void setStatus(int status) { mStatus = status; }
    QString sourceMessageId() const { return mSourceMessageId; }
    void setSourceMessageId(const QString &id) { mSourceMessageId = id; }
    /** The message's identifier in its new folder. */
    QString destinationMessageId() const { return mDestinationMessageId; }
    void setDestinationMessageId(const QString &id) { mDestinationMessageId = id; }

    void clear() { *this = MoveItemsResponse(); }

private:
    int mStatus = 0;
    QString mSourceMessageId;
    QString mDestinationMessageId;
};
