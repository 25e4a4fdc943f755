// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/devicelock.h"
#include "support/testmain.h"

#include <authdevlockclient.h>
#include <displaysettings.h>

#include <QtTest>

/** The stand-ins of the device's lock. */
class DeviceLockTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aDeviceHasNoLockAtFirst()
    {
        QVERIFY(!QFile::exists(DeviceLockFile::path()));
        QVERIFY(!AuthDevlockClient().enabled());
        QCOMPARE(DisplaySettings().devicelockTimeout(), 0);
    }

    void aLockIsReadFromTheFile()
    {
        {
            const DeviceLock lock(true, 300);
            QVERIFY(AuthDevlockClient().enabled());
            QCOMPARE(DisplaySettings().devicelockTimeout(), 300);
        }
        const DeviceLock lock(false, 60);
        QVERIFY(!AuthDevlockClient().enabled());
        QCOMPARE(DisplaySettings().devicelockTimeout(), 60);
    }

    void theFileMayBeWrittenByHand()
    {
        const DeviceLock lock(false, 0);
        QFile file(DeviceLockFile::path());
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write("[lock]\nenabled=true\ntimeout=600\n");
        file.close();
        QVERIFY(AuthDevlockClient().enabled());
        QCOMPARE(DisplaySettings().devicelockTimeout(), 600);
    }
};

FENNEL_REGISTER_TEST(DeviceLockTest)
#include "devicelocktest.moc"
