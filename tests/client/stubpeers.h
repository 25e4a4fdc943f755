// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/galitem.h"

#include <QDBusError>
#include <QDBusServer>
#include <QObject>

#include <memory>

/** What the daemon has beside the bus, in the test process: clients that connect hear of the people that a
 * test tells. Owned by the test. */
class StubPeers : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.fennelos.easdaemonp2p")

public:
    StubPeers();
    ~StubPeers() override;

    bool isServing() const { return mServer->isConnected(); }
    QString error() const { return mServer->lastError().message(); }
    int count() const { return mNames.size(); }

Q_SIGNALS:
    Q_SCRIPTABLE void galItemReceived(
        qulonglong accountId, qulonglong requestId, qulonglong matchingId, const GalItem &item);

private:
    std::unique_ptr<QDBusServer> mServer;
    QStringList mNames;
};
