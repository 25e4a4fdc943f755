// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QNetworkSession>

/** The state of the device's network, as the bearer plugin reads it. Changes arrive through the event loop.
 */
class Bearer
{
public:
    Bearer() = delete;

    static bool setState(QNetworkSession::State state);
    static bool connectNetwork() { return setState(QNetworkSession::Connected); }
    static bool loseNetwork() { return setState(QNetworkSession::Disconnected); }

    /** As connectNetwork(), and waits until everybody knows, also of what was changed before. */
    static bool settleConnected();
};
