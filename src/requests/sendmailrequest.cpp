// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/sendmailrequest.h"

#include "application/account/easaccount.h"
#include "application/base/deviceinformation.h"
#include "application/base/logging.h"
#include "configurations/emailaccountconfiguration.h"
#include "easitems/easemailitem.h"
#include "protocol/base/eas.h"
#include "protocol/base/protocolutils.h"
#include "protocol/sendmailcommand.h"
#include "protocol/smartforwardcommand.h"
#include "protocol/smartreplycommand.h"
#include "requests/detachedsending.h"

namespace {

// 10000 plus a network error, the value that really arrives, but named after an HTTP status. The last one
// comes from the HTTP status itself, for which Qt has no error of its own.
constexpr int TransportInvalidContent = ProtocolUtils::TransportStatusBase + 400;
constexpr int TransportServerError = ProtocolUtils::TransportStatusBase + 500;
constexpr int TransportRetryLater = ProtocolUtils::TransportStatusBase + 503;
constexpr int HttpInsufficientStorage = 507;
constexpr int TransportStorageFull = ProtocolUtils::TransportStatusBase + HttpInsufficientStorage;

constexpr char InvalidContentText[] = "invalid body of the request. Sent empty body?";
constexpr char InvalidBodyText[] = "invalid WBXML/XML. Something really wrong with a request";
constexpr char ServerErrorText[] = "server error. We shouldn't retry later. Completing request";
constexpr char DeviceText[] = "invalid Device ID or Type. Trying to update Device information";
constexpr char RetryLaterText[] = "we should try to send command again later. Timeout (in mseconds): 5000";
static_assert(ProtocolUtils::CommandsRetryTimeout == 5000, "the text names the delay");
constexpr char StorageFullText[] = "The mailbox has reached its size quota";

} // namespace

const SendMailRequest::SendStatusTable &SendMailRequest::statuses()
{
    static constexpr SendStatusTable::Row rows[] = {
        { Eas::CommonStatusInvalidContent, QtCriticalMsg, InvalidContentText, SendVerb::Complete },
        { TransportInvalidContent, QtCriticalMsg, InvalidContentText, SendVerb::Complete },
        { Eas::CommonStatusInvalidWbxml, QtCriticalMsg, InvalidBodyText, SendVerb::Complete },
        { Eas::CommonStatusInvalidXml, QtCriticalMsg, InvalidBodyText, SendVerb::Complete },
        { Eas::CommonStatusInvalidIds, QtCriticalMsg, ServerErrorText, SendVerb::Complete },
        { Eas::CommonStatusServerError, QtCriticalMsg, ServerErrorText, SendVerb::Complete },
        { TransportServerError, QtCriticalMsg, ServerErrorText, SendVerb::Complete },
        { Eas::CommonStatusInvalidMime, QtCriticalMsg, "invalid MIME. Check MIME of the request.",
            SendVerb::Complete },
        { Eas::CommonStatusInvalidDeviceId, QtCriticalMsg, DeviceText, SendVerb::RefreshDeviceAndRetryLater },
        { Eas::CommonStatusInvalidDeviceType, QtCriticalMsg, DeviceText,
            SendVerb::RefreshDeviceAndRetryLater },
        { Eas::CommonStatusServerErrorRetryLater, QtInfoMsg, RetryLaterText, SendVerb::RetryLater },
        { TransportRetryLater, QtInfoMsg, RetryLaterText, SendVerb::RetryLater },
        { Eas::CommonStatusMailboxQuoteExceeded, QtWarningMsg, StorageFullText, SendVerb::ReportStorageFull },
        { TransportStorageFull, QtWarningMsg, StorageFullText, SendVerb::ReportStorageFull },
        { Eas::CommonStatusSendQuotaExceeded, QtWarningMsg, "The request would exceed the send quota.",
            SendVerb::MoveToDrafts },
        { Eas::CommonStatusItemNotFound, QtCriticalMsg,
            "Smart Forward/Reply command failed due to invalid ItemId element", SendVerb::SendWhole },
        { ProtocolUtils::TransportStatusCancelled, QtInfoMsg, nullptr, SendVerb::Cancel },
    };
    static constexpr SendStatusTable table(rows);
    static_assert(table.namesEachStatusOnce());
    return table;
}

SendMailRequest::SendMailRequest(
    EasAccountId accountId, quint64 requestId, quint64 messageId, QObject *parent)
    : CommandRequest(accountId, requestId, parent)
    , mMessageId(messageId)
    , mSentMessage(accountId, messageId)
{
}

QString SendMailRequest::commandName() const
{
    return ProtocolUtils::CommandSendMail;
}

bool SendMailRequest::isReady()
{
    const EasAccount *const sender = account();
    const char *missing = nullptr;
    if (!sender)
        missing = "account not found";
    else if (!sender->mailStorage())
        missing = "MailStorage is null";
    else if (!sender->emailConfiguration())
        missing = "EmailConfig is null";
    if (!missing)
        return true;
    qCCritical(eas()) << missing;
    completeWith(RequestStatusInternalError);
    return false;
}

