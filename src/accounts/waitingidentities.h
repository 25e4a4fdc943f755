// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/lookup.h"

#include <QMap>
#include <QSet>
#include <QString>

/**
 * The identities of wiped accounts that are still to be removed from the sign-on service: their numbers, in a
 * file beside the mapping that the user alone can read. They outlive the account, whose record named them.
 *
 * The service refuses an identity that is not there in the same words as one that it protects. So the file
 * tells, too, which of them the service has shown: one that was there and is refused now has gone.
 *
 * The file is there only while it names one. Every operation reads it anew, and those that change it write it
 * through; false, after a log line, if it is as it was. Main thread only.
 */
class WaitingIdentities
{
public:
    using Identities = QSet<quint32>;

    /** The file of the device. */
    static QString defaultFile();

    explicit WaitingIdentities(const QString &file = defaultFile());

    /** Empty without a file; unread, after a log line, where it cannot be read. */
    Lookup<Identities> all() const;
    bool wasShown(quint32 identity) const;

    bool add(const Identities &identities) const;
    /** Adds it, too. */
    bool noteShown(quint32 identity) const;
    bool remove(quint32 identity) const;

private:
    enum State { Unknown, Shown };
    using States = QMap<quint32, State>;

    Lookup<States> read() const;
    bool write(const States &states) const;

    QString mFile;
};
