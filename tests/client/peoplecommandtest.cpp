// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/commandscene.h"
#include "client/exitstatus.h"
#include "client/stubdaemon.h"
#include "client/stubpeers.h"
#include "support/clientprocess.h"
#include "support/testmain.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonObject>

namespace {

const QByteArray portrait("\x89PNG portrait");

GalItem person(const char *name, const char *address, const QByteArray &picture = QByteArray())
{
    GalItem item;
    item.setDisplayName(QString::fromUtf8(name));
    item.setEmailAddress(QString::fromUtf8(address));
    item.setPictureData(QString::fromLatin1(picture.toBase64()));
    return item;
}

} // namespace

/** People of the address list by command: they come beside the bus, with their pictures. */
class PeopleCommandTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<CommandScene> mScene;
    std::unique_ptr<StubDaemon> mDaemon;
    std::unique_ptr<StubPeers> mPeers;

    /** The daemon finds these, numbered from 1. */
    void find(const QList<GalItem> &people, int total)
    {
        QList<qulonglong> numbers;
        for (int i = 0; i < people.size(); ++i)
            numbers.append(qulonglong(i) + 1);
        mDaemon->setMatches(numbers, uint(total));
        mDaemon->setSearcher([this, people](qulonglong account, qulonglong request) {
            // Of another client's search as well.
            Q_EMIT mPeers->galItemReceived(account, request + 1000, 1, person("Other", "other@example.org"));
            for (int i = 0; i < people.size(); ++i)
                Q_EMIT mPeers->galItemReceived(account, request, qulonglong(i) + 1, people.at(i));
        });
    }

private Q_SLOTS:
    void init()
    {
        mScene = std::make_unique<CommandScene>();
        QVERIFY(mScene->isReady());
        mDaemon = std::make_unique<StubDaemon>();
        QVERIFY(mDaemon->isServing());
        mPeers = std::make_unique<StubPeers>();
        QVERIFY2(mPeers->isServing(), qPrintable(mPeers->error()));
    }
    void cleanup()
    {
        mPeers.reset();
        mDaemon.reset();
        mScene.reset();
    }

    void peopleAreListed()
    {
        GalItem eva = person("Eva Müller", "eva@example.org");
        eva.setMobilePhone(QStringLiteral("+49 1"));
        find({ eva, person("Bob", "bob@example.org") }, 5);
        ClientProcess client;
        QCOMPARE(client.run({ "people", "e", "mü" }), int(ExitSuccess));
        QCOMPARE(mDaemon->calls(),
            QStringList { QStringLiteral("searchGAL %1|e mü|0-99").arg(mScene->accountId()) });
        const QByteArrayList lines = client.output().split('\n');
        QVERIFY2(lines.value(0).startsWith("NAME"), client.output());
        QVERIFY2(
            lines.value(1).startsWith("Eva Müller") && lines.value(1).contains("+49 1"), client.output());
        QVERIFY2(lines.value(2).contains("bob@example.org"), client.output());
        QVERIFY2(!client.output().contains("other@"), client.output());
        QVERIFY2(client.errors().contains("2 of 5 people"), client.errors());
    }

    void programsGetThePictures()
    {
        find({ person("Eva", "eva@example.org", portrait) }, 1);
        ClientProcess client;
        QCOMPARE(client.run({ "--json", "people", "eva", "--limit", "3" }), int(ExitSuccess));
        QVERIFY(mDaemon->calls().value(0).endsWith(QStringLiteral("|0-2")));
        const QJsonObject row = client.json().array().at(0).toObject();
        QCOMPARE(row.value(QStringLiteral("email")).toString(), QStringLiteral("eva@example.org"));
        QCOMPARE(
            QByteArray::fromBase64(row.value(QStringLiteral("picture")).toString().toLatin1()), portrait);
    }

    void picturesAreWrittenUnderTheNamesOfTheirPeople()
    {
        find({ person("Eva", "eva@example.org", portrait), person("Bob", "bob@example.org"),
                 person("Other Eva", "eva@example.org", "\xFF\xD8 another"),
                 person("Up", "../../up@example.org", portrait) },
            4);
        const QString folder = mScene->path(QStringLiteral("new/pictures"));
        ClientProcess client;
        QCOMPARE(client.run({ "--json", "people", "e", "--pictures", folder }), int(ExitSuccess));
        const QDir pictures(folder);
        QCOMPARE(pictures.entryList(QDir::Files, QDir::Name),
            QStringList({ "_.._up@example.org.png", "eva@example.org.jpg", "eva@example.org.png" }));
        QFile file(pictures.filePath(QStringLiteral("eva@example.org.png")));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), portrait);
        QStringList told;
        for (const QJsonValue &row : client.json().array()) {
            QVERIFY(!row.toObject().contains(QStringLiteral("picture")));
            told.append(QFileInfo(row.toObject().value(QStringLiteral("pictureFile")).toString()).fileName());
        }
        QCOMPARE(told,
            QStringList({ "eva@example.org.png", "", "eva@example.org.jpg", "_.._up@example.org.png" }));
    }

    void aFolderThatCannotBeMadeIsAnError()
    {
        QFile file(mScene->path(QStringLiteral("file")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(
            CommandScene::run({ "people", "e", "--pictures", file.fileName() + "/in" }), int(ExitFailure));
        QCOMPARE(mDaemon->calls(), QStringList());
    }

    void nobodyIsNoError()
    {
        find({}, 0);
        ClientProcess client;
        QCOMPARE(client.run({ "people", "nobody" }), int(ExitSuccess));
        QVERIFY2(!client.output().contains("example"), client.output());
    }

    void aDaemonThatIsNotThereBesideTheBusIsNamed()
    {
        find({ person("Eva", "eva@example.org") }, 1);
        mPeers.reset();
        ClientProcess client;
        QCOMPARE(client.run({ "people", "eva" }), int(ExitUnavailable));
        QVERIFY2(client.errors().contains("beside the bus"), client.errors());
    }

    void aRefusedSearchIsExplained()
    {
        mDaemon->setStatus(-8);
        ClientProcess client;
        QCOMPARE(client.run({ "people", "eva" }), int(ExitFailure));
        QVERIFY2(client.errors().contains("The server does not offer this kind of search."), client.errors());
        QCOMPARE(CommandScene::run({ "people" }), int(ExitUsage));
    }
};

FENNEL_REGISTER_TEST(PeopleCommandTest)
#include "peoplecommandtest.moc"
