// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/sendstatus.h"

#include "client/exitstatus.h"
#include "client/requestrun.h"
#include "client/statustext.h"
#include "common/easrequeststatus.h"
#include "protocol/base/eas.h"
#include "protocol/base/protocolutils.h"

#include <QNetworkReply>

#include <algorithm>
#include <array>

namespace {

constexpr int TransportBase = ProtocolUtils::TransportStatusBase;

constexpr StatusText::Sentence sentences[] = {
    { EasRequestStatus::RequestStatusInternalError,
        "The engine could not read the message from the mail store, or did not understand the server's "
        "answer." },
    { EasRequestStatus::RequestStatusServerStorageFull,
        "The mailbox on the server is full. Free some space there, then send again." },
    { EasRequestStatus::RequestStatusCommandNotSupported, "The server lets no mail be sent." },
    { EasRequestStatus::RequestStatusMessageTooLarge,
        "The message is too large for the server. Leave out attachments, or make them smaller." },
    { Eas::CommonStatusInvalidContent, "The server does not take the message as it is written." },
    { Eas::CommonStatusInvalidMime, "The server does not take the message as it is written." },
    { Eas::CommonStatusMailboxServerOffline, "The server is down for this mailbox. Send again later." },
    { Eas::CommonStatusSendQuotaExceeded,
        "The server sends no more mail for this account for now. Send again later." },
    { Eas::CommonStatusMessageRecipientUnresolved,
        "The server does not know one of the recipients. Check their addresses." },
    { Eas::CommonStatusMessageReplyNotAllowed, "The server does not let this message be answered." },
    { Eas::CommonStatusMessageHasNoRecipient, "The server finds no recipient in the message." },
    { Eas::CommonStatusMailSubmissionFailed,
        "The server could not pass the message on. Check the addresses, or send again later." },
    { Eas::CommonStatusMessageReplyFailed, "The server could not make the reply. Try --whole." },
    { Eas::CommonStatusAttachmentTooLarge,
        "An attachment is too large for the server. Leave it out, or make it smaller." },
    { Eas::CommonStatusAccountSendDisabled, "The server lets this account send no mail." },
};

/** Ends at which the request may have reached the server and the answer has not come back. */
constexpr std::array<int, 7> LostAnswers { EasRequestStatus::RequestStatusInternalError,
    TransportBase + QNetworkReply::RemoteHostClosedError, TransportBase + QNetworkReply::TimeoutError,
    TransportBase + QNetworkReply::TemporaryNetworkFailureError,
    TransportBase + QNetworkReply::NetworkSessionFailedError,
    TransportBase + QNetworkReply::UnknownNetworkError, TransportBase + QNetworkReply::ProtocolFailure };

} // namespace

void SendStatus::explain(RequestRun &run)
{
    for (const StatusText::Sentence &sentence : sentences)
        run.setExplanation(sentence.status, QString::fromLatin1(sentence.text));
    run.accept(Eas::CommonStatusItemNotFound);
}

bool SendStatus::isSentWhole(const DaemonRequest &request)
{
    return request.exitStatus() == ExitFailure && request.status() == Eas::CommonStatusItemNotFound;
}

bool SendStatus::mayHaveGone(const DaemonRequest &request, int exitStatus)
{
    switch (exitStatus) {
    case ExitFailure:
        return std::find(LostAnswers.cbegin(), LostAnswers.cend(), request.status()) != LostAnswers.cend();
    case ExitUnavailable:
    case ExitCancelled:
        return request.isAccepted();
    default:
        return false;
    }
}
