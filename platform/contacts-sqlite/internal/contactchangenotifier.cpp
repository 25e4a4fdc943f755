// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/contactchangenotifier.h"

#include "support/sessionbus.h"

#include <QDBusMetaType>
#include <QUuid>

namespace {

const char busPath[] = "/org/fennel/ContactStore";
const char busInterface[] = "org.fennel.ContactStore";
const char busSignal[] = "Changed";

} // namespace

ContactChangeNotifier::ContactChangeNotifier(const QString &folder)
    : mFolder(folder)
    , mConnectionName(QLatin1String("contacts-") + QUuid::createUuid().toString(QUuid::WithoutBraces))
    , mBus(sessionBusIsThere() ? QDBusConnection::connectToBus(QDBusConnection::SessionBus, mConnectionName)
                               : QDBusConnection(mConnectionName))
{
    qDBusRegisterMetaType<QList<quint64>>();
    if (mBus.isConnected()) {
        mBus.connect(QString(), QLatin1String(busPath), QLatin1String(busInterface), QLatin1String(busSignal),
            QStringList { mFolder }, QString(), this, SLOT(onBusSignal(QDBusMessage)));
    }
}

ContactChangeNotifier::~ContactChangeNotifier()
{
    flush();
    // While this object is still there: the bus thread, which ends the connection later, would go through the
    // receivers once more.
    if (mBus.isConnected()) {
        mBus.disconnect(QString(), QLatin1String(busPath), QLatin1String(busInterface),
            QLatin1String(busSignal), QStringList { mFolder }, QString(), this,
            SLOT(onBusSignal(QDBusMessage)));
    }
    mBus = QDBusConnection(QString());
    QDBusConnection::disconnectFromBus(mConnectionName);
}

void ContactChangeNotifier::tell(const ContactChanges &changes)
{
    if (changes.isEmpty() || !mBus.isConnected())
        return;
    QDBusMessage message = QDBusMessage::createSignal(
        QLatin1String(busPath), QLatin1String(busInterface), QLatin1String(busSignal));
    message << mFolder;
    for (int kind = 0; kind < ContactChanges::KindCount; ++kind)
        message << QVariant::fromValue(changes.of(ContactChanges::Kind(kind)));
    mSent = mBus.send(message) || mSent;
}

void ContactChangeNotifier::flush()
{
    if (!mSent || !mBus.isConnected())
        return;
    // The bus takes messages in their order: once it answers, all that was sent before is out.
    mBus.call(QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
                  QStringLiteral("/org/freedesktop/DBus"), QStringLiteral("org.freedesktop.DBus"),
                  QStringLiteral("GetId")),
        QDBus::Block, 2000);
}

void ContactChangeNotifier::onBusSignal(const QDBusMessage &message)
{
    ContactChanges changes;
    for (int kind = 0; kind < ContactChanges::KindCount; ++kind) {
        changes.set(
            ContactChanges::Kind(kind), qdbus_cast<QList<quint64>>(message.arguments().value(kind + 1)));
    }
    Q_EMIT told(changes);
}
