// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QList>

class EasAccount;
class QNetworkReply;
class QNetworkRequest;
class QSslCertificate;
class QSslError;
class QSslKey;
class QString;

/** What an account's settings say about the encryption of its connections. */
namespace TlsSettings {

/** Certificate checks off and client certificate on, as the account has it. False, logged, for a client
 * certificate that cannot be used. Needs the connection configuration of the account. */
bool apply(QNetworkRequest &request, const EasAccount &account);

/** Reads a PKCS#12 file; false, logged, if it cannot be read. */
bool readCredentials(
    const QString &path, const QString &password, QSslCertificate *certificate, QSslKey *key);
/** Whether an exchange of the account goes on in spite of these errors; logged if not. The account may be
 * null. */
bool passesOver(const QList<QSslError> &errors, const EasAccount *account);
/** What is wrong with the certificate that the server of a reply has shown, whether or not the account passes
 * over it; nothing where the connection is not encrypted. */
QList<QSslError> certificateErrors(const QNetworkReply &reply);
/** For the log, in one line. */
QString errorTexts(const QList<QSslError> &errors);

} // namespace TlsSettings
