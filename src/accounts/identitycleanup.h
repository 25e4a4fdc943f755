// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QObject>

/**
 * Tries once more to remove the identities that wiped accounts have left in the sign-on service, at each
 * start of the daemon. What goes is forgotten, the rest waits for the next start.
 *
 * An identity that a record names is let alone: either its account is still to be wiped and does it itself,
 * or the sign-on service has begun its numbers anew and it is another one. Main thread only.
 */
class IdentityCleanUp : public QObject
{
    Q_OBJECT

public:
    explicit IdentityCleanUp(QObject *parent);

    void start();

Q_SIGNALS:
    /** One of them is over; whether it is gone. */
    void tried(quint32 identity, bool removed);

private:
    void remove(quint32 identity);
};
