// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/waitingidentities.h"

#include "support/logcollector.h"
#include "support/testmain.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

/** Which identities are still to be removed, across restarts. */
class WaitingIdentitiesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        mFolder.reset(new QTemporaryDir);
        mFile = mFolder->filePath(QStringLiteral("waiting"));
    }

    void withoutAFileThereAreNone()
    {
        const auto all = WaitingIdentities(mFile).all();
        QVERIFY(all);
        QVERIFY(all->isEmpty());
        QVERIFY(WaitingIdentities(mFile).remove(7));
        QVERIFY(!QFile::exists(mFile));
    }

    void whatIsAddedIsThereUntilItIsRemoved()
    {
        QVERIFY(WaitingIdentities(mFile).add({ 7, 4294967295U }));
        QVERIFY(WaitingIdentities(mFile).add({ 7, 8 }));
        QCOMPARE(*WaitingIdentities(mFile).all(), WaitingIdentities::Identities({ 7, 8, 4294967295U }));
        QVERIFY(WaitingIdentities(mFile).remove(7));
        QVERIFY(WaitingIdentities(mFile).remove(4294967295U));
        QCOMPARE(*WaitingIdentities(mFile).all(), WaitingIdentities::Identities({ 8 }));
        QVERIFY(WaitingIdentities(mFile).remove(8));
        QVERIFY2(!QFile::exists(mFile), "the last one takes the file with it");
    }

    void whatTheServiceHasShownIsRemembered()
    {
        const WaitingIdentities waiting(mFile);
        QVERIFY(!waiting.wasShown(7));
        QVERIFY(waiting.add({ 7, 8 }));
        QVERIFY(!waiting.wasShown(7));
        QVERIFY(waiting.noteShown(7));
        QVERIFY(waiting.noteShown(9));
        QVERIFY(waiting.wasShown(7));
        QVERIFY(!waiting.wasShown(8));
        QVERIFY(waiting.wasShown(9));
        QVERIFY(waiting.add({ 7 }));
        QVERIFY2(waiting.wasShown(7), "adding it again forgets nothing");
        QVERIFY(waiting.remove(7));
        QVERIFY(!waiting.wasShown(7));
        QCOMPARE(*waiting.all(), WaitingIdentities::Identities({ 8, 9 }));
    }

    void theFileIsTheUsersAlone()
    {
        QVERIFY(WaitingIdentities(mFile).add({ 7 }));
        const QFile::Permissions others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup
            | QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
        QVERIFY(!(QFile::permissions(mFile) & others));
    }

    void aFileThatCannotBeReadIsNotWrittenOver()
    {
        // A folder in its place can be read by nobody, the superuser included.
        QVERIFY(QDir().mkpath(mFile));
        LogCollector log;
        QVERIFY(!WaitingIdentities(mFile).all());
        QVERIFY(!WaitingIdentities(mFile).add({ 7 }));
        QVERIFY(!WaitingIdentities(mFile).remove(7));
        QVERIFY(log.contains(QtWarningMsg, { "cannot read", "waiting" }));
        QVERIFY(QFileInfo(mFile).isDir());
    }

    void whatCannotBeWrittenIsTold()
    {
        const WaitingIdentities nowhere(mFolder->filePath(QStringLiteral("none/waiting")));
        LogCollector log;
        QVERIFY(!nowhere.add({ 7 }));
        QVERIFY(log.contains(QtWarningMsg, { "cannot write", "waiting" }));
    }

private:
    QScopedPointer<QTemporaryDir> mFolder;
    QString mFile;
};

FENNEL_REGISTER_TEST(WaitingIdentitiesTest)
#include "waitingidentitiestest.moc"
