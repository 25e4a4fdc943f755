// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/override.h"
#include "support/synctestbed.h"
#include "support/testmain.h"

#include <QtTest>

/** @short A server that never stops talking is given up before it fills the memory. */
class EndlessReplyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aReplyWithoutAnEndIsGivenUp();
};

void EndlessReplyTest::aReplyWithoutAnEndIsGivenUp()
{
    SyncTestBed bed;
    QVERIFY(bed.isReady());
    bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("one")));
    bed.server().overrideNext(QStringLiteral("FolderSync"), Simulator::Override().endless());
    QCOMPARE(bed.sync(), -2);

    QCOMPARE(bed.sync(), 0);
    QCOMPARE(bed.deviceState(), bed.serverState());
}

FENNEL_REGISTER_TEST(EndlessReplyTest)
#include "endlessreplytest.moc"
