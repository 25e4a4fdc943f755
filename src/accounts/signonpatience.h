// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QObject>

namespace SignOn {
class Error;
}

/**
 * How long one call to the sign-on service is waited for: until the service goes away, or for thirty seconds.
 * The service's client library would tell neither.
 *
 * Made right before the call, by whoever waits for the answer, and deleted with the answer. Main thread only.
 */
class SignOnPatience : public QObject
{
    Q_OBJECT

public:
    explicit SignOnPatience(QObject *parent);

    /** Whether the service runs or can be started by the bus; two calls to the bus, which block. */
    static bool serviceIsAvailable();

Q_SIGNALS:
    /** The answer will not come; once for each of the two reasons, so that a second one may follow. */
    void exhausted(const SignOn::Error &error);

private:
    void onServiceGone();
    void onTimeout();
};
