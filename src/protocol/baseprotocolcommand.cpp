// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/baseprotocolcommand.h"

#include "application/account/easaccount.h"
#include "application/base/deadline.h"
#include "application/base/engine.h"
#include "application/base/logging.h"
#include "application/base/network.h"
#include "application/base/onewaybody.h"
#include "common/easrequeststatus.h"
#include "configurations/connectionaccountconfiguration.h"
#include "protocol/base/protocolutils.h"
#include "protocol/exchangelog.h"
#include "protocol/replyheaders.h"
#include "protocol/requestheaders.h"
#include "protocol/serverlocation.h"
#include "protocol/tlssettings.h"
#include "protocol/wbxml/debugtools.h"
#include "requests/request.h"

#include <QBuffer>
#include <QNetworkRequest>
#include <QUrl>
#include <QUrlQuery>

#include <memory>

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

EasAccount *BaseProtocolCommand::account() const
{
    return Engine::accountOf(this, mAccountId);
}

Request *BaseProtocolCommand::parentRequest() const
{
    return qobject_cast<Request *>(parent());
}

BaseProtocolCommand::ExchangeTexts BaseProtocolCommand::texts() const
{
    return { "Sending command via POST:", "Received command reply:", nullptr };
}

void BaseProtocolCommand::logBody(const QByteArray &body) const
{
    if (easWbxml().isDebugEnabled())
        DebugTools::dumpWbxmlData(
            QMessageLogger(QT_MESSAGELOG_FILE, QT_MESSAGELOG_LINE, QT_MESSAGELOG_FUNC).debug(easWbxml()),
            body);
}

// The request

bool BaseProtocolCommand::configureNetworkRequest(QNetworkRequest &request, const QString &command)
{
    const EasAccount *const commandAccount = account();
    if (!commandAccount) {
        qCCritical(eas()) << "No account";
        return false;
    }
    const auto configuration = commandAccount->connectionConfiguration();
    if (!configuration) {
        qCCritical(eas()) << "No connection config";
        return false;
    }
    if (command.isEmpty()) {
        qCCritical(eas()) << "command is empty";
        return false;
    }
    QUrlQuery query;
    queryAddCommand(query, command);
    queryAddUser(query, commandAccount->userName());
    queryAddDeviceId(query, commandAccount->deviceId());
    queryAddDeviceType(query, commandAccount->deviceType());
    configureCommandSpecificQueryValues(query);

    QUrl url = RequestHeaders::serverUrl(*configuration);
    url.setQuery(query);
    qCDebug(eas()) << "AS Command URL: " << url;
    if (!TlsSettings::apply(request, *commandAccount))
        return false;
    request.setUrl(url);
    return RequestHeaders::setCommon(request, *commandAccount, *configuration);
}

void BaseProtocolCommand::queryAdd(QUrlQuery &query, const char *name, const QString &value)
{
    RequestHeaders::addQueryItem(query, QString::fromLatin1(name), value);
}

bool BaseProtocolCommand::getSslCredentials(
    const QString &path, const QString &password, QSslCertificate *certificate, QSslKey *key) const
{
    return TlsSettings::readCredentials(path, password, certificate, key);
}

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
    if (mDeadline)
        mDeadline->stop();
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
    mIsToldToProvision = false;
    mHttpStatus = 0;
    mIsGivenUp = false;
    QNetworkRequest request;
    EasAccount *const commandAccount = account();
    if (!configureNetworkRequest(request, commandName())) {
        qCCritical(eas()) << "failed to setup network request";
        end(false);
        return;
    }
    QByteArray body;
    if (!prepareRequest(request) || !encodeBody(*commandAccount, &body)) {
        mStatus = EasRequestStatus::RequestStatusInternalError;
        end(false);
        return;
    }
    qCDebug(easNetwork()) << "-------------------------------------";
    qCDebug(easNetwork()) << texts().sending;
    logBody(body);
    if (!post(request, body))
        return end(false);
    limitWait();
}

void BaseProtocolCommand::limitWait()
{
    const int wait = longestWait();
    if (wait <= 0)
        return;
    if (!mDeadline) {
        mDeadline = std::make_unique<Deadline>(Clock::Timer::Answer);
        connect(mDeadline.get(), &Deadline::expired, this, &BaseProtocolCommand::giveUp);
    }
    mDeadline->start(wait);
}

void BaseProtocolCommand::giveUp()
{
    qCWarning(easNetwork()) << "no answer for" << longestWait() / 1000
                            << "s, giving it up. Command:" << commandName();
    mIsGivenUp = true;
    mStatus = ProtocolUtils::TransportStatusBase + QNetworkReply::TimeoutError;
    end(false);
}

