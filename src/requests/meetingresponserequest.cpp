// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/meetingresponserequest.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "protocol/base/eas.h"
#include "protocol/base/protocolutils.h"
#include "protocol/sendmailcommand.h"
#include "requests/meetinganswerlookup.h"
#include "requests/sentmessage.h"
#include "storages/calendarstorage.h"
#include "storages/mailstorage.h"

#include <QStringList>

namespace {

constexpr int HttpInsufficientStorage = 507;

/** What a status says of one answer. */
enum class AnswerVerb { Accept, RepeatLater, Fail };
using AnswerStatusTable = StatusTable<AnswerVerb>;

constexpr AnswerStatusTable::Row answerRows[] = {
    { Eas::MeetingResponseStatusSuccess, QtInfoMsg, nullptr, AnswerVerb::Accept },
    { Eas::MeetingResponseStatusInvalidMeetingRequest, QtWarningMsg, "Invalid request", AnswerVerb::Fail },
    { Eas::MeetingResponseStatusServerMailboxError, QtInfoMsg, nullptr, AnswerVerb::RepeatLater },
    { Eas::MeetingResponseStatusServerError, QtInfoMsg, nullptr, AnswerVerb::RepeatLater },
};
constexpr AnswerStatusTable answerStatuses(answerRows);
static_assert(answerStatuses.namesEachStatusOnce());

constexpr char InvalidBodyText[] = "Invalid WBXML/XML. Something really wrong with a request";
constexpr char DeviceText[] = "invalid Device ID or Type. Trying to update Device information";

// Of a SendMail; what is missing is common to all requests, or no success.
constexpr RequestStatusTable::Row replyRows[] = {
    { Eas::CommonStatusInvalidContent, QtCriticalMsg, "Invalid body of the request. Sent empty body?",
        RequestVerb::Complete },
    { Eas::CommonStatusInvalidWbxml, QtCriticalMsg, InvalidBodyText, RequestVerb::Complete },
    { Eas::CommonStatusInvalidXml, QtCriticalMsg, InvalidBodyText, RequestVerb::Complete },
    { Eas::CommonStatusInvalidMime, QtCriticalMsg, "Invalid MIME. Check MIME of the request.",
        RequestVerb::Complete },
    { Eas::CommonStatusInvalidDeviceId, QtCriticalMsg, DeviceText, RequestVerb::RefreshDeviceAndRetryLater },
    { Eas::CommonStatusInvalidDeviceType, QtCriticalMsg, DeviceText,
        RequestVerb::RefreshDeviceAndRetryLater },
    { Eas::CommonStatusMailboxQuoteExceeded, QtWarningMsg, "The mailbox has reached its size quota",
        RequestVerb::ReportStorageFull },
    { Eas::CommonStatusSendQuotaExceeded, QtWarningMsg, "The request would exceed the send quota.",
        RequestVerb::ReportStorageFull },
};
constexpr RequestStatusTable replyStatuses(replyRows);
static_assert(replyStatuses.namesEachStatusOnce());

} // namespace

MeetingResponseRequest::MeetingResponseRequest(EasAccountId accountId, quint64 requestId, QObject *parent)
    : CommandRequest(accountId, requestId, parent)
{
}

QString MeetingResponseRequest::commandName() const
{
    return ProtocolUtils::CommandMeetingResponse;
}

// The answers

void MeetingResponseRequest::appendRequest(EasItemsCommon::UserResponseType userResponse,
    quint64 requestMessageId, qint64 instanceId, quint64 replyMessageId)
{
    append(RequestData(userResponse, requestMessageId, instanceId, replyMessageId));
}

void MeetingResponseRequest::appendRequestEvent(EasItemsCommon::UserResponseType userResponse,
    const QString &requestEventId, qint64 instanceId, quint64 replyMessageId)
{
    append(RequestData(userResponse, requestEventId, instanceId, replyMessageId));
}

void MeetingResponseRequest::append(const RequestData &answer)
{
    if (mState != State::NotStarted) {
        qCWarning(eas()) << "Wrong state:" << int(mState);
        return;
    }
    if (answer.requestMessageId == 0 && !answer.isAboutEvent()) {
        qCWarning(eas()) << "No ID for request message";
        return;
    }
    mAnswers.append(answer);
}

