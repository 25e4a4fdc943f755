// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/account/easaccount.h"
#include "application/requestmanager.h"
#include "dbus/dbusinterfacethread.h"
#include "support/accountfactory.h"
#include "support/privatebus.h"
#include "support/syncscheduler.h"
#include "support/testmain.h"
#include "support/waiting.h"

#include <QSemaphore>
#include <QtTest>

namespace {

/** A service thread that a busy machine lets run late. */
class LateThread : public DBusInterfaceThread
{
    Q_OBJECT

public:
    QSemaphore mayRun;

protected:
    void run() override
    {
        mayRun.acquire();
        DBusInterfaceThread::run();
    }
};

class LateManager : public RequestManager
{
    Q_OBJECT

public:
    explicit LateManager(std::unique_ptr<DBusInterfaceThread> thread)
        : RequestManager(std::move(thread), nullptr)
    {
    }
};

} // namespace

/** What the scheduler answers at the start of the daemon arrives, however late the service thread is. */
class SchedulerStartTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theSchedulerIsAskedOnceItsSignalIsHeard()
    {
        QVERIFY(PrivateBus::ensure());
        AccountFactory accounts;
        const EasAccountId id = accounts.create();
        SyncScheduler scheduler;
        QVERIFY(scheduler.isRegistered());
        scheduler.setAnswer(true);

        auto late = std::make_unique<LateThread>();
        LateThread *const thread = late.get();
        auto *const manager = new LateManager(std::move(late));
        RequestManager::initializeInstance(manager);
        manager->init();
        // As long as it takes another process of the bus to answer.
        AccountFactory::identityExists(1);
        QCoreApplication::processEvents();
        QCOMPARE(scheduler.queries().size(), 0);
        thread->mayRun.release();
        QVERIFY(Waiting::until(
            [&] {
                const EasAccount *const account = manager->account(id);
                return account && account->alwaysOn();
            },
            60000));
        RequestManager::releaseInstance();
        QCoreApplication::exec(); // the manager ends its process
    }
};

FENNEL_REGISTER_TEST(SchedulerStartTest)
#include "schedulerstarttest.moc"
