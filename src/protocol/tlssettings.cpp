// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/tlssettings.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "configurations/connectionaccountconfiguration.h"

#include <QFile>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslError>
#include <QSslKey>

bool TlsSettings::apply(QNetworkRequest &request, const EasAccount &account)
{
    const auto configuration = account.connectionConfiguration();
    if (configuration->acceptAllCertificates()) {
        QSslConfiguration ssl = QSslConfiguration::defaultConfiguration();
        ssl.setPeerVerifyMode(QSslSocket::VerifyNone);
        request.setSslConfiguration(ssl);
    }
    if (configuration->userCertificatePath().isEmpty())
        return true;
    QSslCertificate certificate;
    QSslKey key;
    if (!readCredentials(
            configuration->userCertificatePath(), account.sslCertificatePassword(), &certificate, &key)) {
        qCCritical(eas()) << "Problem loading certificate/key";
        return false;
    }
    QSslConfiguration ssl = request.sslConfiguration();
    ssl.setLocalCertificate(certificate);
    ssl.setPrivateKey(key);
    request.setSslConfiguration(ssl);
    return true;
}

bool TlsSettings::readCredentials(
    const QString &path, const QString &password, QSslCertificate *certificate, QSslKey *key)
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

bool TlsSettings::passesOver(const QList<QSslError> &errors, const EasAccount *account)
{
    const auto configuration = account ? account->connectionConfiguration() : nullptr;
    if (!account)
        qCCritical(eas()) << "No account";
    else if (!configuration)
        qCCritical(eas()) << "No connection config";
    else if (!configuration->acceptAllCertificates())
        qCWarning(eas()) << "SSL errors:" << errorTexts(errors);
    else
        return true;
    return false;
}

QList<QSslError> TlsSettings::certificateErrors(const QNetworkReply &reply)
{
    if (reply.url().scheme() != QLatin1String("https"))
        return {};
    // A connection that is used again does not tell its errors again.
    const QList<QSslCertificate> chain = reply.sslConfiguration().peerCertificateChain();
    if (chain.isEmpty())
        return { QSslError(QSslError::NoPeerCertificate) };
    return QSslCertificate::verify(chain, reply.url().host());
}

QString TlsSettings::errorTexts(const QList<QSslError> &errors)
{
    QStringList texts;
    for (const QSslError &error : errors)
        texts.append(error.errorString());
    return texts.join(QStringLiteral(", "));
}
