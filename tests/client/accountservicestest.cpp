// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/accountdirectory.h"
#include "client/commandscene.h"
#include "client/exitstatus.h"
#include "support/testmain.h"

#include <QJsonArray>

#include <unistd.h>

/** Which services a new account has, and what they say of its user. */
class AccountServicesTest : public QObject
{
    Q_OBJECT

private:
    /** Adds an account with a password from a pipe; the exit status. */
    static int add(const QStringList &options)
    {
        int ends[2];
        if (pipe(ends) != 0 || ::write(ends[1], "s3cret\n", 7) != 7)
            return -1;
        ::close(ends[1]);
        const int status = CommandScene::run(
            QStringList { QStringLiteral("account"), QStringLiteral("add"), QStringLiteral("new@example.com"),
                QStringLiteral("--password-fd"), QString::number(ends[0]) }
            + options);
        ::close(ends[0]);
        return status;
    }

    static QStringList services(const QJsonObject &account)
    {
        QStringList names;
        for (const QJsonValue &name : account.value(QStringLiteral("services")).toArray())
            names.append(name.toString());
        return names;
    }

private Q_SLOTS:
    void init() { QVERIFY(PrivateBus::ensure()); }

    void anAccountHasAllServicesButThoseLeftOut_data()
    {
        QTest::addColumn<QStringList>("without");
        QTest::addColumn<QStringList>("services");
        QTest::newRow("all") << QStringList() << QStringList { "mail", "calendar", "contacts" };
        QTest::newRow("no contacts") << QStringList { "--without", "contacts" }
                                     << QStringList { "mail", "calendar" };
        QTest::newRow("contacts alone")
            << QStringList { "--without", "mail", "--without", "calendar" } << QStringList { "contacts" };
    }

    void anAccountHasAllServicesButThoseLeftOut()
    {
        QFETCH(QStringList, without);
        QFETCH(QStringList, services);
        QCOMPARE(add(without), int(ExitSuccess));
        AccountDirectory directory;
        EasAccountId id = 0;
        QCOMPARE(directory.find(QStringLiteral("new@example.com"), &id), int(ExitSuccess));
        const QJsonObject account = directory.describe(id);
        QCOMPARE(AccountServicesTest::services(account), services);
        QVERIFY(account.value(QStringLiteral("enabled")).toBool());
        // Switching the account leaves its services as they are.
        QVERIFY(directory.setEnabled(id, false) && directory.setEnabled(id, true));
        QCOMPARE(AccountServicesTest::services(directory.describe(id)), services);
        // What is made on the device goes up.
        const AccountFactory records;
        QVERIFY(records.value(id, AccountFactory::contactsService(), QStringLiteral("sync_local")).toBool());
        QCOMPARE(
            CommandScene::run(QStringList { "account", "remove", QString::number(id) }), int(ExitSuccess));
    }

    void theMailServiceNamesTheSender_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QVariant>("fullName");
        QTest::newRow("a name") << QStringList { "--name", "Alice Doe" } << QVariant("Alice Doe");
        QTest::newRow("no name but the address") << QStringList() << QVariant();
    }

    void theMailServiceNamesTheSender()
    {
        QFETCH(QStringList, options);
        QFETCH(QVariant, fullName);
        QCOMPARE(add(options), int(ExitSuccess));
        const QList<EasAccountId> ids = AccountDirectory().accounts();
        QCOMPARE(ids.size(), 1);
        const AccountFactory records;
        const auto stored = [&](const char *key) {
            return records.value(ids.first(), AccountFactory::mailService(), QString::fromLatin1(key));
        };
        QCOMPARE(stored("emailaddress"), QVariant("new@example.com"));
        QCOMPARE(stored("fullName"), fullName);
        QCOMPARE(stored("type"), QVariant(8));
        QCOMPARE(CommandScene::run(QStringList { "account", "remove", QString::number(ids.first()) }),
            int(ExitSuccess));
    }

    void anAccountWithoutAServiceIsRefused()
    {
        QCOMPARE(add({ "--without", "tasks" }), int(ExitUsage));
        QCOMPARE(
            add({ "--without", "mail", "--without", "calendar", "--without", "contacts" }), int(ExitUsage));
        QVERIFY(AccountDirectory().accounts().isEmpty());
    }
};

FENNEL_REGISTER_TEST(AccountServicesTest)
#include "accountservicestest.moc"
