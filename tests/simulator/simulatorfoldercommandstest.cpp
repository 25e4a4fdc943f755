// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulatorclient.h"
#include "support/testmain.h"

#include <QtTest>

using namespace Simulator;

namespace {

QString create(const QString &name, const QString &parent = QStringLiteral("0"), int type = UserMailFolder)
{
    return QStringLiteral("<ParentId>%1</ParentId><DisplayName>%2</DisplayName><Type>%3</Type>")
        .arg(parent, name)
        .arg(type);
}

QString update(const QString &id, const QString &name, const QString &parent = QStringLiteral("0"))
{
    return QStringLiteral("<ServerId>%1</ServerId><ParentId>%2</ParentId><DisplayName>%3</DisplayName>")
        .arg(id, parent, name);
}

QString remove(const QString &id)
{
    return QStringLiteral("<ServerId>%1</ServerId>").arg(id);
}

} // namespace

/** @short FolderCreate, FolderUpdate and FolderDelete: keys, what other devices see, statuses. */
class SimulatorFolderCommandsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        mServer = std::make_unique<ExchangeServer>();
        QVERIFY(mServer->start());
        mClient = std::make_unique<SimulatorClient>(*mServer);
        mInbox = mServer->mailbox().inboxId();
        mKey = folderSync(QStringLiteral("0")).text(QStringLiteral("SyncKey"));
    }

    void cleanup()
    {
        QCOMPARE(mServer->failures(), QStringList());
        mClient.reset();
        mServer.reset();
    }

    void aCreatedFolderIsThereForOthersAndNoNewsForItsMaker_data()
    {
        QTest::addColumn<int>("type");
        QTest::newRow("mail") << int(UserMailFolder);
        QTest::newRow("calendar") << int(UserCalendarFolder);
        QTest::newRow("contacts") << int(UserContactsFolder);
    }

    void aCreatedFolderIsThereForOthersAndNoNewsForItsMaker()
    {
        QFETCH(int, type);
        mClient->setDevice(QStringLiteral("other"));
        const QString othersKey = folderSync(QStringLiteral("0")).text(QStringLiteral("SyncKey"));
        mClient->setDevice(QStringLiteral("device1"));

        const WbxmlNode reply = run("FolderCreate", create(QStringLiteral("Übersicht"), mInbox, type));
        QCOMPARE(reply.text(QStringLiteral("Status")), QStringLiteral("1"));
        const MailFolder folder = mServer->mailbox().folder(reply.text(QStringLiteral("ServerId")));
        QCOMPARE(folder.name, QStringLiteral("Übersicht"));
        QCOMPARE(folder.parentId, mInbox);
        QCOMPARE(folder.type, type);
        QVERIFY(mKey != reply.text(QStringLiteral("SyncKey")));
        QCOMPARE(folderSync(reply.text(QStringLiteral("SyncKey"))).text(QStringLiteral("Changes/Count")),
            QStringLiteral("0"));

        mClient->setDevice(QStringLiteral("other"));
        QCOMPARE(folderSync(othersKey).text(QStringLiteral("Changes/Add/ServerId")), folder.id);
    }

    void changesOfOthersAreToldAfterTheOwnOne()
    {
        const QString foreign = mServer->mailbox().addFolder(QStringLiteral("Foreign"));
        const WbxmlNode reply = run("FolderCreate", create(QStringLiteral("Own")));
        const WbxmlNode changes = folderSync(reply.text(QStringLiteral("SyncKey")));
        QCOMPARE(changes.text(QStringLiteral("Changes/Count")), QStringLiteral("1"));
        QCOMPARE(changes.text(QStringLiteral("Changes/Add/ServerId")), foreign);
    }

    void anUpdateRenamesAndMoves()
    {
        const QString id = known(QStringLiteral("Old"));
        const WbxmlNode reply = run("FolderUpdate", update(id, QStringLiteral("New"), mInbox));
        QCOMPARE(reply.text(QStringLiteral("Status")), QStringLiteral("1"));
        QVERIFY(!reply.has(QStringLiteral("ServerId")));
        QCOMPARE(mServer->mailbox().folderByPath(QStringLiteral("Inbox/New")).id, id);
        QCOMPARE(folderSync(reply.text(QStringLiteral("SyncKey"))).text(QStringLiteral("Changes/Count")),
            QStringLiteral("0"));
    }

    void aDeleteTakesItsSubFoldersAlong()
    {
        const QString id = known(QStringLiteral("Old"));
        const QString below = known(QStringLiteral("Below"), id);
        const WbxmlNode reply = run("FolderDelete", remove(id));
        QCOMPARE(reply.text(QStringLiteral("Status")), QStringLiteral("1"));
        QVERIFY(mServer->mailbox().folder(id).id.isEmpty());
        QVERIFY(mServer->mailbox().folder(below).id.isEmpty());
        const WbxmlNode changes = folderSync(reply.text(QStringLiteral("SyncKey")));
        QCOMPARE(changes.text(QStringLiteral("Changes/Count")), QStringLiteral("1"));
        QCOMPARE(changes.text(QStringLiteral("Changes/Delete/ServerId")), below);
    }

    void aRepeatedRequestRepeatsItsAnswer()
    {
        const WbxmlNode reply = run("FolderCreate", create(QStringLiteral("Own")));
        QVERIFY(run("FolderCreate", create(QStringLiteral("Own"))) == reply);
        QCOMPARE(mServer->mailbox().folderByPath(QStringLiteral("Own")).id,
            reply.text(QStringLiteral("ServerId")));
    }

    void aDeviceThatLostTheAnswerLearnsOfTheFolderBySync()
    {
        const QString id =
            run("FolderCreate", create(QStringLiteral("Own"))).text(QStringLiteral("ServerId"));
        const WbxmlNode changes = folderSync(mKey);
        QCOMPARE(changes.text(QStringLiteral("Status")), QStringLiteral("1"));
        QCOMPARE(changes.text(QStringLiteral("Changes/Add/ServerId")), id);
    }

    void whatCannotBeHasAStatus_data()
    {
        const QString id = QStringLiteral("@folder");
        const QString inbox = QStringLiteral("@inbox");
        const QString cache = QStringLiteral("@cache");
        const QString name = QStringLiteral("New");
        QTest::addColumn<QByteArray>("command");
        QTest::addColumn<QString>("inner");
        QTest::addColumn<QString>("status");
        const auto row = [](const char *title, const char *command, const QString &inner,
                             const char *status) {
            QTest::newRow(title) << QByteArray(command) << inner << QString::fromLatin1(status);
        };
        row("create: name is taken", "FolderCreate", create(QStringLiteral("taken")), "2");
        row("create: below the cache", "FolderCreate", create(name, cache), "3");
        row("create: no parent", "FolderCreate", create(name, QStringLiteral("99")), "5");
        row("create: second inbox", "FolderCreate", create(name, QStringLiteral("0"), InboxFolder), "10");
        row("create: no name", "FolderCreate", create(QString()), "10");
        row("update: name is taken", "FolderUpdate", update(id, QStringLiteral("TAKEN")), "2");
        row("update: inbox", "FolderUpdate", update(inbox, name), "2");
        row("update: the cache", "FolderUpdate", update(cache, name), "3");
        row("update: no folder", "FolderUpdate", update(QStringLiteral("99"), name), "4");
        row("update: no parent", "FolderUpdate", update(id, name, QStringLiteral("99")), "5");
        row("update: below itself", "FolderUpdate", update(id, name, id), "5");
        row("update: no name", "FolderUpdate", update(id, QString()), "10");
        row("delete: inbox", "FolderDelete", remove(inbox), "3");
        row("delete: no folder", "FolderDelete", remove(QStringLiteral("99")), "4");
        row("delete: none named", "FolderDelete", QString(), "10");
    }

    void whatCannotBeHasAStatus()
    {
        QFETCH(QByteArray, command);
        QFETCH(QString, inner);
        QFETCH(QString, status);
        Mailbox &mailbox = mServer->mailbox();
        mailbox.addFolder(QStringLiteral("Taken"));
        inner.replace(QStringLiteral("@folder"), known(QStringLiteral("Own")));
        inner.replace(QStringLiteral("@inbox"), mInbox);
        inner.replace(
            QStringLiteral("@cache"), mailbox.addFolder(QStringLiteral("Cache"), RecipientCacheFolder));
        const QVector<MailFolder> before = mailbox.folders();
        const WbxmlNode reply = run(command.constData(), inner);
        QCOMPARE(reply.text(QStringLiteral("Status")), status);
        QVERIFY(!reply.has(QStringLiteral("SyncKey")));
        QVERIFY(mailbox.folders() == before);
    }

    void anUnknownKeyIsStatusNine()
    {
        mKey = QStringLiteral("nonsense");
        for (const char *command : { "FolderCreate", "FolderUpdate", "FolderDelete" })
            QCOMPARE(run(command, create(QStringLiteral("A"))).text(QStringLiteral("Status")),
                QStringLiteral("9"));
        QVERIFY(mServer->mailbox().folderByPath(QStringLiteral("A")).id.isEmpty());
    }

    void aScriptCanGiveAnyStatus()
    {
        mServer->overrideNext(QStringLiteral("FolderCreate"), Override::topStatus(12));
        const WbxmlNode reply = run("FolderCreate", create(QStringLiteral("A")));
        QCOMPARE(reply.name(), QStringLiteral("FolderHierarchy:FolderCreate"));
        QCOMPARE(reply.text(QStringLiteral("Status")), QStringLiteral("12"));
    }

