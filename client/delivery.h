// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "client/outbox.h"

class CommandContext;
class DaemonRequest;
class RequestRun;

/**
 * Has the daemon send messages that stand in the Outbox, and says where each of them is then. On the stack of
 * a command; runs the application's event loop.
 */
class Delivery
{
public:
    Delivery(CommandContext &context, EasAccountId accountId);

    /** Each message is tried for itself; the exit status of the first that was not sent. */
    int send(const QMailMessageIdList &ids);

private:
    void noteSent(const QMailMessageId &id, const DaemonRequest &request);
    void noteFailed(const QMailMessageId &id, const QString &error, bool mayHaveGone);
    void tell(bool isSent);

    CommandContext &mContext;
    EasAccountId mAccountId;
    Outbox mOutbox;
    QStringList mSent;
    QStringList mWaiting;
    QStringList mDrafts;
};
