// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/statustext.h"

#include "common/easrequeststatus.h"
#include "protocol/base/eas.h"
#include "protocol/base/protocolutils.h"

#include <QMetaEnum>
#include <QNetworkReply>

namespace {

constexpr int TransportBase = ProtocolUtils::TransportStatusBase;

constexpr StatusText::Sentence sentences[] = {
    { EasRequestStatus::RequestStatusVersionUnknown,
        "The server offers no protocol version between 12.0 and 16.1. Check that the address is that of an "
        "Exchange ActiveSync server." },
    { EasRequestStatus::RequestStatusInternalError,
        "The engine could not finish the work, or does not know the account. Is it enabled? The daemon's log "
        "tells more (fennel-easctl log debug)." },
    { EasRequestStatus::RequestStatusBadRequest,
        "The request made no sense to the server. Check its arguments." },
    { EasRequestStatus::RequestStatusCancelled,
        "Cancelled: another program did so, or the account was removed or disabled." },
    { EasRequestStatus::RequestStatusPolicyRefused,
        "The server asks for a security policy that this device does not apply." },
    { EasRequestStatus::RequestStatusServerStorageFull,
        "The mailbox on the server is full. Free some space there, then sync again." },
    { EasRequestStatus::RequestStatusWipeAcknowledged, "The server has had the account wiped." },
    { EasRequestStatus::RequestStatusCommandNotSupported, "The server does not offer this command." },
    { EasRequestStatus::RequestStatusNoNetwork, "There is no network. Try again once the device is online." },
    { EasRequestStatus::RequestStatusMessageTooLarge,
        "The message is too large, or the mailbox is over its quota." },
    { TransportBase + QNetworkReply::ConnectionRefusedError,
        "Nothing answers at the server's address and port. Check them with fennel-easctl account show." },
    { TransportBase + QNetworkReply::HostNotFoundError,
        "The server's host name is not known. Check its spelling." },
    { TransportBase + QNetworkReply::RemoteHostClosedError,
        "The connection broke before the server had answered. Try again later." },
    { TransportBase + QNetworkReply::TimeoutError, "The server did not answer in time. Try again later." },
    { TransportBase + QNetworkReply::SslHandshakeFailedError,
        "The server's certificate is not trusted. If it is your own server, allow it with "
        "fennel-easctl account edit --accept-all-certificates." },
    { TransportBase + QNetworkReply::AuthenticationRequiredError,
        "The server refused user name or password. Enter the password again with fennel-easctl password." },
    { TransportBase + QNetworkReply::ContentAccessDenied,
        "The server does not let this user or device in. Ask its administrator." },
    { TransportBase + QNetworkReply::UnknownContentError,
        "What answered does not do so as an Exchange server does. It may be another server, or a public "
        "network that wants you to log in first." },
    { TransportBase + QNetworkReply::InternalServerError, "The server failed. Try again later." },
    { TransportBase + QNetworkReply::ServiceUnavailableError,
        "The server is busy or down. Try again later." },
};

QString transportName(int status)
{
    const char *key = QMetaEnum::fromType<QNetworkReply::NetworkError>().valueToKey(status - TransportBase);
    return key ? QString::fromLatin1(key) : QString::number(status);
}

} // namespace

QString StatusText::name(int status)
{
    const QString own = EasRequestStatus::name(status);
    if (!own.isEmpty())
        return own;
    if (status >= TransportBase)
        return transportName(status);
    const char *key = status >= Eas::CommonStatusInvalidContent
        ? QMetaEnum::fromType<Eas::CommonStatus>().valueToKey(status)
        : nullptr;
    return key ? QString::fromLatin1(key) : QStringLiteral("status %1").arg(status);
}

QString StatusText::blocked()
{
    return QStringLiteral("The account is blocked because its password was refused. Enter it again with "
                          "fennel-easctl password.");
}

QString StatusText::withName(const QString &sentence, int status)
{
    return QStringLiteral("%1 [%2, %3]").arg(sentence, name(status)).arg(status);
}

QString StatusText::explanation(int status)
{
    for (const StatusText::Sentence &sentence : sentences) {
        if (sentence.status == status)
            return withName(QString::fromLatin1(sentence.text), status);
    }
    return withName(QStringLiteral("The server answered with an error."), status);
}
