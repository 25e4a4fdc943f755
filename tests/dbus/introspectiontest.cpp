// SPDX-License-Identifier: LGPL-2.1-or-later
#include "common/dbustypes.h"
#include "common/exchangeactivesync.h"
#include "dbus/dbusinterfacethread.h"
#include "support/privatebus.h"
#include "support/testmain.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
#include <QSignalSpy>
#include <QXmlStreamReader>
#include <QtTest>

namespace {

const QStringList SessionMembers {
    "method quit()",
    "method reconfig()",
    "method protocolVersion(t accountId) i version",
    "method emailAddress(t accountId) s emailAddress",
    "method cancelRequest(t accountId, t requestId)",
    "method sync(t accountId) t requestId",
    "method foldersSync(t accountId) t requestId",
    "method syncFolders(t accountId, at folderIds) t requestId",
    "method syncFolders(t accountId, as folderIds) t requestId",
    "method syncService(t accountId, i service) t requestId",
    "method sendMail(t accountId, t messageId) t requestId",
    "method meetingResponse(t accountId, t requestMessageId, i userResponse, x instanceId, t replyMessageId, "
    "s newStartTime, s newEndTime, s newTimeComment) t requestId",
    "method meetingResponseCalendar(t accountId, s requestEventId, i userResponse, x instanceId, "
    "t replyMessageId, s newStartTime, s newEndTime, s newTimeComment) t requestId",
    "method createFolder(t accountId, s name, s parentFolderId, u folderType) t requestId",
    "method updateFolder(t accountId, s folderId, s parentFolderId, s name) t requestId",
    "method downloadCalendarAttachment(t accountId, s uri) t requestId",
    "method deleteFolder(t accountId, s folderId) t requestId",
    "method provisionPolicy(t accountId) t requestId",
    "method downloadMessagePart(t accountId, t messageId, s location) t requestId",
    "method searchMessages(t accountId, s folderId, s dateFrom, s dateTo, s bodyText, t limit) t requestId",
    "method searchGAL(t accountId, s queryString, i rangeMin, i rangeMax, b rebuildResults, "
    "b deepTraversal) t requestId",
    "method find(t accountId, s folderId, s searchQuery, i searchType, t limit) t requestId",
    "method downloadMessages(t accountId, at messageIds, b fullContentDownload) t requestId",
    "method getOofState(t accountId) t requestId",
    "method setOofState(t accountId, b enabled, b timeRangeEnabled, s startTime, s endTime, "
    "s internalMessage, b externalMessageEnabled, b externalMessageToAnyone, s externalMessage) t requestId",
    "method attendeesAvailable(t accountId, s emailAddresses, s startTime, s endTime) t requestId",
    "signal requestFinished(t accountId, t requestId, i status)",
    "signal requestProgress(t accountId, t requestId, x maxValue, x currentValue)",
    "signal provisionRequestFinished(t accountId, t requestId, i status, a{iv} provisionPolicy, "
    "i policyStatus)",
    "signal searchMessagesFinished(t accountId, t requestId, i status, u remainingCount, at matchingIds)",
    "signal searchGALFinished(t accountId, t requestId, i status, i totalItemsCount, at matchingIds)",
    "signal findMessagesFinished(t accountId, t requestId, i status, u remainingCount, at matchingIds)",
    "signal syncStarted(t accountId, t requestId)",
    "signal syncCompleted(t accountId, t requestId, i status)",
    "signal getOofFinished(t accountId, t requestId, b enabled, b timeRangeEnabled, s startTime, s endTime, "
    "s internalMessage, b externalMessageEnabled, b externalMessageToAnyone, s externalMessage)",
    "signal attendeesAvailableDataReady(t requestId, as emails, as names, as statuses)",
};

/** What the daemon tells beside it. */
const QStringList OwnMembers {
    "method pushState(t accountId) a{sv} state",
    "signal policyDocumentReceived(t accountId, t requestId, a{sv} policies)",
    "signal pushStateChanged(t accountId, a{sv} state)",
};

const QStringList PeerMembers {
    "signal galItemReceived(t accountId, t requestId, t matchingId, (ssssssssssss) item)",
};

QString member(QXmlStreamReader &xml)
{
    const QString kind = xml.name().toString();
    const QString name = xml.attributes().value(QLatin1String("name")).toString();
    QStringList in;
    QString out;
    while (xml.readNextStartElement()) {
        const auto attribute = [&xml](const char *key) {
            return xml.attributes().value(QLatin1String(key)).toString();
        };
        if (xml.name() == QLatin1String("arg")) {
            const QString argument = attribute("type") + QLatin1Char(' ') + attribute("name");
            if (attribute("direction") == QLatin1String("out") && kind == QLatin1String("method"))
                out = QLatin1Char(' ') + argument;
            else
                in.append(argument);
        }
        xml.skipCurrentElement();
    }
    return QStringLiteral("%1 %2(%3)").arg(kind, name, in.join(QStringLiteral(", "))) + out;
}

/** The members of one interface, a line each in the order of the text. */
QStringList members(const QString &text, const QString &interface)
{
    QStringList lines;
    QXmlStreamReader xml(text);
    xml.readNextStartElement();
    while (xml.readNextStartElement()) {
        if (xml.name() != QLatin1String("interface")
            || xml.attributes().value(QLatin1String("name")) != interface) {
            xml.skipCurrentElement();
            continue;
        }
        while (xml.readNextStartElement())
            lines.append(member(xml));
    }
    return lines;
}

QString introspected(const QDBusConnection &connection, const QString &service, const QString &path)
{
    const QDBusReply<QString> reply = connection.call(QDBusMessage::createMethodCall(
        service, path, QStringLiteral("org.freedesktop.DBus.Introspectable"), QStringLiteral("Introspect")));
    return reply.value();
}

} // namespace

/** What the daemon tells of its interfaces is what its clients were promised. */
class IntrospectionTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<DBusInterfaceThread> mThread;

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(PrivateBus::ensure());
        ExchangeActiveSync::registerDBusTypes();
        mThread = std::make_unique<DBusInterfaceThread>();
        mThread->moveToThread(mThread.get());
        QSignalSpy serving(mThread.get(), &DBusInterfaceThread::serving);
        mThread->start();
        QVERIFY(serving.wait(60000));
    }

    void cleanupTestCase()
    {
        mThread->exit(1);
        QVERIFY(mThread->wait(60000));
    }

    void theSessionInterfaceIsAsPromised()
    {
        QStringList told =
            members(introspected(QDBusConnection::sessionBus(), ExchangeActiveSync::EAS_DBUS_SERVICE_NAME,
                        ExchangeActiveSync::EAS_DBUS_PATH_NAME),
                QStringLiteral("org.fennelos.easdaemon"));
        for (const QString &own : OwnMembers)
            QVERIFY2(told.removeAll(own) == 1, qPrintable(own));
        QCOMPARE(told, SessionMembers);
    }

    void thePeerInterfaceIsAsPromised()
    {
        const QString name = QStringLiteral("introspection");
        const QDBusConnection peer =
            QDBusConnection::connectToPeer(ExchangeActiveSync::EAS_DBUS_PEER_ADDRESS, name);
        QVERIFY(peer.isConnected());
        QTRY_COMPARE(members(introspected(peer, QString(), ExchangeActiveSync::EAS_DBUS_PEER_PATH_NAME),
                         QStringLiteral("org.fennelos.easdaemonp2p")),
            PeerMembers);
        QDBusConnection::disconnectFromPeer(name);
    }
};

FENNEL_REGISTER_TEST(IntrospectionTest)
#include "introspectiontest.moc"
