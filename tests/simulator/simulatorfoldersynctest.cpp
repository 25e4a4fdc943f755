// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulatorclient.h"
#include "support/testmain.h"

#include <QtTest>

using namespace Simulator;

/** @short FolderSync: keys, changes of the hierarchy, repetition, devices apart. */
class SimulatorFolderSyncTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        mServer = std::make_unique<ExchangeServer>();
        QVERIFY(mServer->start());
        mClient = std::make_unique<SimulatorClient>(*mServer);
    }

    void cleanup()
    {
        mClient.reset();
        mServer.reset();
    }

    void theFirstOneBringsAllFoldersParentsFirst()
    {
        Mailbox &mailbox = mServer->mailbox();
        const QString parent = mailbox.addFolder(QStringLiteral("Projekte äöü"));
        const QString child = mailbox.addFolder(QStringLiteral("日本語"), UserMailFolder, parent);
        const WbxmlNode reply = folderSync(QStringLiteral("0"));
        QCOMPARE(reply.text(QStringLiteral("Status")), QStringLiteral("1"));
        const QVector<WbxmlNode> added = reply.all(QStringLiteral("Changes/Add"));
        QCOMPARE(added.size(), mailbox.folders().size());
        QCOMPARE(reply.text(QStringLiteral("Changes/Count")).toInt(), added.size());
        QCOMPARE(
            added.at(added.size() - 2).text(QStringLiteral("DisplayName")), QStringLiteral("Projekte äöü"));
        QCOMPARE(added.last().text(QStringLiteral("ServerId")), child);
        QCOMPARE(added.last().text(QStringLiteral("ParentId")), parent);
        QCOMPARE(added.last().text(QStringLiteral("Type")), QStringLiteral("12"));
    }

    void laterOnesBringWhatChanged()
    {
        Mailbox &mailbox = mServer->mailbox();
        const QString one = mailbox.addFolder(QStringLiteral("One"));
        const QString two = mailbox.addFolder(QStringLiteral("Two"), UserMailFolder, one);
        QString key = folderSync(QStringLiteral("0")).text(QStringLiteral("SyncKey"));
        QCOMPARE(folderSync(key).text(QStringLiteral("Changes/Count")), QStringLiteral("0"));

        mailbox.renameFolder(one, QStringLiteral("Uno"));
        const QString three = mailbox.addFolder(QStringLiteral("Three"));
        mailbox.moveFolder(two, three);
        WbxmlNode reply = folderSync(key);
        QCOMPARE(reply.text(QStringLiteral("Changes/Count")), QStringLiteral("3"));
        QCOMPARE(reply.all(QStringLiteral("Changes/Update")).size(), 2);
        QCOMPARE(reply.text(QStringLiteral("Changes/Update/DisplayName")), QStringLiteral("Uno"));
        QCOMPARE(reply.text(QStringLiteral("Changes/Add/ServerId")), three);
        key = reply.text(QStringLiteral("SyncKey"));

        mailbox.removeFolder(three);
        reply = folderSync(key);
        const QVector<WbxmlNode> deleted = reply.all(QStringLiteral("Changes/Delete"));
        QCOMPARE(deleted.size(), 2);
        QCOMPARE(deleted.first().text(QStringLiteral("ServerId")), three);
    }

    void aRepeatedKeyRepeatsTheAnswerAndAnUnknownOneIsStatusNine()
    {
        const QString key = folderSync(QStringLiteral("0")).text(QStringLiteral("SyncKey"));
        mServer->mailbox().addFolder(QStringLiteral("New"));
        const WbxmlNode reply = folderSync(key);
        QVERIFY(reply.has(QStringLiteral("Changes/Add")));
        QVERIFY(folderSync(key) == reply);
        QCOMPARE(folderSync(QStringLiteral("nonsense")).text(QStringLiteral("Status")), QStringLiteral("9"));
        mServer->forgetDevices();
        QCOMPARE(folderSync(key).text(QStringLiteral("Status")), QStringLiteral("9"));
    }

    void twoDevicesHaveStatesOfTheirOwn()
    {
        const QString key = folderSync(QStringLiteral("0")).text(QStringLiteral("SyncKey"));
        mClient->setDevice(QStringLiteral("device2"));
        QCOMPARE(folderSync(key).text(QStringLiteral("Status")), QStringLiteral("9"));
        folderSync(QStringLiteral("0"));
        mServer->mailbox().addFolder(QStringLiteral("New"));
        mClient->setDevice(QStringLiteral("device1"));
        QCOMPARE(folderSync(key).text(QStringLiteral("Changes/Count")), QStringLiteral("1"));
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

    std::unique_ptr<ExchangeServer> mServer;
    std::unique_ptr<SimulatorClient> mClient;
};

FENNEL_REGISTER_TEST(SimulatorFolderSyncTest)
#include "simulatorfoldersynctest.moc"
