// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"
#include "storages/mailstorage.h"

#include <memory>

class EasAccount;
class EasDBusInterfaceProxy;

/** What becomes of a message that the server has sent. Belongs to whatever sends the message. */
class SentMessage
{
public:
    SentMessage(EasAccountId accountId, quint64 messageId);
    ~SentMessage();

    /** Whether this status of a finished command says that the server has sent the message. */
    static bool isSent(int status);

    /** Takes the message out of the Outbox and has Sent Items synchronized; false, logged, if the message is
     * still in the Outbox. The account may be null. */
    bool settle(const EasAccount *account, MailStorage::SentCopy copy) const;

private:
    qulonglong syncSentItemsFolder() const;

    const EasAccountId mAccountId;
    const quint64 mMessageId;
    /** Of the daemon's own service: a sync that clients see, as if one of them had asked for it. */
    const std::unique_ptr<EasDBusInterfaceProxy> mProxy;
};
