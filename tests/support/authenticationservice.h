// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QMap>
#include <QString>
#include <QThread>
#include <QVariant>

#include <memory>

class AuthenticationOptions;
class QDBusServer;

/**
 * A device's authentication daemon on a peer bus of its own, in a thread of its own: whoever asks it waits
 * for the answer. The environment names its address while it lives.
 */
class AuthenticationService
{
public:
    /** The options of the method "password"; one that is missing is answered with an error. */
    explicit AuthenticationService(const QMap<QString, QVariant> &options);
    ~AuthenticationService();
    Q_DISABLE_COPY(AuthenticationService)

    /** From here on calls are received and never answered. */
    void fallSilent();
    /** The options that were asked for, in their order. */
    QStringList asked() const;

private:
    QThread mThread;
    std::unique_ptr<AuthenticationOptions> mOptions;
    QDBusServer *mServer = nullptr;
};
