// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/commandrequest.h"
#include "requests/sentmessage.h"
#include "requests/statustable.h"

class ComposeMailCommand;

/**
 * Sends a message that the user has finished, a new one, a reply or a forward.
 *
 * An answer or a forward goes without the message that it answers where the server adds that itself. Once the
 * server has it the message leaves the Outbox, before requestCompleted(), and Sent Items are synchronized
 * over the bus. A message that was not sent stays where it is, or goes to Drafts if it is larger than what
 * the server lets the user send. Status 150 means that the server did not find what is answered, and that the
 * message goes out as a whole, after this request. Queued and owned by the RequestManager. Main thread only.
 */
class SendMailRequest : public CommandRequest
{
    Q_OBJECT

public:
    SendMailRequest(EasAccountId accountId, quint64 requestId, quint64 messageId, QObject *parent = nullptr);

public Q_SLOTS:
    void retrySend() override;

protected:
    void startRequest() override;
    QString commandName() const override;
    void onCommandFinished(bool success) override;

private:
    /** What a status makes of the message. */
    enum class SendVerb {
        Complete,
        Cancel,
        RetryLater,
        RefreshDeviceAndRetryLater,
        /** The server's mailbox is full. */
        ReportStorageFull,
        MoveToDrafts,
        /** The server does not know what is answered or forwarded. */
        SendWhole
    };
    using SendStatusTable = StatusTable<SendVerb>;
    static const SendStatusTable &statuses();

    /** False, and the request has ended, if the account lacks a part that sending needs. */
    bool isReady();
    ComposeMailCommand *createCommand();
    /** Null if the message has to go as a whole. */
    ComposeMailCommand *createSmartCommand(MailStorage &storage, bool saveInSent);
    void handleStatus(int status);
    void perform(SendVerb verb);
    void settle();
    void moveCurrentEmailToDrafts();
    void sendSendMailCommand();
    QString localId() const { return QString::number(mMessageId); }

    const quint64 mMessageId;
    MailStorage::SentCopy mSentCopy = MailStorage::SentCopy::OnServer;
    const SentMessage mSentMessage;
};
