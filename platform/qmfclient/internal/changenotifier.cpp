// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/changenotifier.h"

#include "support/sessionbus.h"

#include <qmailstore.h>

#include <QDBusMetaType>
#include <QUuid>

#include <functional>
#include <iterator>

namespace {

const char busPath[] = "/org/fennel/MailStore";
const char busInterface[] = "org.fennel.MailStore";

template <typename List> List idList(const QList<quint64> &numbers)
{
    List ids;
    for (const quint64 number : numbers)
        ids.append(typename List::value_type(number));
    return ids;
}

struct SignalOfKind
{
    const char *name;
    void (*emitIt)(QMailStore &store, const QList<quint64> &ids);
};

template <typename List, void (QMailStore::*signal)(const List &)>
void emitList(QMailStore &store, const QList<quint64> &ids)
{
    Q_EMIT(store.*signal)(idList<List>(ids));
}

#define ACCOUNT_SIGNAL(name)                                                                                 \
    {                                                                                                        \
#name, emitList < QMailAccountIdList, &QMailStore::name>                                             \
    }
#define FOLDER_SIGNAL(name)                                                                                  \
    {                                                                                                        \
#name, emitList < QMailFolderIdList, &QMailStore::name>                                              \
    }
#define MESSAGE_SIGNAL(name)                                                                                 \
    {                                                                                                        \
#name, emitList < QMailMessageIdList, &QMailStore::name>                                             \
    }

/** By MailChanges::Kind. */
const SignalOfKind signalsByKind[] = {
    ACCOUNT_SIGNAL(accountsAdded),
    FOLDER_SIGNAL(foldersAdded),
    MESSAGE_SIGNAL(messagesAdded),
    ACCOUNT_SIGNAL(accountsUpdated),
    FOLDER_SIGNAL(foldersUpdated),
    MESSAGE_SIGNAL(messagesUpdated),
    MESSAGE_SIGNAL(messagesRemoved),
    FOLDER_SIGNAL(foldersRemoved),
    ACCOUNT_SIGNAL(accountsRemoved),
    ACCOUNT_SIGNAL(messageRemovalRecordsAdded),
    ACCOUNT_SIGNAL(messageRemovalRecordsRemoved),
    MESSAGE_SIGNAL(messageContentsModified),
    FOLDER_SIGNAL(folderContentsModified),
};

#undef ACCOUNT_SIGNAL
#undef FOLDER_SIGNAL
#undef MESSAGE_SIGNAL

QDBusConnection ownConnection(const QString &name)
{
    // A connection of the store's own: its unique name tells what came from here.
    return sessionBusIsThere() ? QDBusConnection::connectToBus(QDBusConnection::SessionBus, name)
                               : QDBusConnection(name);
}

} // namespace

ChangeNotifier::ChangeNotifier(QMailStore &store, const QString &folder)
    : mStore(store)
    , mFolder(folder)
    , mConnectionName(QLatin1String("mailstore-") + QUuid::createUuid().toString(QUuid::WithoutBraces))
    , mBus(ownConnection(mConnectionName))
{
    qDBusRegisterMetaType<QList<quint64>>();
    if (!mBus.isConnected())
        return;
    for (const SignalOfKind &entry : signalsByKind) {
        mBus.connect(QString(), QLatin1String(busPath), QLatin1String(busInterface),
            QLatin1String(entry.name), QStringList { mFolder }, QString(), this,
            SLOT(onBusSignal(QDBusMessage)));
    }
}

ChangeNotifier::~ChangeNotifier()
{
    flush();
    mBus = QDBusConnection(QString());
    QDBusConnection::disconnectFromBus(mConnectionName);
}

void ChangeNotifier::tellAll(const MailChanges &changes)
{
    const QMap<MailChanges::Kind, QList<quint64>> all = changes.all();
    // Others first: a listener of ours may change the store again, and that is to reach them later than this.
    for (auto it = all.cbegin(); it != all.cend(); ++it)
        tellOthers(it.key(), it.value());
    for (auto it = all.cbegin(); it != all.cend(); ++it)
        tellListeners(it.key(), it.value());
}

void ChangeNotifier::tellListeners(MailChanges::Kind kind, const QList<quint64> &ids)
{
    if (!ids.isEmpty())
        signalsByKind[kind].emitIt(mStore, ids);
}

void ChangeNotifier::tellOthers(MailChanges::Kind kind, const QList<quint64> &ids)
{
    if (ids.isEmpty() || !mBus.isConnected())
        return;
    QDBusMessage message = QDBusMessage::createSignal(
        QLatin1String(busPath), QLatin1String(busInterface), QLatin1String(signalsByKind[kind].name));
    message << mFolder << QVariant::fromValue(ids);
    mSent = mBus.send(message) || mSent;
}

void ChangeNotifier::flush()
{
    if (!mSent || !mBus.isConnected())
        return;
    mSent = false;
    // The bus takes messages in their order: once it answers, all that was sent before is out.
    mBus.call(QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
                  QStringLiteral("/org/freedesktop/DBus"), QStringLiteral("org.freedesktop.DBus"),
                  QStringLiteral("GetId")),
        QDBus::Block, 2000);
}

void ChangeNotifier::onBusSignal(const QDBusMessage &message)
{
    if (message.service() == mBus.baseService())
        return;
    const auto ids = qdbus_cast<QList<quint64>>(message.arguments().value(1));
    for (std::size_t kind = 0; kind < std::size(signalsByKind); ++kind) {
        if (message.member() == QLatin1String(signalsByKind[kind].name))
            tellListeners(MailChanges::Kind(kind), ids);
    }
}
