// SPDX-License-Identifier: LGPL-2.1-or-later
#include "common/dbustypes.h"
#include "common/easdbusinterfaceproxy.h"
#include "support/testmain.h"

#include <QDBusConnection>
#include <QDBusMetaType>
#include <QDBusServer>
#include <QDir>
#include <QtTest>

namespace {

/** The far end of a peer connection: hands back what it was called with. */
class Echo : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.fennelos.easdaemon")

public Q_SLOTS:
    qulonglong syncFolders(qulonglong accountId, const QList<qulonglong> &folderIds)
    {
        numbers = folderIds;
        return accountId;
    }

    qulonglong syncFolders(qulonglong accountId, const QStringList &folderIds)
    {
        texts = folderIds;
        return accountId + 1;
    }

Q_SIGNALS:
    void provisionRequestFinished(qulonglong accountId, qulonglong requestId, int status,
        const FailedPolicyMap &provisionPolicy, int policyStatus);
    void galItemReceived(
        qulonglong accountId, qulonglong requestId, qulonglong matchingId, const GalItem &item);

public:
    QList<qulonglong> numbers;
    QStringList texts;
};

class Receiver : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void onPolicies(qulonglong, qulonglong, int, const FailedPolicyMap &received, int)
    {
        policies = received;
    }
    void onItem(qulonglong, qulonglong, qulonglong, const GalItem &received) { item = received; }

public:
    FailedPolicyMap policies;
    GalItem item;
};

GalItem exampleItem()
{
    GalItem item;
    item.setAlias(QStringLiteral("alias"));
    item.setCompany(QStringLiteral("company"));
    item.setDisplayName(QStringLiteral("display name"));
    item.setEmailAddress(QStringLiteral("a@example.com"));
    item.setFirstName(QStringLiteral("first"));
    item.setHomePhone(QStringLiteral("1"));
    item.setLastName(QStringLiteral("last"));
    item.setMobilePhone(QStringLiteral("2"));
    item.setOffice(QStringLiteral("office"));
    item.setPhone(QStringLiteral("3"));
    item.setTitle(QStringLiteral("title"));
    item.setPictureData(QString(100000, QLatin1Char('p')));
    return item;
}

} // namespace

class DBusInterfaceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        const QString address = QStringLiteral("unix:path=%1/%2")
                                    .arg(QDir::homePath(), QString::fromLatin1(QTest::currentTestFunction()));
        mServer.reset(new QDBusServer(address));
        QVERIFY2(mServer->isConnected(), qPrintable(mServer->lastError().message()));
        mEcho.reset(new Echo);
        connect(mServer.data(), &QDBusServer::newConnection, this, [this](const QDBusConnection &connection) {
            mServerSide.reset(new QDBusConnection(connection));
            mServerSide->registerObject(QStringLiteral("/"), mEcho.data(),
                QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals);
        });
        mClientSide.reset(
            new QDBusConnection(QDBusConnection::connectToPeer(address, QStringLiteral("test-peer"))));
        QTRY_VERIFY(!mServerSide.isNull());
    }

    void cleanup()
    {
        mClientSide.reset();
        QDBusConnection::disconnectFromPeer(QStringLiteral("test-peer"));
        mServerSide.reset();
        mServer.reset();
    }

    void typesHaveTheirSignatures()
    {
        QCOMPARE(QDBusMetaType::typeToSignature(qMetaTypeId<GalItem>()), "(ssssssssssss)");
        QCOMPARE(QDBusMetaType::typeToSignature(qMetaTypeId<FailedPolicyMap>()), "a{iv}");
        QCOMPARE(QDBusMetaType::typeToSignature(qMetaTypeId<QList<qulonglong>>()), "at");
    }

    void bothFormsOfSyncFoldersReachTheirMethod()
    {
        EasDBusInterfaceProxy proxy(QString(), QStringLiteral("/"), *mClientSide);
        QDBusPendingReply<qulonglong> byNumber = proxy.syncFolders(7, QList<qulonglong> { 1, 2 });
        QTRY_VERIFY(byNumber.isFinished());
        QVERIFY2(byNumber.isValid(), qPrintable(byNumber.error().message()));
        QCOMPARE(byNumber.value(), Q_UINT64_C(7));
        QCOMPARE(mEcho->numbers, (QList<qulonglong> { 1, 2 }));
        QDBusPendingReply<qulonglong> byText = proxy.syncFolders(7, QStringList { QStringLiteral("1") });
        QTRY_VERIFY(byText.isFinished());
        QCOMPARE(byText.value(), Q_UINT64_C(8));
        QCOMPARE(mEcho->texts, QStringList { QStringLiteral("1") });
    }

    void policiesKeepTheTypesOfTheirValues()
    {
        Receiver receiver;
        QVERIFY(mClientSide->connect(QString(), QStringLiteral("/"), QStringLiteral("org.fennelos.easdaemon"),
            QStringLiteral("provisionRequestFinished"), &receiver,
            SLOT(onPolicies(qulonglong, qulonglong, int, FailedPolicyMap, int))));
        FailedPolicyMap policies;
        policies.insert(3, 12);
        policies.insert(-1, QStringLiteral("text"));
        policies.insert(40, true);
        policies.insert(41, QStringList { QStringLiteral("a"), QStringLiteral("b") });
        Q_EMIT mEcho->provisionRequestFinished(1, 2, 0, policies, 0);
        QTRY_COMPARE(receiver.policies, policies);
        QCOMPARE(receiver.policies.value(41).userType(), int(QMetaType::QStringList));
    }

    void aDirectoryItemArrivesWhole()
    {
        Receiver receiver;
        QVERIFY(mClientSide->connect(QString(), QStringLiteral("/"), QStringLiteral("org.fennelos.easdaemon"),
            QStringLiteral("galItemReceived"), &receiver,
            SLOT(onItem(qulonglong, qulonglong, qulonglong, GalItem))));
        const GalItem item = exampleItem();
        Q_EMIT mEcho->galItemReceived(1, 2, 3, item);
        QTRY_VERIFY(receiver.item == item);
        QCOMPARE(receiver.item.alias(), QStringLiteral("alias"));
        QCOMPARE(receiver.item.title(), QStringLiteral("title"));
        QVERIFY(receiver.item != GalItem());
    }

    void theProxyHasEveryMethodAndSignal()
    {
        const QMetaObject &proxy = EasDBusInterfaceProxy::staticMetaObject;
        const char *const methods[] = { "quit()", "reconfig()", "protocolVersion(qulonglong)",
            "emailAddress(qulonglong)", "cancelRequest(qulonglong,qulonglong)", "sync(qulonglong)",
            "foldersSync(qulonglong)", "syncFolders(qulonglong,QList<qulonglong>)",
            "syncFolders(qulonglong,QStringList)", "syncService(qulonglong,int)",
            "sendMail(qulonglong,qulonglong)",
            "meetingResponse(qulonglong,qulonglong,int,qlonglong,qulonglong,QString,QString,QString)",
            "meetingResponseCalendar(qulonglong,QString,int,qlonglong,qulonglong,QString,QString,QString)",
            "createFolder(qulonglong,QString,QString,uint)",
            "updateFolder(qulonglong,QString,QString,QString)",
            "downloadCalendarAttachment(qulonglong,QString)", "deleteFolder(qulonglong,QString)",
            "provisionPolicy(qulonglong)", "downloadMessagePart(qulonglong,qulonglong,QString)",
            "searchMessages(qulonglong,QString,QString,QString,QString,qulonglong)",
            "searchGAL(qulonglong,QString,int,int,bool,bool)",
            "find(qulonglong,QString,QString,int,qulonglong)",
            "downloadMessages(qulonglong,QList<qulonglong>,bool)", "getOofState(qulonglong)",
            "setOofState(qulonglong,bool,bool,QString,QString,QString,bool,bool,QString)",
            "attendeesAvailable(qulonglong,QString,QString,QString)" };
        for (const char *method : methods)
            QVERIFY2(proxy.indexOfMethod(method) >= 0, method);
        const char *const signalNames[] = { "requestFinished(qulonglong,qulonglong,int)",
            "requestProgress(qulonglong,qulonglong,qlonglong,qlonglong)",
            "provisionRequestFinished(qulonglong,qulonglong,int,FailedPolicyMap,int)",
            "searchMessagesFinished(qulonglong,qulonglong,int,uint,QList<qulonglong>)",
            "searchGALFinished(qulonglong,qulonglong,int,int,QList<qulonglong>)",
            "findMessagesFinished(qulonglong,qulonglong,int,uint,QList<qulonglong>)",
            "syncStarted(qulonglong,qulonglong)", "syncCompleted(qulonglong,qulonglong,int)",
            "getOofFinished(qulonglong,qulonglong,bool,bool,QString,QString,QString,bool,bool,QString)",
            "attendeesAvailableDataReady(qulonglong,QStringList,QStringList,QStringList)" };
        for (const char *name : signalNames)
            QVERIFY2(proxy.indexOfSignal(name) >= 0, name);
    }

private:
    QScopedPointer<QDBusServer> mServer;
    QScopedPointer<QDBusConnection> mServerSide;
    QScopedPointer<QDBusConnection> mClientSide;
    QScopedPointer<Echo> mEcho;
};

FENNEL_REGISTER_TEST(DBusInterfaceTest)
#include "dbusinterfacetest.moc"
