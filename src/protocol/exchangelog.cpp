// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/exchangelog.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "protocol/wbxml/debugtools.h"

#include <QNetworkReply>

void ExchangeLog::received(const QNetworkReply &reply, const char *text, int size, const EasAccount *account)
{
    qCDebug(easNetwork()) << "=========================";
    qCDebug(easNetwork()) << text;
    qCDebug(easNetwork()) << "Network error: " << reply.error();
    headers(reply, account);
    qCDebug(easNetwork()) << "Length: " << size;
}

void ExchangeLog::headers(const QNetworkReply &reply, const EasAccount *account)
{
    if (!easNetwork().isDebugEnabled())
        return;
    const QString pairs = DebugTools::headersForLog(reply.rawHeaderPairs());
    qCDebug(easNetwork()) << "Headers: " << QString::fromUtf8(withoutCredentials(pairs.toUtf8(), account));
}

QByteArray ExchangeLog::withoutCredentials(const QByteArray &text, const EasAccount *account)
{
    QByteArray cleaned = text;
    if (!account)
        return cleaned;
    for (const QByteArray &secret : { account->authenticationBasicCookie(), account->password().toUtf8() }) {
        if (!secret.isEmpty())
            cleaned.replace(secret, "...");
    }
    return cleaned;
}
