// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/networkgate.h"

#include "application/base/engine.h"
#include "application/base/logging.h"
#include "application/base/network.h"

#include <QNetworkSession>

NetworkGate::State NetworkGate::of(Engine *engine, EasAccountId accountId)
{
    Network *const network = engine ? engine->networkManager() : nullptr;
    const QNetworkSession *const session = network ? network->networkSession(accountId) : nullptr;
    if (session && session->state() == QNetworkSession::Connected)
        return Open;
    if (session)
        qCWarning(eas()) << "Tried to start request, but network is not available. State:" << session->state()
                         << "error:" << session->error() << "error message:" << session->errorString();
    else
        qCWarning(eas()) << "Tried to start request, but session was nullptr.";
    if (network && network->isOnline()) {
        qCWarning(eas()) << "Network is not available yet, but device is in Online state. Trying to execute "
                            "request later.";
        return OpensLater;
    }
    qCWarning(eas()) << "Tried to start request, but network is not available";
    return Closed;
}