private:
    WbxmlNode folderSync(const QString &key)
    {
        return mClient
            ->post(QStringLiteral("FolderSync"),
                QStringLiteral("<FolderSync xmlns='FolderHierarchy'><SyncKey>%1</SyncKey></FolderSync>")
                    .arg(key))
            .document;
    }

    /** The command with the device's key; the key stays what it was. */
    WbxmlNode run(const char *command, const QString &inner)
    {
        const QString name = QString::fromLatin1(command);
        return mClient
            ->post(name,
                QStringLiteral("<%1 xmlns='FolderHierarchy'><SyncKey>%2</SyncKey>%3</%1>")
                    .arg(name, mKey, inner))
            .document;
    }

    /** A folder that the device knows. */
    QString known(const QString &name, const QString &parentId = QStringLiteral("0"))
    {
        const QString id = mServer->mailbox().addFolder(name, UserMailFolder, parentId);
        mKey = folderSync(mKey).text(QStringLiteral("SyncKey"));
        return id;
    }

    std::unique_ptr<ExchangeServer> mServer;
    std::unique_ptr<SimulatorClient> mClient;
    QString mInbox;
    QString mKey;
};

FENNEL_REGISTER_TEST(SimulatorFolderCommandsTest)
#include "simulatorfoldercommandstest.moc"
