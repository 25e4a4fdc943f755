// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/accountstorageimpl.h"

#include "application/mapping/easdatabase.h"
#include "application/storagesfactory.h"
#include "support/accountregistry.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QProcess>
#include <QtTest>

namespace {
const QByteArray busVariable = QByteArrayLiteral("DBUS_SESSION_BUS_ADDRESS");
const QByteArray noBus = QByteArrayLiteral("unix:path=/nonexistent/bus");
} // namespace

/**
 * A machine without a session bus: the account store cannot be read, and nothing may be taken for deleted.
 *
 * A process keeps the bus that it saw first, so the case runs in a process of its own.
 */
class AccountStorageWithoutBusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itStaysWithoutAccountsAndKeepsWhatItHas()
    {
        if (qgetenv(busVariable.constData()) == noBus)
            runWithoutBus();
        else
            runInOwnProcess();
    }

private:
    static void runInOwnProcess()
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QString::fromLatin1(busVariable), QString::fromLatin1(noBus));
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(
            QCoreApplication::applicationFilePath(), { QStringLiteral("AccountStorageWithoutBusTest") });
        QVERIFY(process.waitForFinished(60000));
        QVERIFY2(process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0,
            process.readAll().constData());
    }

    static void runWithoutBus()
    {
        EasDatabase::instance()->setFolderSyncKey(7, QStringLiteral("key"));
        const LogCollector log;
        AccountStorageImpl storage(StoragesFactory::storageCreator(), nullptr);
        AccountRegistry::fresh()->setStorage(&storage);
        QVERIFY(log.contains(QtCriticalMsg, { "The account store cannot be used" }));
        QTRY_VERIFY(storage.isReady());
        QCOMPARE(storage.enabledAccountsCount(), 0);
        QCOMPARE(storage.account(7), nullptr);
        QCOMPARE(*EasDatabase::instance()->folderSyncKey(7), QStringLiteral("key"));
    }
};

FENNEL_REGISTER_TEST(AccountStorageWithoutBusTest)
#include "accountstoragewithoutbustest.moc"