// The steps

void MeetingResponseRequest::startRequest()
{
    if (mState == State::SendingReplies)
        startSendMailCommand();
    else
        startMeetingResponseCommand();
}

void MeetingResponseRequest::resumeRequest(bool success)
{
    if (success && mState != State::SendingReplies)
        qCInfo(eas()) << "resuming MeetingResponse state";
    CommandRequest::resumeRequest(success);
}

void MeetingResponseRequest::retrySend()
{
    if (attempts().spent()) {
        qCWarning(eas()) << (mState == State::SendingReplies
                ? "failed to retry SendMail command, giving up"
                : "failed to retry MeetingResponse command, giving up");
        return complete();
    }
    CommandRequest::retrySend();
}

void MeetingResponseRequest::reportRequestCompleted()
{
    mState = State::NotStarted;
    CommandRequest::reportRequestCompleted();
}

void MeetingResponseRequest::onCommandFinished(bool success)
{
    if (!currentCommand()) {
        qCCritical(eas()) << "command is null";
        return completeWith(RequestStatusInternalError);
    }
    if (!acceptResult(currentCommand(), success)) {
        qCInfo(eas()) << (mState == State::SendingReplies ? "Provision request required"
                                                          : "Provision request started");
        return dropCommand();
    }
    const bool isReply = mState == State::SendingReplies;
    if (handleStatus(status(), isReply ? replyStatuses : RequestStatusTable()))
        return;
    if (isReply)
        processSendMailFinished(success);
    else
        processMeetingResponseFinished(success);
}

// The first step: the server learns of the answers.

void MeetingResponseRequest::startMeetingResponseCommand()
{
    if (mAnswers.isEmpty()) {
        qCInfo(eas()) << "No responses";
        return complete();
    }
    if (currentCommand()) {
        qCInfo(eas()) << "Cancelling outstanding command";
        dropCommand();
    }
    auto *const command = newCommand<MeetingResponseCommand>();
    command->setOptions(mOptions);
    if (!appendContainers(*command))
        return completeWith(RequestStatusInternalError);
    mState = State::Answering;
    command->start();
}

bool MeetingResponseRequest::appendContainers(MeetingResponseCommand &command)
{
    const EasAccount *const answering = account();
    if (!answering) {
        qCCritical(eas()) << "No account object for account:" << accountId();
        return false;
    }
    const QSharedPointer<MailStorage> mails = answering->mailStorage();
    if (!mails) {
        qCCritical(eas()) << "No email storage for account:" << accountId();
        return false;
    }
    const QSharedPointer<CalendarStorage> events = answering->calendarStorage();
    if (!events) {
        qCCritical(eas()) << "No calendar storage for account:" << accountId();
        return false;
    }
    const bool saysMore = !mOptions.newTimeComment.isEmpty() || !mOptions.newStartTime.isEmpty();
    const MeetingAnswerLookup lookup(accountId(), *mails, *events);
    for (const RequestData &answer : qAsConst(mAnswers)) {
        std::optional<MeetingResponseRequestContainer> container = lookup.container(answer);
        if (!container)
            return false;
        container->setResponseWanted(saysMore || answer.replyMessageId != 0);
        command.appendRequest(*container);
    }
    return true;
}

void MeetingResponseRequest::processMeetingResponseFinished(bool success)
{
    qCInfo(eas()) << "MeetingResponse command finished: " << (success ? "true" : "false");
    if (!success) {
        qCWarning(eas()) << "MeetingResponse command failed";
        return complete();
    }
    const auto *const command = qobject_cast<MeetingResponseCommand *>(currentCommand());
    if (!command) {
        qCWarning(eas()) << "MeetingResponse command object is not available";
        return completeWith(RequestStatusInternalError);
    }
    if (takeResults(*command))
        startReplies();
}

