// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/base/wipekeys.h"
#include "accounts/waitingidentities.h"
#include "client/commandscene.h"
#include "client/exitstatus.h"
#include "support/clientprocess.h"
#include "support/testmain.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonObject>

/** How far an ordered wipe is, as the account's record and the list of waiting identities tell it. */
class WipeCommandsTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<CommandScene> mScene;
    std::unique_ptr<AccountFactory> mAccounts;

    bool write(const char *key, const QVariant &value)
    {
        return mAccounts->setValue(mScene->accountId(), QString(), QLatin1String(key), value);
    }

private Q_SLOTS:
    void init()
    {
        mScene = std::make_unique<CommandScene>();
        QVERIFY(mScene->isReady());
        mAccounts = std::make_unique<AccountFactory>();
        QVERIFY(QDir().mkpath(QFileInfo(WaitingIdentities::defaultFile()).path()));
    }
    void cleanup()
    {
        mAccounts.reset();
        mScene.reset();
        QFile::remove(WaitingIdentities::defaultFile());
    }

    void theStateOfEachAccountIsTold_data()
    {
        QTest::addColumn<bool>("ordered");
        QTest::addColumn<QString>("stage");
        QTest::addColumn<QString>("state");
        QTest::addColumn<QString>("text");
        QTest::newRow("no order") << false << QString() << "none"
                                  << "none was ordered";
        QTest::newRow("an order") << true << QString() << "ordered"
                                  << "ordered, waiting for the acknowledgement";
        QTest::newRow("identities go")
            << true << QString::fromLatin1(WipeKeys::StageSignOn) << "waits-for-sign-on"
            << "waits for the sign-on service";
        QTest::newRow("the rest goes") << true << QString::fromLatin1(WipeKeys::StageData) << "running"
                                       << "under way";
    }

    void theStateOfEachAccountIsTold()
    {
        QFETCH(bool, ordered);
        QFETCH(QString, stage);
        QFETCH(QString, state);
        QFETCH(QString, text);
        QVERIFY(write(WipeKeys::Requested, ordered));
        QVERIFY(write(WipeKeys::Stage, stage));
        ClientProcess json;
        QCOMPARE(json.run({ "--json", "wipe-status" }), int(ExitSuccess));
        const QJsonObject answer = json.json().object();
        const QJsonArray accounts = answer.value(QStringLiteral("accounts")).toArray();
        QCOMPARE(accounts.size(), 1);
        const QJsonObject account = accounts.first().toObject();
        QCOMPARE(account.value(QStringLiteral("wipe")).toString(), state);
        QCOMPARE(account.value(QStringLiteral("id")).toString(), QString::number(mScene->accountId()));
        QVERIFY(answer.value(QStringLiteral("identities")).toArray().isEmpty());
        ClientProcess words;
        QCOMPARE(words.run({ "wipe-status", QString::number(mScene->accountId()) }), int(ExitSuccess));
        QVERIFY2(words.output().contains(text.toUtf8()), words.output().constData());
        QVERIFY(!words.output().contains("sign-on service still"));
    }

    void whatWipedAccountsHaveLeftIsTold()
    {
        QVERIFY(WaitingIdentities().add({ 11, 7 }));
        ClientProcess json;
        QCOMPARE(json.run({ "--json", "wipe-status" }), int(ExitSuccess));
        QCOMPARE(
            json.json().object().value(QStringLiteral("identities")).toArray(), QJsonArray({ "7", "11" }));
        ClientProcess words;
        QCOMPARE(words.run({ "wipe-status" }), int(ExitSuccess));
        QVERIFY2(
            words.output().contains("wiped accounts have left there: 7, 11."), words.output().constData());
    }

    void withoutAnAccountTheIdentitiesAreTold()
    {
        QVERIFY(mAccounts->remove(mScene->accountId()));
        QVERIFY(WaitingIdentities().add({ 7 }));
        ClientProcess words;
        QCOMPARE(words.run({ "wipe-status" }), int(ExitSuccess));
        QVERIFY2(words.output().contains("There is no account."), words.output().constData());
        QVERIFY2(words.output().contains("7"), words.output().constData());
    }

    void aListThatCannotBeReadIsAnError()
    {
        QVERIFY(QDir().mkpath(WaitingIdentities::defaultFile()));
        ClientProcess words;
        QCOMPARE(words.run({ "wipe-status" }), int(ExitFailure));
        QVERIFY(QDir().rmdir(WaitingIdentities::defaultFile()));
    }
};

FENNEL_REGISTER_TEST(WipeCommandsTest)
#include "wipecommandstest.moc"
