// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/baseprotocolcommand.h"

#include "application/base/logging.h"
#include "application/networkmanager.h"
#include "application/requestmanager.h"
#include "protocol/base/protocolutils.h"
#include "protocol/wbxml/debugtools.h"
#include "requests/request.h"

#include <QBuffer>
#include <QNetworkRequest>

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