void BaseProtocolCommand::stop()
{
    if (const QPointer<QNetworkReply> stopped = mReply) {
        stopped->abort();
        if (!stopped || mReply != stopped)
            return;
        // A reply that is over already, without having said so yet, ignores that.
        mStatus = ProtocolUtils::TransportStatusCancelled;
        end(false);
        return;
    }
    mRedirectTimer.stop();
    if (mDeadline)
        mDeadline->stop();
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

Network *BaseProtocolCommand::network() const
{
    Engine *const engine = Engine::of(this);
    return engine ? engine->networkManager() : nullptr;
}

bool BaseProtocolCommand::mayBeSent() const
{
    if (mReply) {
        qCWarning(eas()) << "Already active";
        return false;
    }
    const EasAccount *const wiped = account();
    if (!wiped || !wiped->isRemoteWipeRequested() || commandName() == ProtocolUtils::CommandProvision)
        return true;
    qCWarning(eas()) << "A wipe of account" << mAccountId << "was ordered, not sent:" << commandName();
    return false;
}

bool BaseProtocolCommand::post(const QNetworkRequest &request, const QByteArray &body)
{
    if (!mayBeSent())
        return false;
    Network *const access = network();
    return takeReply(access ? access->post(mAccountId, request, body) : nullptr);
}

bool BaseProtocolCommand::postOnce(const QNetworkRequest &request, const QByteArray &body)
{
    return sendDevice(request, "POST", std::make_unique<OneWayBody>(body));
}

bool BaseProtocolCommand::sendCustomRequest(
    const QNetworkRequest &request, const QByteArray &verb, const QByteArray &body)
{
    auto buffer = std::make_unique<QBuffer>();
    buffer->setData(body);
    buffer->open(QIODevice::ReadOnly);
    return sendDevice(request, verb, std::move(buffer));
}

bool BaseProtocolCommand::sendDevice(
    const QNetworkRequest &request, const QByteArray &verb, std::unique_ptr<QIODevice> body)
{
    if (!mayBeSent())
        return false;
    Network *const access = network();
    if (!takeReply(access ? access->sendCustomRequest(mAccountId, request, verb, body.get()) : nullptr))
        return false;
    body.release()->setParent(mReply);
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

// The reply

void BaseProtocolCommand::onReplyDownloadProgress(qint64 bytesReceived, qint64 bytesTotal)
{
    mBytesReceived = bytesReceived;
    mBytesTotal = bytesTotal;
    if (bytesReceived > maximumReplySize()) {
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

void BaseProtocolCommand::noteHttpStatus(const QNetworkReply &reply)
{
    mIsToldToProvision = ReplyHeaders::demandsProvisioning(reply);
    mHttpStatus = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

void BaseProtocolCommand::onReplyFinished()
{
    if (!mReply) {
        qCCritical(eas()) << "No reply";
        return;
    }
    noteHttpStatus(*mReply);
    if (mReply->error() != QNetworkReply::NoError)
        mStatus = ProtocolUtils::TransportStatusBase + mReply->error();
    else if (!ReplyHeaders::isAnswer(*mReply))
        return handleError(QNetworkReply::UnknownContentError);
    handleFinished(mReply);
}

void BaseProtocolCommand::handleFinished(QNetworkReply *reply)
{
    qCDebug(eas()) << "accountId:" << ProtocolUtils::accountId(reply);
    const QByteArray body = reply->readAll();
    ExchangeLog::received(*reply, texts().received, body.size(), account());
    if (reply->error() != QNetworkReply::NoError) {
        if (texts().replyError)
            qCWarning(eas()) << texts().replyError;
        return end(false);
    }
    logBody(body);
    qCDebug(easNetwork()) << "=========================";
    const bool parsed = parseReply(reply, body);
    if (!parsed)
        mStatus = EasRequestStatus::RequestStatusInternalError;
    end(parsed);
}

void BaseProtocolCommand::onReplyError(QNetworkReply::NetworkError networkError)
{
    qCDebug(eas()) << "networkError" << networkError;
    if (mReply)
        noteHttpStatus(*mReply);
    if (mReply && mReply->isOpen()) {
        ExchangeLog::headers(*mReply, account());
        qCDebug(easNetwork()) << "Body: " << ExchangeLog::withoutCredentials(mReply->readAll(), account());
    }
    // Not in QNetworkReply's enumeration; some versions of Qt pass the HTTP status on.
    constexpr int RedirectError = 451;
    const bool redirected =
        networkError == QNetworkReply::UnknownContentError || static_cast<int>(networkError) == RedirectError;
    if (!redirected || !redirect())
        handleError(networkError);
}

bool BaseProtocolCommand::redirect()
{
    qCDebug(eas()) << "We should redirect our requests to a different URL";
    if (!mReply || !ServerLocation::follow(*mReply, account()))
        return false;
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
    qCDebug(eas()) << "Received SSL errors:" << TlsSettings::errorTexts(errors);
    handleSslErrors(errors);
}

void BaseProtocolCommand::handleSslErrors(const QList<QSslError> &errors)
{
    if (!TlsSettings::passesOver(errors, account()))
        return;
    if (mReply)
        mReply->ignoreSslErrors(errors);
    else
        qCWarning(eas()) << "Reply is null";
}
