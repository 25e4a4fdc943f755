// SPDX-License-Identifier: LGPL-2.1-or-later
// What comes back to a command: progress, an answer, an error, another server's address, a doubtful
// certificate.
#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "common/easrequeststatus.h"
#include "configurations/connectionaccountconfiguration.h"
#include "protocol/base/protocolutils.h"
#include "protocol/baseprotocolcommand.h"
#include "protocol/wbxml/debugtools.h"

#include <QUrl>

namespace {

/** Not in QNetworkReply's enumeration; some versions of Qt pass the HTTP status on. */
constexpr int RedirectError = 451;

/**
 * The network layer takes whatever is below 400 for an answer. The page that a public network redirects to
 * must not pass for one: its empty body reads as "nothing new" or "done".
 */
bool isAnswer(const QNetworkReply &reply)
{
    const QVariant status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute);
    return !status.isValid() || status.toInt() / 100 == 2;
}

QStringList errorTexts(const QList<QSslError> &errors)
{
    QStringList texts;
    for (const QSslError &error : errors)
        texts.append(error.errorString());
    return texts;
}

} // namespace

void BaseProtocolCommand::onReplyDownloadProgress(qint64 bytesReceived, qint64 bytesTotal)
{
    mBytesReceived = bytesReceived;
    mBytesTotal = bytesTotal;
    if (bytesReceived > MaximumReplySize) {
        // A body without an end would otherwise fill the memory before anything noticed.
        qCCritical(easNetwork()) << "Reply is too large, giving it up after" << bytesReceived << "bytes";
        mStatus = EasRequestStatus::RequestStatusInternalError;
        return end(false);
    }
    handleDownloadProgress(bytesReceived, bytesTotal);
}

void BaseProtocolCommand::handleDownloadProgress(qint64 bytesReceived, qint64 bytesTotal)
{
    qCDebug(eas()) << "progress" << bytesReceived << "/" << bytesTotal;
}

void BaseProtocolCommand::onReplyFinished()
{
    if (!mReply) {
        qCCritical(eas()) << "No reply";
        return;
    }
    if (mReply->error() != QNetworkReply::NoError)
        mStatus = ProtocolUtils::TransportStatusBase + mReply->error();
    else if (!isAnswer(*mReply))
        return handleError(QNetworkReply::UnknownContentError);
    handleFinished(mReply);
}

void BaseProtocolCommand::handleFinished(QNetworkReply *reply)
{
    qCDebug(eas()) << "accountId:" << ProtocolUtils::accountId(reply);
    const QByteArray body = reply->readAll();
    qCDebug(easNetwork()) << "=========================";
    qCDebug(easNetwork()) << texts().received;
    qCDebug(easNetwork()) << "Network error: " << reply->error();
    logHeaders(*reply);
    qCDebug(easNetwork()) << "Length: " << body.size();
    if (reply->error() != QNetworkReply::NoError) {
        if (texts().replyError)
            qCWarning(eas()) << texts().replyError;
        mStatus = ProtocolUtils::TransportStatusBase + reply->error();
        end(false);
        return;
    }
    logBody(body);
    qCDebug(easNetwork()) << "=========================";
    const bool parsed = parseReply(reply, body);
    if (!parsed)
        mStatus = EasRequestStatus::RequestStatusInternalError;
    end(parsed);
}

void BaseProtocolCommand::logHeaders(const QNetworkReply &reply) const
{
    if (!easNetwork().isDebugEnabled())
        return;
    const QString headers = DebugTools::headersForLog(reply.rawHeaderPairs());
    qCDebug(easNetwork()) << "Headers: " << QString::fromUtf8(withoutCredentials(headers.toUtf8()));
}

QByteArray BaseProtocolCommand::withoutCredentials(const QByteArray &text) const
{
    const EasAccount *const owner = account();
    QByteArray cleaned = text;
    if (!owner)
        return cleaned;
    for (const QByteArray &secret : { owner->authenticationBasicCookie(), owner->password().toUtf8() }) {
        if (!secret.isEmpty())
            cleaned.replace(secret, "...");
    }
    return cleaned;
}

