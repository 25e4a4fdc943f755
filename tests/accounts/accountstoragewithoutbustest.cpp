// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/accountstorageimpl.h"

#include "application/mapping/easdatabase.h"
#include "application/storagesfactory.h"
#include "support/logcollector.h"
#include "support/ownprocess.h"
#include "support/scriptedmanager.h"
#include "support/testmain.h"

#include <QtTest>

/**
 * A machine without a session bus: the account store cannot be read, and nothing may be taken for deleted.
 */
class AccountStorageWithoutBusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itStaysWithoutAccountsAndKeepsWhatItHas()
    {
        if (OwnProcess::bears(OwnProcess::WithoutBus))
            runWithoutBus();
        else
            QCOMPARE(
                OwnProcess::run(OwnProcess::WithoutBus, { QStringLiteral("AccountStorageWithoutBusTest") }),
                QString());
    }

private:
    static void runWithoutBus()
    {
        EasDatabase::instance()->setFolderSyncKey(7, QStringLiteral("key"));
        const LogCollector log;
        AccountStorageImpl storage(StoragesFactory::storageCreator(), nullptr);
        ScriptedManager::install()->present(&storage);
        QVERIFY(log.contains(QtCriticalMsg, { "The account store cannot be used" }));
        QTRY_VERIFY(storage.isReady());
        QCOMPARE(storage.enabledAccountsCount(), 0);
        QCOMPARE(storage.account(7), nullptr);
        QCOMPARE(*EasDatabase::instance()->folderSyncKey(7), QStringLiteral("key"));
    }
};

FENNEL_REGISTER_TEST(AccountStorageWithoutBusTest)
#include "accountstoragewithoutbustest.moc"
