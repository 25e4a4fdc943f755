// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/testmain.h"

#include <QTemporaryDir>
#include <QtTest>
#include <deviceidentityinfo.h>

/** @short A machine has one identity, which stays, and no other machine has it. */
class DeviceIdentityTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theIdentifierIsThatOfTheMachineButHidesIt()
    {
        const QByteArray machine = "0123456789abcdef0123456789abcdef";
        const QString uid = DeviceIdentityInfo::uidOfMachine(machine);
        QCOMPARE(uid.size(), 32);
        QVERIFY(QRegularExpression(QStringLiteral("^[0-9a-f]*$")).match(uid).hasMatch());
        QCOMPARE(DeviceIdentityInfo::uidOfMachine(machine), uid);
        QByteArray other = machine;
        other[31] = 'e';
        QVERIFY(DeviceIdentityInfo::uidOfMachine(other) != uid);
        // Not even in part: the protocol has room for its first half alone.
        for (int i = 0; i + 8 <= machine.size(); ++i)
            QVERIFY(!uid.contains(QString::fromLatin1(machine.mid(i, 8))));
        QVERIFY(DeviceIdentityInfo::uidOfMachine(QByteArray()).isEmpty());
    }

    void aMachineWithoutAnIdKeepsARandomOne()
    {
        const QTemporaryDir folder;
        const QString file = folder.filePath(QStringLiteral("config/device-id"));
        const QString uid = DeviceIdentityInfo::uidInFile(file);
        QCOMPARE(uid.size(), 32);
        QCOMPARE(DeviceIdentityInfo::uidInFile(file), uid);
        QVERIFY(DeviceIdentityInfo::uidInFile(folder.filePath(QStringLiteral("other"))) != uid);
    }

    void aFileThatWasCutShortIsMadeAnew()
    {
        const QTemporaryDir folder;
        QFile file(folder.filePath(QStringLiteral("device-id")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("12");
        file.close();
        const QString uid = DeviceIdentityInfo::uidInFile(file.fileName());
        QCOMPARE(uid.size(), 32);
        QCOMPARE(DeviceIdentityInfo::uidInFile(file.fileName()), uid);
    }

    void withoutAFolderThereIsNone()
    {
        QVERIFY(DeviceIdentityInfo::uidInFile(QStringLiteral("/dev/null/device-id")).isEmpty());
    }

    void everyMachineHasAModelAndAnIdentifier()
    {
        qunsetenv("PLATFORM_DEVICE_MODEL");
        qunsetenv("PLATFORM_DEVICE_UID");
        const DeviceIdentityInfo info;
        QVERIFY(!info.deviceModel().isEmpty());
        QVERIFY2(info.deviceModel().size() <= 8, "leaves room for the identifier");
        QCOMPARE(info.deviceUid().size(), 32);
        QCOMPARE(DeviceIdentityInfo().deviceUid(), info.deviceUid());
    }

    void bothAreReadAtEachCall()
    {
        const DeviceIdentityInfo info;
        qputenv("PLATFORM_DEVICE_UID", "490154203237518");
        QCOMPARE(info.deviceUid(), QStringLiteral("490154203237518"));
        qputenv("PLATFORM_DEVICE_MODEL", "Phone");
        QCOMPARE(info.deviceModel(), QStringLiteral("Phone"));
        qputenv("PLATFORM_DEVICE_MODEL", "");
        QVERIFY(info.deviceModel().isEmpty());
    }
};

FENNEL_REGISTER_TEST(DeviceIdentityTest)
#include "deviceidentitytest.moc"
