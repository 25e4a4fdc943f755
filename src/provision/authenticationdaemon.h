// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QDBusConnection>
#include <QString>
#include <QVariant>

/**
 * The daemon that knows what the device's passwords look like, over a peer connection of its own.
 *
 * The address is the device's, or what the environment names in FENNEL_AUTHD_ADDRESS. Each call blocks, one
 * second at most; a daemon that let one run out of time is not asked again. Made for a few calls in a row;
 * the connection ends with the object.
 */
class AuthenticationDaemon
{
public:
    AuthenticationDaemon();
    ~AuthenticationDaemon();
    Q_DISABLE_COPY(AuthenticationDaemon)

    /** An option of an authentication method; not valid if the daemon does not tell it. */
    QVariant getMethodOption(const QString &method, const QString &option);

private:
    QDBusConnection mConnection;
    bool mIsSilent = false;
};
