// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/baseprotocolcommand.h"

#include "application/debugtools.h"
#include "application/easaccount.h"
#include "application/logging.h"
#include "application/networkmanager.h"
#include "application/requestmanager.h"
#include "configurations/connectionaccountconfiguration.h"
#include "protocol/protocolutils.h"
#include "requests/request.h"

#include <QBuffer>
#include <QNetworkRequest>
#include <QUrl>

#include <memory>

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

BaseProtocolCommand::BaseProtocolCommand(EasAccountId accountId, QObject *parent)
    : QObject(parent)
    , mAccountId(accountId)
{
    mRedirectTimer.setSingleShot(true);
    connect(&mRedirectTimer, &QTimer::timeout, this, [this] { retryCommand(); });
}

BaseProtocolCommand::~BaseProtocolCommand()
{
    dropReply();
}

EasAccountId BaseProtocolCommand::accountId() const
{
    return mAccountId;
}

EasAccount *BaseProtocolCommand::account() const
{
    return RequestManager::instance()->account(mAccountId);
}

int BaseProtocolCommand::status() const
{
    return mStatus;
}

void BaseProtocolCommand::setStatus(int status)
{
    mStatus = status;
}

qint64 BaseProtocolCommand::bytesReceived() const
{
    return mBytesReceived;
}

qint64 BaseProtocolCommand::bytesTotal() const
{
    return mBytesTotal;
}

Request *BaseProtocolCommand::parentRequest() const
{
    return qobject_cast<Request *>(parent());
}

QString BaseProtocolCommand::commandName() const
{
    return {};
}

BaseProtocolCommand::ExchangeTexts BaseProtocolCommand::texts() const
{
    return { "Sending command via POST:", "Received command reply:", nullptr };
}

bool BaseProtocolCommand::encodeBody(EasAccount &, QByteArray *)
{
    return true;
}

void BaseProtocolCommand::prepareRequest(QNetworkRequest &) {}

bool BaseProtocolCommand::parseReply(QNetworkReply *, const QByteArray &)
{
    return true;
}

void BaseProtocolCommand::logBody(const QByteArray &body) const
{
    if (easWbxml().isDebugEnabled())
        DebugTools::dumpWbxmlData(
            QMessageLogger(QT_MESSAGELOG_FILE, QT_MESSAGELOG_LINE, QT_MESSAGELOG_FUNC).debug(easWbxml()),
            body);
}

void BaseProtocolCommand::configureCommandSpecificQueryValues(QUrlQuery &) {}

bool BaseProtocolCommand::begin()
{
    if (mStarted)
        return false;
    mStarted = true;
    mBytesReceived = -1;
    mBytesTotal = -1;
    Q_EMIT started();
    return true;
}

void BaseProtocolCommand::end(bool success)
{
    if (!mStarted)
        return;
    mRedirectTimer.stop();
    dropReply();
    mStarted = false;
    Q_EMIT finished(success);
}

void BaseProtocolCommand::start()
{
    if (!begin()) {
        qCWarning(eas()) << "Cannot begin";
        return;
    }
    mStatus = 0;
    QNetworkRequest request;
    EasAccount *const commandAccount = account();
    if (!configureNetworkRequest(request, commandName())) {
        qCCritical(eas()) << "failed to setup network request";
        end(false);
        return;
    }
    prepareRequest(request);
    QByteArray body;
    if (!encodeBody(*commandAccount, &body)) {
        mStatus = EasRequestStatus::RequestStatusInternalError;
        end(false);
        return;
    }
    qCDebug(easNetwork()) << "-------------------------------------";
    qCDebug(easNetwork()) << texts().sending;
    logBody(body);
    if (!post(request, body))
        end(false);
}

void BaseProtocolCommand::stop()
{
    if (mReply) {
        mReply->abort();
        return;
    }
    mRedirectTimer.stop();
    mStarted = false;
    mStatus = ProtocolUtils::TransportStatusCancelled;
    Q_EMIT finished(false);
}

void BaseProtocolCommand::retryCommand()
{
    mRedirectTimer.stop();
    mStarted = false;
    dropReply();
    start();
}

void BaseProtocolCommand::dropReply()
{
    if (!mReply)
        return;
    // The network manager listens as well, and hears of a refused password after this command.
    mReply->disconnect(this);
    mReply->deleteLater();
    mReply.clear();
}

bool BaseProtocolCommand::post(const QNetworkRequest &request, const QByteArray &body)
{
    if (mReply) {
        qCWarning(eas()) << "Already active";
        return false;
    }
    return takeReply(RequestManager::instance()->networkManager()->post(mAccountId, request, body));
}

bool BaseProtocolCommand::sendCustomRequest(
    const QNetworkRequest &request, const QByteArray &verb, const QByteArray &body)
{
    if (mReply) {
        qCWarning(eas()) << "Already active";
        return false;
    }
    auto buffer = std::make_unique<QBuffer>();
    buffer->setData(body);
    buffer->open(QIODevice::ReadOnly);
    NetworkManager *const network = RequestManager::instance()->networkManager();
    if (!takeReply(network->sendCustomRequest(mAccountId, request, verb, buffer.get())))
        return false;
    buffer.release()->setParent(mReply);
    return true;
}

bool BaseProtocolCommand::takeReply(QNetworkReply *reply)
{
    if (!reply) {
        qCCritical(eas()) << "Sending failed, there is no reply. Command:" << commandName();
        return false;
    }
    ProtocolUtils::setAccountId(reply, mAccountId);
    mReply = reply;
    return connectReply();
}

bool BaseProtocolCommand::connectReply() const
{
    if (!mReply) {
        qCCritical(eas()) << "No reply";
        return false;
    }
    connect(mReply, &QNetworkReply::finished, this, &BaseProtocolCommand::onReplyFinished);
    connect(mReply, &QNetworkReply::errorOccurred, this, &BaseProtocolCommand::onReplyError);
    connect(mReply, &QNetworkReply::downloadProgress, this, &BaseProtocolCommand::onReplyDownloadProgress);
    connect(mReply, &QNetworkReply::sslErrors, this, &BaseProtocolCommand::onSslErrors);
    connect(mReply, &QObject::destroyed, this, &BaseProtocolCommand::onReplyDestroyed);
    return true;
}

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

bool BaseProtocolCommand::redirect()
{
    qCDebug(eas()) << "We should redirect our requests to a different URL";
    if (!mReply || !mReply->hasRawHeader(ProtocolUtils::HeaderXMSLocation))
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
    const QByteArray location = mReply->rawHeader(ProtocolUtils::HeaderXMSLocation);
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
