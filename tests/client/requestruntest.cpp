// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/requestrun.h"
#include "client/cancellation.h"
#include "client/commandcontext.h"
#include "client/commandtable.h"
#include "client/exitstatus.h"
#include "client/stubdaemon.h"
#include "common/easdbusinterfaceproxy.h"
#include "support/privatebus.h"
#include "support/testmain.h"

#include <QtTest>

#include <csignal>

/** A command does not wait for a daemon that says nothing. */
class RequestRunTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QVERIFY(PrivateBus::ensure()); }

    void aRequestThatDoesNotExistIsNotCancelled()
    {
        StubDaemon daemon;
        QVERIFY(daemon.isServing());
        Cancellation cancellation(1, 99);
        cancellation.setPatience(0);
        QCOMPARE(cancellation.exec(), int(ExitNotFound));
        QTRY_COMPARE(daemon.calls(), QStringList(QStringLiteral("cancelRequest 1 99")));
    }

    void aDaemonThatDoesNotCancelIsLeft()
    {
        StubDaemon daemon;
        daemon.setStatus(StubDaemon::Deaf);
        CommandContext context(CommandTable::commands().first(), {}, {});
        RequestRun run(context);
        run.setPatience(0);
        run.add(1, [](EasDBusInterfaceProxy &proxy) { return proxy.sync(1); });
        connect(&daemon, &StubDaemon::called, this, [&daemon] {
            // Not at the call that cancels: a second one ends the process.
            if (daemon.calls().size() == 1)
                std::raise(SIGINT);
        });
        QCOMPARE(run.exec(), int(ExitCancelled));
        QVERIFY(run.first().error().contains(QStringLiteral("has not confirmed")));
    }
};

FENNEL_REGISTER_TEST(RequestRunTest)
#include "requestruntest.moc"