bool MeetingResponseRequest::takeResults(const MeetingResponseCommand &command)
{
    QList<int> statuses;
    const QList<MeetingResponseResultContainer> results = command.requestResults();
    for (const MeetingResponseResultContainer &result : results)
        statuses.append(result.status());
    if (statuses.isEmpty())
        statuses.append(command.status());

    int repeated = Eas::MeetingResponseStatusUndefined;
    for (const int status : qAsConst(statuses)) {
        const AnswerStatusTable::Row *const row = answerStatuses.find(status);
        if (!row)
            qCWarning(eas()) << "unhandled MeetingResponse Result status" << status;
        else
            logStatusText(row->level, row->text);
        if (row && row->verb == AnswerVerb::RepeatLater)
            repeated = status;
        if (row && row->verb != AnswerVerb::Fail)
            continue;
        qCCritical(eas()) << "Fatal error:" << status;
        // What the server says of the whole command tells the client more.
        completeWith(results.isEmpty() && !row ? status : int(RequestStatusInternalError));
        return false;
    }
    if (repeated == Eas::MeetingResponseStatusUndefined)
        return true;
    qCInfo(eas()) << "Resending after a timeout";
    setStatus(repeated);
    startResendTimer();
    return false;
}

// The second step: the organizers do.

void MeetingResponseRequest::startReplies()
{
    clearRetries();
    resetTimeoutFactor();
    outcome().forgetFailure();
    mReplies = MeetingReplyMails(mAnswers);
    const EasAccount *const answering = account();
    const bool serverWrites =
        answering && answering->protocolVersion() >= ExchangeActiveSync::ProtocolVersion160;
    if (!serverWrites)
        return startSendMailCommand();
    if (!mReplies.giveWayToServer(*answering))
        outcome().noteFailure(RequestStatusInternalError);
    finishReplies();
}

void MeetingResponseRequest::startSendMailCommand()
{
    qCDebug(eas()) << "checking SendMail command";
    EasAccount *const answering = account();
    if (!answering) {
        qCCritical(eas()) << "No account object for account:" << accountId();
        return completeWith(RequestStatusInternalError);
    }
    if (!answering->commandIsSupported(ProtocolUtils::CommandSendMail)) {
        qCInfo(eas()) << "SendMail command not supported for account:" << accountId();
        return completeWith(RequestStatusSuccess);
    }
    const quint64 reply = mReplies.takeNext(*answering);
    if (reply == 0)
        return finishReplies();
    mState = State::SendingReplies;
    newCommand<SendMailCommand>(reply, true)->start();
}

void MeetingResponseRequest::processSendMailFinished(bool success)
{
    qCInfo(eas()) << "SendMail command finished: " << (success ? "true" : "false");
    const auto *const command = qobject_cast<SendMailCommand *>(currentCommand());
    if (!command) {
        qCCritical(eas()) << "SendMail command object is not available";
        return completeWith(RequestStatusInternalError);
    }
    if (!success) {
        qCWarning(eas()) << "SendMail command failed";
        return completeWith(command->httpStatus() == HttpInsufficientStorage ? RequestStatusServerStorageFull
                                                                             : RequestStatusInternalError);
    }
    if (!SentMessage::isSent(command->status())) {
        qCCritical(eas()) << "error status" << command->status() << "completing request";
        return complete();
    }
    clearRetries();
    resetTimeoutFactor();
    const quint64 reply = command->clientMessageId();
    mReplies.markSent(reply);
    // It has gone, and could go again from the Outbox.
    if (!SentMessage(accountId(), reply).settle(account(), MailStorage::SentCopy::OnServer))
        outcome().noteFailure(RequestStatusInternalError);
    startSendMailCommand();
}

void MeetingResponseRequest::finishReplies()
{
    qCInfo(eas()) << "Nothing (more) to send";
    deleteAllResponseEmails();
    completeWith(mReplies.hasFailed() ? int(RequestStatusInternalError) : outcome().failure());
}

bool MeetingResponseRequest::deleteAllResponseEmails()
{
    const QList<quint64> ids = mReplies.answeredInvitations();
    if (ids.isEmpty())
        return true;
    const EasAccount *const answering = account();
    const QSharedPointer<MailStorage> mails =
        answering ? answering->mailStorage() : QSharedPointer<MailStorage>();
    if (!mails) {
        qCCritical(eas()) << "No email storage for account:" << accountId()
                          << ". Failed to remove meeting response emails";
        return false;
    }
    if (mails->deleteEmailsByLocalIds(ids))
        return true;
    QStringList texts;
    for (const quint64 id : ids)
        texts.append(QString::number(id));
    qCCritical(eas()) << "Emails removal failed, ids:" << texts.join(QStringLiteral(", "));
    return false;
}
