// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QDateTime>
#include <QHash>
#include <QObject>
#include <QString>

class EasAccount;

/**
 * When the collections of an account have begun anew because the server told of items that the device never
 * got. A server that goes on to do so must not make the device fetch everything again and again.
 *
 * A child of its account: it lives as long as the daemon, and is forgotten with it. Main thread only.
 */
class CollectionRestarts : public QObject
{
    Q_OBJECT

public:
    /** Made at the first call. */
    static CollectionRestarts &of(EasAccount &account);

    /** Notes that a collection begins anew; false, and nothing is noted, if it has within the last day. */
    bool begin(const QString &collectionId);

private:
    explicit CollectionRestarts(EasAccount &account);

    QHash<QString, QDateTime> mLatest;
};