void SendMailRequest::startRequest()
{
    if (!isReady())
        return;
    ComposeMailCommand *const command = createCommand();
    if (!account()->mailStorage()->wasSent(localId()))
        return command->start();
    qCInfo(eas()) << "message" << mMessageId << "was sent before and leaves the Outbox now";
    settle();
}

ComposeMailCommand *SendMailRequest::createCommand()
{
    MailStorage &storage = *account()->mailStorage();
    const bool isAnswer = storage.isReply(localId()) || storage.isForward(localId());
    const bool saveInSent = account()->emailConfiguration()->saveInSentItems();
    ComposeMailCommand *const smart = isAnswer ? createSmartCommand(storage, saveInSent) : nullptr;
    // An answer that the server cannot add to is to stay there, whatever the account says of other messages.
    const bool isSaved = saveInSent || (isAnswer && !smart);
    mSentCopy = isSaved ? MailStorage::SentCopy::OnServer : MailStorage::SentCopy::KeptHere;
    return smart ? smart : newCommand<SendMailCommand>(mMessageId, isSaved);
}

ComposeMailCommand *SendMailRequest::createSmartCommand(MailStorage &storage, bool saveInSent)
{
    const bool isReply = storage.isReply(localId());
    const QString name = isReply ? ProtocolUtils::CommandSmartReply : ProtocolUtils::CommandSmartForward;
    if (!account()->commandIsSupported(name)) {
        qCInfo(eas()) << "the server does not offer" << name << ", the message goes as a whole";
        return nullptr;
    }
    const EasEmailItem item = storage.smartQueryMessage(localId());
    if (!item.body().smartMimeData())
        return nullptr;
    const QByteArray mime = item.body().mime();
    if (isReply) {
        auto *const command = newCommand<SmartReplyCommand>(mMessageId, mime, saveInSent, false);
        command->setReplySource(item.collectionId(), item.replyToId(), QDateTime());
        return command;
    }
    auto *const command = newCommand<SmartForwardCommand>(mMessageId, mime, saveInSent, false);
    command->setForwardSource(item.collectionId(), item.replyToId(), QDateTime());
    return command;
}

void SendMailRequest::retrySend()
{
    if (attempts().spent()) {
        qCWarning(eas()) << "no mroe attempts, failing request";
        return complete();
    }
    consumeRetry();
    if (currentCommand())
        return currentCommand()->start();
    qCWarning(eas()) << "command is null, starting request from scratch";
    startRequest();
}

void SendMailRequest::onCommandFinished(bool success)
{
    const BaseProtocolCommand *const command = currentCommand();
    if (!command) {
        qCCritical(eas()) << "Command is null";
        return complete();
    }
    qCInfo(eas()) << "request" << id() << "finished" << (success ? "true" : "false") << "status"
                  << command->status();
    if (!acceptResult(currentCommand(), success)) {
        qCInfo(eas()) << "Provision request required";
        return dropCommand();
    }
    if (command->httpStatus() == HttpInsufficientStorage)
        setStatus(TransportStorageFull);
    handleStatus(status());
}

void SendMailRequest::handleStatus(int status)
{
    if (SentMessage::isSent(status))
        return settle();
    const SendStatusTable::Row *const row = statuses().find(status);
    if (row) {
        logStatusText(row->level, row->text);
        return perform(row->verb);
    }
    qCCritical(eas()) << "error status" << status << "completing request" << id();
    complete();
}

void SendMailRequest::perform(SendVerb verb)
{
    switch (verb) {
    case SendVerb::Complete:
        return complete();
    case SendVerb::Cancel:
        return completeCancelled();
    case SendVerb::RetryLater:
        return startResendTimer();
    case SendVerb::RefreshDeviceAndRetryLater:
        DeviceInformation::refreshDeviceId();
        return startResendTimer();
    case SendVerb::ReportStorageFull:
        return completeWith(RequestStatusServerStorageFull);
    case SendVerb::MoveToDrafts:
        moveCurrentEmailToDrafts();
        return complete();
    case SendVerb::SendWhole:
        sendSendMailCommand();
        return complete();
    }
}

void SendMailRequest::settle()
{
    resetTimeoutFactor();
    clearRetries();
    const bool isSettled = mSentMessage.settle(account(), mSentCopy);
    completeWith(isSettled ? RequestStatusSuccess : RequestStatusInternalError);
}

void SendMailRequest::sendSendMailCommand()
{
    qCCritical(eas()) << "Trying a simple SendMail command instead";
    dropCommand();
    // It outlives this request.
    (new DetachedSending(accountId(), mMessageId, parent()))->start();
}

void SendMailRequest::moveCurrentEmailToDrafts()
{
    qCInfo(eas()) << "Flagging message as draft";
    const EasAccount *const sender = account();
    const QSharedPointer<MailStorage> storage =
        sender ? sender->mailStorage() : QSharedPointer<MailStorage>();
    if (!storage || !storage->moveToDrafts(localId()))
        qCWarning(eas()) << "message" << mMessageId << "stays where it is";
}