void BaseProtocolCommand::onReplyError(QNetworkReply::NetworkError networkError)
{
    qCDebug(eas()) << "networkError" << networkError;
    if (mReply && mReply->isOpen()) {
        logHeaders(*mReply);
        qCDebug(easNetwork()) << "Body: " << withoutCredentials(mReply->readAll());
    }
    const bool redirected =
        networkError == QNetworkReply::UnknownContentError || static_cast<int>(networkError) == RedirectError;
    if (!redirected || !redirect())
        handleError(networkError);
}

QByteArray BaseProtocolCommand::headerOf(const QNetworkReply &reply, const char *name)
{
    const QByteArray value = reply.rawHeader(name);
    if (value.size() <= MaximumHeaderSize)
        return value;
    qCCritical(easNetwork()) << "Header" << name << "is too long, taken for missing:" << value.size();
    return {};
}

QString BaseProtocolCommand::versionsOf(const QNetworkReply &reply)
{
    return QString::fromUtf8(headerOf(reply, ProtocolUtils::HeaderAsProtocolVersions));
}

QStringList BaseProtocolCommand::supportedCommandsOf(const QNetworkReply &reply)
{
    const QString commands = QString::fromUtf8(headerOf(reply, ProtocolUtils::HeaderAsProtocolCommands));
    return commands.split(QLatin1Char(','), Qt::SkipEmptyParts);
}

bool BaseProtocolCommand::redirect()
{
    qCDebug(eas()) << "We should redirect our requests to a different URL";
    const QByteArray location = mReply ? headerOf(*mReply, ProtocolUtils::HeaderXMSLocation) : QByteArray();
    if (location.isEmpty())
        return false;
    EasAccount *const redirectedAccount = account();
    if (!redirectedAccount) {
        qCCritical(eas()) << "No account";
        return false;
    }
    const auto configuration = redirectedAccount->connectionConfiguration();
    if (!configuration) {
        qCCritical(eas()) << "No connection config";
        return false;
    }
    qCDebug(eas()) << "we have a correct header" << location;
    const QUrl url(QString::fromUtf8(location));
    qCInfo(eas()) << "new account serverAddress:" << url.host() << "port:" << url.port(-1)
                  << "scheme:" << url.scheme();
    if (!url.host().isEmpty())
        configuration->setServerAddress(url.host());
    if (url.port(-1) > 0)
        configuration->setPortNumber(url.port(-1));
    if (!url.scheme().isEmpty())
        configuration->setScheme(url.scheme());
    dropReply();
    mRedirectTimer.start(0);
    return true;
}

void BaseProtocolCommand::onReplyDestroyed()
{
    // A lost network takes its connections with it, and their replies without a word.
    handleError(QNetworkReply::NetworkSessionFailedError);
}

void BaseProtocolCommand::handleError(QNetworkReply::NetworkError networkError)
{
    qCWarning(eas()) << "handleError: Network error:" << networkError;
    mStatus = ProtocolUtils::TransportStatusBase + networkError;
    end(false);
}

void BaseProtocolCommand::onSslErrors(const QList<QSslError> &errors)
{
    qCDebug(eas()) << "Received SSL errors:" << errorTexts(errors).join(QStringLiteral(", "));
    handleSslErrors(errors);
}

void BaseProtocolCommand::handleSslErrors(const QList<QSslError> &errors)
{
    const EasAccount *const sslAccount = account();
    const auto configuration = sslAccount ? sslAccount->connectionConfiguration() : nullptr;
    if (!sslAccount)
        qCCritical(eas()) << "No account";
    else if (!configuration)
        qCCritical(eas()) << "No connection config";
    else if (!configuration->acceptAllCertificates())
        qCWarning(eas()) << "SSL errors:" << errorTexts(errors).join(QStringLiteral(", "));
    else if (!mReply)
        qCWarning(eas()) << "Reply is null";
    else
        mReply->ignoreSslErrors(errors);
}
