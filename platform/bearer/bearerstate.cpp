// SPDX-License-Identifier: LGPL-2.1-or-later
#include "bearerstate.h"

#include <QFile>

QString BearerState::fileName()
{
    return qEnvironmentVariable("FENNEL_TEST_BEARER_FILE");
}

QNetworkSession::State BearerState::read()
{
    QFile file(fileName());
    if (file.fileName().isEmpty() || !file.open(QIODevice::ReadOnly))
        return QNetworkSession::Connected;
    bool isNumber = false;
    const int state = file.readAll().trimmed().toInt(&isNumber);
    if (!isNumber || state < QNetworkSession::Invalid || state > QNetworkSession::Roaming)
        return QNetworkSession::Connected;
    return static_cast<QNetworkSession::State>(state);
}
