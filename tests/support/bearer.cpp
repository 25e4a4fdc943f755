// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/bearer.h"

#include <QCoreApplication>
#include <QNetworkConfigurationManager>
#include <QSaveFile>
#include <QtTest>

bool Bearer::setState(QNetworkSession::State state)
{
    QSaveFile file(qEnvironmentVariable("FENNEL_TEST_BEARER_FILE"));
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(QByteArray::number(state));
    return file.commit();
}

bool Bearer::settleConnected()
{
    constexpr int Patience = 60000;
    if (!connectNetwork())
        return false;
    const QNetworkConfigurationManager manager;
    // The online state follows on a thread of its own: it may still be that of the test before when a session
    // is connected already, or the other way round.
    const bool settled = QTest::qWaitFor(
        [&manager] {
            const QNetworkSession session(manager.defaultConfiguration());
            return session.state() == QNetworkSession::Connected && manager.isOnline();
        },
        Patience);
    // What was told on the way is in the queue.
    QCoreApplication::processEvents();
    return settled;
}
