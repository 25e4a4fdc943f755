// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/directorylistener.h"

#include "common/dbustypes.h"
#include "common/exchangeactivesync.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>

#include <algorithm>

namespace {

const QString ConnectionName = QStringLiteral("fennel-easctl-peer");
const QString Interface = QStringLiteral("org.fennelos.easdaemonp2p");

/** Everything was on its way when the daemon told the end of the search. */
constexpr int PatienceMs = 10000;

} // namespace

DirectoryListener::DirectoryListener()
{
    ExchangeActiveSync::registerDBusTypes();
    mPatience.setSingleShot(true);
    mPatience.setInterval(PatienceMs);
    connect(&mPatience, &QTimer::timeout, this, [] { QCoreApplication::quit(); });
}

DirectoryListener::~DirectoryListener()
{
    QDBusConnection::disconnectFromPeer(ConnectionName);
}

bool DirectoryListener::listen()
{
    QDBusConnection daemon =
        QDBusConnection::connectToPeer(ExchangeActiveSync::EAS_DBUS_PEER_ADDRESS, ConnectionName);
    if (!daemon.isConnected()
        || !daemon.connect(QString(), ExchangeActiveSync::EAS_DBUS_PEER_PATH_NAME, Interface,
            QStringLiteral("galItemReceived"), this,
            SLOT(onItem(qulonglong, qulonglong, qulonglong, GalItem))))
        return false;
    // The answer shows that the daemon has taken the connection, and tells it of all that it finds from now
    // on.
    const QDBusMessage question =
        QDBusMessage::createMethodCall(QString(), ExchangeActiveSync::EAS_DBUS_PEER_PATH_NAME,
            QStringLiteral("org.freedesktop.DBus.Introspectable"), QStringLiteral("Introspect"));
    return daemon.call(question, QDBus::Block, PatienceMs).type() == QDBusMessage::ReplyMessage;
}

void DirectoryListener::onItem(qulonglong, qulonglong requestId, qulonglong number, const GalItem &item)
{
    // Requests have one numbering for all accounts.
    mItems[requestId].insert(number, item);
    if (mWantedRequest != 0 && hasAll())
        QCoreApplication::quit();
}

bool DirectoryListener::hasAll() const
{
    const QMap<qulonglong, GalItem> items = mItems.value(mWantedRequest);
    return std::all_of(
        mWanted.cbegin(), mWanted.cend(), [&items](qulonglong number) { return items.contains(number); });
}

QList<GalItem> DirectoryListener::people(qulonglong requestId, const QList<qulonglong> &numbers)
{
    mWantedRequest = requestId;
    mWanted = numbers;
    if (!hasAll()) {
        mPatience.start();
        QCoreApplication::exec();
        mPatience.stop();
    }
    mWantedRequest = 0;
    QList<GalItem> found;
    for (const qulonglong number : numbers) {
        if (mItems.value(requestId).contains(number))
            found.append(mItems.value(requestId).value(number));
    }
    return found;
}
