// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/optionscommand.h"

#include "application/account/easaccount.h"
#include "application/base/clock.h"
#include "application/base/deviceinformation.h"
#include "application/base/logging.h"
#include "configurations/connectionaccountconfiguration.h"
#include "protocol/base/protocolutils.h"
#include "protocol/exchangelog.h"
#include "protocol/replyheaders.h"
#include "protocol/requestheaders.h"
#include "protocol/tlssettings.h"

#include <QNetworkRequest>
#include <QUrl>

OptionsCommand::OptionsCommand(EasAccountId accountId, QObject *parent)
    : BaseProtocolCommand(accountId, parent)
{
    mTimeoutTimer.setSingleShot(true);
    connect(&mTimeoutTimer, &QTimer::timeout, this, &OptionsCommand::onTimeoutTimer);
    // However the exchange ends, also when it is stopped.
    connect(this, &BaseProtocolCommand::finished, &mTimeoutTimer, &QTimer::stop);
}

QString OptionsCommand::versions() const
{
    return mVersions;
}

QStringList OptionsCommand::supportedCommands() const
{
    return mSupportedCommands;
}

void OptionsCommand::start()
{
    if (!begin()) {
        qCWarning(eas()) << "Cannot begin";
        return;
    }
    setStatus(0);
    QNetworkRequest request;
    if (!setUpRequest(request)) {
        end(false);
        return;
    }
    if (!sendCustomRequest(request, ProtocolUtils::CommandOptionsVerb, QByteArray())) {
        qCCritical(eas()) << "Sending custom request failed";
        end(false);
        return;
    }
    mTimeoutTimer.start(
        Clock::instance().timerInterval(ProtocolUtils::CommandsOptionsTimeout, Clock::Timer::OptionsTimeout));
}

bool OptionsCommand::setUpRequest(QNetworkRequest &request) const
{
    const EasAccount *const asked = account();
    if (!asked) {
        qCCritical(eas()) << "No account";
        return false;
    }
    const auto configuration = asked->connectionConfiguration();
    if (!configuration) {
        qCCritical(eas()) << "No connection config";
        return false;
    }
    const QUrl url = RequestHeaders::serverUrl(*configuration);
    qCDebug(eas()) << "AS OPTIONS URL: " << url;
    if (!TlsSettings::apply(request, *asked))
        return false;
    request.setUrl(url);
    request.setRawHeader(ProtocolUtils::HeaderConnection, ProtocolUtils::KeepAlive);
    if (!RequestHeaders::set(request, ProtocolUtils::HeaderHostName, configuration->serverAddress().toUtf8()))
        return false;
    RequestHeaders::setAuthorization(request, *asked);
    request.setHeader(QNetworkRequest::UserAgentHeader, DeviceInformation::userAgent());
    return true;
}

void OptionsCommand::onTimeoutTimer()
{
    qCWarning(eas()) << "Network error: timeout";
    mTimeoutTimer.stop();
    setStatus(ProtocolUtils::TransportStatusTimeout);
    end(false);
}

void OptionsCommand::handleError(QNetworkReply::NetworkError networkError)
{
    qCWarning(eas()) << "Network error: " << networkError;
    mTimeoutTimer.stop();
    setStatus(ProtocolUtils::TransportStatusBase + networkError);
    end(false);
}

void OptionsCommand::handleFinished(QNetworkReply *reply)
{
    mTimeoutTimer.stop();
    if (!account()) {
        qCCritical(eas()) << "No account";
        end(false);
        return;
    }
    const QNetworkReply::NetworkError error = reply->error();
    if (error != QNetworkReply::NoError) {
        qCCritical(eas()) << "Network error: " << error;
        setStatus(ProtocolUtils::TransportStatusBase + error);
        end(false);
        return;
    }
    ExchangeLog::headers(*reply, account());
    mVersions = ReplyHeaders::versions(*reply);
    mSupportedCommands = ReplyHeaders::supportedCommands(*reply);
    end(true);
}
