// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/requestheaders.h"

#include "application/account/easaccount.h"
#include "application/base/deviceinformation.h"
#include "application/base/logging.h"
#include "configurations/connectionaccountconfiguration.h"
#include "protocol/base/protocolutils.h"

#include <QNetworkRequest>
#include <QUrl>
#include <QUrlQuery>

#include <algorithm>

QUrl RequestHeaders::serverUrl(const ConnectionAccountConfiguration &configuration)
{
    QUrl url;
    url.setScheme(configuration.scheme());
    url.setHost(configuration.serverAddress());
    url.setPort(configuration.portNumber());
    url.setPath(configuration.serverPath());
    return url;
}

void RequestHeaders::addQueryItem(QUrlQuery &query, const QString &name, const QString &value)
{
    // QUrlQuery leaves "+" and "%" as they are, which a server reads as something else.
    query.addQueryItem(name, QString::fromLatin1(QUrl::toPercentEncoding(value)));
}

bool RequestHeaders::fits(const QByteArray &value)
{
    return std::none_of(
        value.cbegin(), value.cend(), [](char c) { return c == '\r' || c == '\n' || c == '\0'; });
}

bool RequestHeaders::set(QNetworkRequest &request, const char *name, const QByteArray &value)
{
    if (!fits(value)) {
        qCCritical(eas()) << "Refused a value with a line break for the header" << name;
        return false;
    }
    request.setRawHeader(name, value);
    return true;
}

bool RequestHeaders::setCommon(QNetworkRequest &request, const EasAccount &commandAccount,
    const ConnectionAccountConfiguration &configuration)
{
    request.setRawHeader(ProtocolUtils::HeaderConnection, ProtocolUtils::KeepAlive);
    request.setHeader(QNetworkRequest::UserAgentHeader, DeviceInformation::userAgent());
    request.setHeader(QNetworkRequest::ContentTypeHeader, QString(ProtocolUtils::ContentTypeWbxml));
    request.setRawHeader(ProtocolUtils::HeaderAsProtocolVersion, commandAccount.encodedProtocolVersion());
    if (!set(request, ProtocolUtils::HeaderHostName, configuration.serverAddress().toUtf8()))
        return false;
    setAuthorization(request, commandAccount);
    const QByteArray policyKey = commandAccount.policyKey().toUtf8();
    return policyKey.isEmpty() || set(request, ProtocolUtils::HeaderAsPolicyKey, policyKey);
}

void RequestHeaders::setAuthorization(QNetworkRequest &request, const EasAccount &account)
{
    const QByteArray cookie = account.authenticationBasicCookie();
    if (!cookie.isEmpty())
        request.setRawHeader(
            ProtocolUtils::HeaderAuthorization, ProtocolUtils::AuthorizationBasicPrefix + cookie);
}
