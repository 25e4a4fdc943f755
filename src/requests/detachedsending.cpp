// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/detachedsending.h"

#include "application/base/logging.h"
#include "protocol/sendmailcommand.h"

DetachedSending::DetachedSending(EasAccountId accountId, quint64 messageId, QObject *engine)
    : QObject(engine)
    , mMessage(accountId, messageId)
    // The user's answer is to stay on the server, whatever the account says of other messages.
    , mCommand(new SendMailCommand(accountId, this, messageId, true))
{
    connect(mCommand, &BaseProtocolCommand::finished, this, &DetachedSending::onCommandFinished);
}

DetachedSending::~DetachedSending() = default;

void DetachedSending::start()
{
    mCommand->start();
}

void DetachedSending::onCommandFinished(bool success)
{
    const int status = mCommand->status();
    qCInfo(eas()) << "message" << mCommand->clientMessageId() << "went to the server as a whole, status"
                  << status;
    if (success && SentMessage::isSent(status))
        mMessage.settle(mCommand->account(), MailStorage::SentCopy::OnServer);
    deleteLater();
}
