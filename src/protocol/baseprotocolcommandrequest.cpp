// SPDX-License-Identifier: LGPL-2.1-or-later
// How a command's request is set up: the URL, the headers and the certificates.
#include "application/account/easaccount.h"
#include "application/base/deviceinformation.h"
#include "application/base/logging.h"
#include "configurations/connectionaccountconfiguration.h"
#include "protocol/base/protocolutils.h"
#include "protocol/baseprotocolcommand.h"

#include <QFile>
#include <QNetworkRequest>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QUrl>
#include <QUrlQuery>

#include <algorithm>

namespace {

void addItem(QUrlQuery &query, const QString &name, const QString &value)
{
    // QUrlQuery leaves "+" and "%" as they are, which a server reads as something else.
    query.addQueryItem(name, QString::fromLatin1(QUrl::toPercentEncoding(value)));
}

} // namespace

void BaseProtocolCommand::queryAddCommand(QUrlQuery &query, const QString &command) const
{
    addItem(query, QStringLiteral("Cmd"), command);
}

void BaseProtocolCommand::queryAddUser(QUrlQuery &query, const QString &userName) const
{
    addItem(query, QStringLiteral("User"), userName);
}

void BaseProtocolCommand::queryAddDeviceId(QUrlQuery &query, const QString &deviceId) const
{
    addItem(query, QStringLiteral("DeviceId"), deviceId);
}

void BaseProtocolCommand::queryAddDeviceType(QUrlQuery &query, const QString &deviceType) const
{
    addItem(query, QStringLiteral("DeviceType"), deviceType);
}

bool BaseProtocolCommand::setHeader(QNetworkRequest &request, const char *name, const QByteArray &value)
{
    const bool broken =
        std::any_of(value.cbegin(), value.cend(), [](char c) { return c == '\r' || c == '\n' || c == '\0'; });
    if (broken) {
        qCCritical(eas()) << "Refused a value with a line break for the header" << name;
        return false;
    }
    request.setRawHeader(name, value);
    return true;
}

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

    QUrl url = serverUrl(*configuration);
    url.setQuery(query);
    qCDebug(eas()) << "AS Command URL: " << url;
    if (!configureSsl(request, *commandAccount))
        return false;
    request.setUrl(url);
    return setCommonHeaders(request, *commandAccount, *configuration);
}

QUrl BaseProtocolCommand::serverUrl(const ConnectionAccountConfiguration &configuration)
{
    QUrl url;
    url.setScheme(configuration.scheme());
    url.setHost(configuration.serverAddress());
    url.setPort(configuration.portNumber());
    url.setPath(configuration.serverPath());
    return url;
}

bool BaseProtocolCommand::setCommonHeaders(QNetworkRequest &request, const EasAccount &commandAccount,
    const ConnectionAccountConfiguration &configuration)
{
    request.setRawHeader(ProtocolUtils::HeaderConnection, ProtocolUtils::KeepAlive);
    request.setHeader(QNetworkRequest::UserAgentHeader, DeviceInformation::userAgent());
    request.setHeader(QNetworkRequest::ContentTypeHeader, QString(ProtocolUtils::ContentTypeWbxml));
    request.setRawHeader(ProtocolUtils::HeaderAsProtocolVersion, commandAccount.encodedProtocolVersion());
    if (!setHeader(request, ProtocolUtils::HeaderHostName, configuration.serverAddress().toUtf8()))
        return false;
    setAuthorization(request, commandAccount);
    const QByteArray policyKey = commandAccount.policyKey().toUtf8();
    return policyKey.isEmpty() || setHeader(request, ProtocolUtils::HeaderAsPolicyKey, policyKey);
}

void BaseProtocolCommand::setAuthorization(QNetworkRequest &request, const EasAccount &account)
{
    const QByteArray cookie = account.authenticationBasicCookie();
    if (!cookie.isEmpty())
        request.setRawHeader(
            ProtocolUtils::HeaderAuthorization, ProtocolUtils::AuthorizationBasicPrefix + cookie);
}

bool BaseProtocolCommand::configureSsl(QNetworkRequest &request, const EasAccount &sslAccount) const
{
    const auto configuration = sslAccount.connectionConfiguration();
    if (configuration->acceptAllCertificates()) {
        QSslConfiguration ssl = QSslConfiguration::defaultConfiguration();
        ssl.setPeerVerifyMode(QSslSocket::VerifyNone);
        request.setSslConfiguration(ssl);
    }
    if (configuration->userCertificatePath().isEmpty())
        return true;
    QSslCertificate certificate;
    QSslKey key;
    if (!getSslCredentials(
            configuration->userCertificatePath(), sslAccount.sslCertificatePassword(), &certificate, &key)) {
        qCCritical(eas()) << "Problem loading certificate/key";
        return false;
    }
    QSslConfiguration ssl = request.sslConfiguration();
    ssl.setLocalCertificate(certificate);
    ssl.setPrivateKey(key);
    request.setSslConfiguration(ssl);
    return true;
}

bool BaseProtocolCommand::getSslCredentials(
    const QString &path, const QString &password, QSslCertificate *certificate, QSslKey *key) const
{
    if (path.isEmpty()) {
        qCCritical(eas()) << "Empty certificate path!";
        return false;
    }
    QFile file(path);
    if (!file.exists()) {
        qCCritical(eas()) << "Certificate file not found";
        return false;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        qCCritical(eas()) << "Can't open certificate file";
        return false;
    }
    return QSslCertificate::importPkcs12(&file, key, certificate, nullptr, password.toUtf8());
}
