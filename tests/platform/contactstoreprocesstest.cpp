// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/buildpaths.h"
#include "support/contactfixture.h"
#include "support/privatebus.h"
#include "support/testmain.h"

#include <QProcess>
#include <QSignalSpy>
#include <QtTest>

QTCONTACTS_USE_NAMESPACE

/** Two processes on one contact store. */
class ContactStoreProcessTest : public QObject
{
    Q_OBJECT

private:
    static QString nextLine(QProcess &process)
    {
        while (!process.canReadLine()) {
            if (!process.waitForReadyRead(60000))
                return QString();
        }
        return QString::fromUtf8(process.readLine()).trimmed();
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY(PrivateBus::ensure()); }

    void changesReachTheOtherProcess()
    {
        ContactFixture store;
        const QContactCollectionId collection = store.addCollection(QStringLiteral("c")).id();
        QProcess other;
        other.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        other.start(
            BuildPaths::binary(QStringLiteral("bin/test-contacts-process")), { collection.toString() });
        QCOMPARE(nextLine(other), QStringLiteral("ready"));

        store.addContact(collection, QStringLiteral("from here"));
        QCOMPARE(nextLine(other), QStringLiteral("heard from here"));

        QSignalSpy changed(store.engine(), &ContactFixture::Engine::collectionContactsChanged);
        const auto heardOfTheOther = [&] {
            return ContactFixture::names(store.contacts(collection)).contains(QStringLiteral("from there"));
        };
        other.write("from there\n");
        QTRY_VERIFY_WITH_TIMEOUT(!changed.isEmpty() && heardOfTheOther(), 60000);
        QCOMPARE(changed.last().first().value<QList<QContactCollectionId>>(),
            QList<QContactCollectionId> { collection });
        QCOMPARE(nextLine(other), QStringLiteral("heard from there"));
        QCOMPARE(store.changes(collection).counts(), QStringLiteral("2 0 0 0"));

        other.write("\n");
        QVERIFY(other.waitForFinished());
        QCOMPARE(other.exitCode(), 0);
    }
};

FENNEL_REGISTER_TEST(ContactStoreProcessTest)
#include "contactstoreprocesstest.moc"
