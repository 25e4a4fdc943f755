// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/contactscene.h"
#include "support/testmain.h"
#include "support/testpictures.h"

#include <QtContacts/QContactAvatar>
#include <QtContacts/QContactEmailAddress>
#include <QtContacts/QContactName>
#include <QtContacts/QContactNote>

#include <QtTest>

QTCONTACTS_USE_NAMESPACE
using Simulator::Contact;
using Simulator::Override;

/** @short Contacts of a server and a device come into step and stay there, at every protocol version. */
class ContactSyncTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void contactsStandOnTheDevice_data() { versions(); }
    void contactsStandOnTheDevice();
    void changesOfTheServerArrive_data() { versions(); }
    void changesOfTheServerArrive();
    void changesOfTheDeviceArrive_data() { versions(); }
    void changesOfTheDeviceArrive();
    void anUnrelatedEditLosesNothing_data() { versions(); }
    void anUnrelatedEditLosesNothing();
    void aRemovedPictureGoesFromTheServer_data() { versions(); }
    void aRemovedPictureGoesFromTheServer();
    void aServerThatForgetsItsKeysDoublesNothing_data() { versions(); }
    void aServerThatForgetsItsKeysDoublesNothing();
    void manyNewContactsSurviveANewStart();
    void aFolderThatStartsAnewEndsAsTheServerHasIt_data() { versions(); }
    void aFolderThatStartsAnewEndsAsTheServerHasIt();
    void changesInTwoFoldersArrive_data() { versions(); }
    void changesInTwoFoldersArrive();
    void aLostCollectionIsFilledAnew();
    void moreThanOneWindowArrives();
    void foldersComeAndGoWithTheirContacts();
    void aContactThatIsNoneCostsItselfAlone();

private:
    static void versions();
    static QString edit(ContactScene &scene, const QString &name, const QString &newName);
    static void rename(ContactScene &scene, QContact contact, const QString &newName);
    static QStringList serverNames(ContactScene &scene, const QString &folder);
    static QStringList deviceNames(ContactScene &scene, const QString &folder);
};

void ContactSyncTest::versions()
{
    QTest::addColumn<QString>("version");
    for (const char *version : { "12.0", "12.1", "14.0", "14.1", "16.0", "16.1" })
        QTest::newRow(version) << QString::fromLatin1(version);
}

void ContactSyncTest::contactsStandOnTheDevice()
{
    QFETCH(QString, version);
    ContactScene scene(version);
    for (int i = 0; i < 3; ++i)
        scene.bed().place(ContactScene::full(i));
    scene.bed().place(Contact().setText(QStringLiteral("FirstName"), QStringLiteral("Bare")));
    QCOMPARE(scene.bed().sync(), 0);
    QCOMPARE(scene.differences(), QStringList());
    QCOMPARE(scene.deviceContacts().size(), 4);
    QCOMPARE(scene.pictures().size(), 3);
    QVERIFY(scene.furtherSyncIsSilent());
    QCOMPARE(scene.bed().server().failures(), QStringList());
}

void ContactSyncTest::changesOfTheServerArrive()
{
    QFETCH(QString, version);
    ContactScene scene(version);
    const QString changed = scene.bed().place(ContactScene::full(1));
    const QString removed = scene.bed().place(ContactScene::full(2));
    QCOMPARE(scene.bed().sync(), 0);
    const QContactId id = scene.deviceContact(QStringLiteral("First 1")).id();

    QVERIFY(scene.bed().editContact(changed, [](Contact &contact) {
        contact.setText(QStringLiteral("MobilePhoneNumber"), QStringLiteral("+1 555"));
        contact.setText(QStringLiteral("WebPage"), QString());
        contact.setPicture(TestPictures::png(99));
        contact.setCategories({ QStringLiteral("New") });
    }));
    QVERIFY(scene.bed().mailbox().remove(removed));
    scene.bed().place(ContactScene::full(3));
    QCOMPARE(scene.bed().sync(), 0);
    QCOMPARE(scene.differences(), QStringList());
    QCOMPARE(scene.deviceContacts().size(), 2);
    QCOMPARE(scene.deviceContact(QStringLiteral("First 1")).id(), id);
    QCOMPARE(scene.pictures().size(), 2);
    QVERIFY(scene.furtherSyncIsSilent());
}

QString ContactSyncTest::edit(ContactScene &scene, const QString &name, const QString &newName)
{
    QContact contact = scene.deviceContact(name);
    QContactName detail = contact.detail<QContactName>();
    detail.setFirstName(newName);
    contact.saveDetail(&detail);
    return scene.store().manager().saveContact(&contact) ? newName : QString();
}

void ContactSyncTest::changesOfTheDeviceArrive()
{
    QFETCH(QString, version);
    ContactScene scene(version);
    scene.bed().place(ContactScene::full(1));
    scene.bed().place(ContactScene::full(2));
    QCOMPARE(scene.bed().sync(), 0);

    QVERIFY(!edit(scene, QStringLiteral("First 1"), QStringLiteral("Edited")).isEmpty());
    QVERIFY(scene.store().manager().removeContact(scene.deviceContact(QStringLiteral("First 2")).id()));
    QContact added = scene.store().addContact(scene.collection(), QStringLiteral("Added"));
    QContactEmailAddress email;
    email.setEmailAddress(QStringLiteral("added@example.org"));
    QVERIFY(added.saveDetail(&email));
    QVERIFY(scene.store().manager().saveContact(&added));
    QCOMPARE(scene.bed().sync(), 0);

    QCOMPARE(scene.serverNames(), QStringList({ QStringLiteral("Added"), QStringLiteral("Edited") }));
    QCOMPARE(scene.differences(), QStringList());
    QVERIFY(scene.furtherSyncIsSilent());
    QCOMPARE(scene.bed().server().failures(), QStringList());

    // What was added here is mapped: it can be changed from both sides.
    QVERIFY(!edit(scene, QStringLiteral("Added"), QStringLiteral("Again")).isEmpty());
    QCOMPARE(scene.bed().sync(), 0);
    QCOMPARE(scene.serverNames(), QStringList({ QStringLiteral("Again"), QStringLiteral("Edited") }));
    QCOMPARE(scene.differences(), QStringList());
}

void ContactSyncTest::anUnrelatedEditLosesNothing()
{
    QFETCH(QString, version);
    ContactScene scene(version);
    Contact contact = ContactScene::full(1);
    const QString serverId = scene.bed().place(contact);
    QCOMPARE(scene.bed().sync(), 0);

    QContact local = scene.deviceContact(QStringLiteral("First 1"));
    QContactNote note = local.detail<QContactNote>();
    note.setNote(QStringLiteral("Another note"));
    QVERIFY(local.saveDetail(&note));
    QVERIFY(scene.store().manager().saveContact(&local));
    QCOMPARE(scene.bed().sync(), 0);

    contact.setNote(QStringLiteral("Another note"));
    QCOMPARE(ContactScene::lines(*scene.bed().serverContact(serverId)), ContactScene::lines(contact));
    QVERIFY(scene.furtherSyncIsSilent());

    local = scene.deviceContact(QStringLiteral("First 1"));
    note = local.detail<QContactNote>();
    QVERIFY(local.removeDetail(&note));
    QVERIFY(scene.store().manager().saveContact(&local));
    QCOMPARE(scene.bed().sync(), 0);
    contact.setNote(QString());
    QCOMPARE(ContactScene::lines(*scene.bed().serverContact(serverId)), ContactScene::lines(contact));
}

void ContactSyncTest::aRemovedPictureGoesFromTheServer()
{
    QFETCH(QString, version);
    ContactScene scene(version);
    Contact contact = ContactScene::full(1);
    QVERIFY(!contact.picture().isEmpty());
    const QString serverId = scene.bed().place(contact);
    QCOMPARE(scene.bed().sync(), 0);
    QCOMPARE(scene.pictures().size(), 1);

    QContact local = scene.deviceContact(QStringLiteral("First 1"));
    QContactAvatar avatar = local.detail<QContactAvatar>();
    QVERIFY(local.removeDetail(&avatar));
    QVERIFY(scene.store().manager().saveContact(&local));
    QCOMPARE(scene.bed().sync(), 0);
    contact.setPicture(QByteArray());
    QCOMPARE(ContactScene::lines(*scene.bed().serverContact(serverId)), ContactScene::lines(contact));
    QVERIFY(scene.pictures().isEmpty());
    QVERIFY(scene.furtherSyncIsSilent());
    QCOMPARE(scene.bed().server().failures(), QStringList());
}

void ContactSyncTest::aLostCollectionIsFilledAnew()
{
    ContactScene scene(QStringLiteral("16.1"));
    scene.bed().place(ContactScene::full(1));
    QCOMPARE(scene.bed().sync(), 0);
    QVERIFY(scene.store().manager().removeCollection(scene.collection()));
    QCOMPARE(scene.bed().sync(), 0);
    QCOMPARE(scene.deviceContacts().size(), 1);
    QCOMPARE(scene.differences(), QStringList());
    QVERIFY(scene.furtherSyncIsSilent());
}

void ContactSyncTest::aServerThatForgetsItsKeysDoublesNothing()
{
    QFETCH(QString, version);
    ContactScene scene(version);
    scene.bed().place(ContactScene::full(1));
    scene.bed().place(ContactScene::full(2));
    QCOMPARE(scene.bed().sync(), 0);
    QVERIFY(!edit(scene, QStringLiteral("First 1"), QStringLiteral("Edited")).isEmpty());
    QCOMPARE(scene.bed().sync(), 0);

    scene.bed().server().forgetDevices();
    QCOMPARE(scene.bed().sync(), 0);
    QCOMPARE(scene.differences(), QStringList());
    QCOMPARE(scene.deviceContacts().size(), 2);
    QCOMPARE(scene.serverNames(), QStringList({ QStringLiteral("Edited"), QStringLiteral("First 2") }));
    QCOMPARE(scene.pictures().size(), 2);
    QVERIFY(scene.furtherSyncIsSilent());
}

void ContactSyncTest::rename(ContactScene &scene, QContact contact, const QString &newName)
{
    QContactName detail = contact.detail<QContactName>();
    detail.setFirstName(newName);
    contact.saveDetail(&detail);
    QVERIFY(scene.store().manager().saveContact(&contact));
}

QStringList ContactSyncTest::serverNames(ContactScene &scene, const QString &folder)
{
    QStringList names;
    const auto items = scene.bed().mailbox().items(folder);
    for (const Simulator::ItemEntry &entry : items)
        names.append(scene.bed().serverContact(entry.serverId)->text(QStringLiteral("FirstName")));
    names.sort();
    return names;
}

QStringList ContactSyncTest::deviceNames(ContactScene &scene, const QString &folder)
{
    return ContactFixture::names(scene.store().contacts(scene.collection(folder)));
}

void ContactSyncTest::manyNewContactsSurviveANewStart()
{
    // More than one Sync carries: the keys are refused before the first part, and between two of them.
    constexpr int Many = 130;
    ContactScene scene(QStringLiteral("14.1"));
    scene.bed().place(ContactScene::full(1));
    QCOMPARE(scene.bed().sync(), 0);
    QStringList wanted { QStringLiteral("First 1") };
    const auto add = [&](const char *kind) {
        for (int number = 0; number < Many; ++number) {
            const QString name = QStringLiteral("%1 %2").arg(QLatin1String(kind)).arg(number);
            scene.store().addContact(scene.collection(), name);
            wanted.append(name);
        }
    };
    add("Early");
    scene.bed().server().overrideNext(QStringLiteral("Sync"), Override::topStatus(3));
    QCOMPARE(scene.bed().sync(), 0);
    add("Late");
    scene.bed().server().overrideNext(QStringLiteral("Sync"), Override());
    scene.bed().server().overrideNext(QStringLiteral("Sync"), Override::topStatus(3));
    QCOMPARE(scene.bed().sync(), 0);

    QStringList names = scene.serverNames();
    names.sort();
    wanted.sort();
    QCOMPARE(names, wanted);
    QCOMPARE(scene.deviceContacts().size(), wanted.size());
    QVERIFY(scene.furtherSyncIsSilent());
}

void ContactSyncTest::aFolderThatStartsAnewEndsAsTheServerHasIt()
{
    QFETCH(QString, version);
    ContactScene scene(version);
    scene.bed().server().setWindowSize(2);
    for (int i = 1; i <= 4; ++i)
        scene.bed().place(ContactScene::full(i));
    QCOMPARE(scene.bed().sync(), 0);
    scene.store().addContact(scene.collection(), QStringLiteral("Made here"));
    QCOMPARE(scene.bed().sync(), 0);
    QCOMPARE(scene.serverNames().size(), 5);

    const auto removeThere = [&scene](const QString &name) {
        for (const Simulator::ItemEntry &entry : scene.bed().mailbox().items(scene.bed().contactsId())) {
            if (scene.bed().serverContact(entry.serverId)->text(QStringLiteral("FirstName")) == name)
                scene.bed().mailbox().remove(entry.serverId);
        }
    };
    removeThere(QStringLiteral("First 1"));
    removeThere(QStringLiteral("First 2"));
    rename(scene, scene.deviceContact(QStringLiteral("First 2")), QStringLiteral("Kept"));
    QVERIFY(scene.store().manager().removeContact(scene.deviceContact(QStringLiteral("First 3")).id()));
    scene.store().addContact(scene.collection(), QStringLiteral("Not sent yet"));
    scene.bed().server().overrideNext(QStringLiteral("Sync"), Simulator::Override::topStatus(3));
    QCOMPARE(scene.bed().sync(), 0);
    QCOMPARE(scene.bed().sync(), 0);

    const QStringList wanted { QStringLiteral("First 4"), QStringLiteral("Kept"), QStringLiteral("Made here"),
        QStringLiteral("Not sent yet") };
    QCOMPARE(scene.serverNames(), wanted);
    QCOMPARE(deviceNames(scene, scene.bed().contactsId()), wanted);
    QCOMPARE(scene.differences(), QStringList());
    QVERIFY(scene.furtherSyncIsSilent());
}

void ContactSyncTest::changesInTwoFoldersArrive()
{
    QFETCH(QString, version);
    ContactScene scene(version);
    const QString other = scene.bed().mailbox().addFolder(
        QStringLiteral("Colleagues"), Simulator::UserContactsFolder, scene.bed().contactsId());
    const QStringList folders { scene.bed().contactsId(), other };
    for (const QString &folder : folders) {
        for (int i = 1; i <= 3; ++i)
            scene.bed().mailbox().addItem(folder, Simulator::ContactItem::make(ContactScene::full(i)));
    }
    QCOMPARE(scene.bed().sync(), 0);

    for (const QString &folder : folders) {
        const QList<QContact> contacts = scene.store().contacts(scene.collection(folder));
        for (const QContact &contact : contacts) {
            const QString name = ContactFixture::name(contact);
            if (name == QLatin1String("First 1"))
                rename(scene, contact, QLatin1String("Edited in ") + folder);
            else if (name == QLatin1String("First 2"))
                QVERIFY(scene.store().manager().removeContact(contact.id()));
        }
        scene.store().addContact(scene.collection(folder), QLatin1String("Added in ") + folder);
    }
    scene.bed().server().clearRequests();
    QCOMPARE(scene.bed().sync(), 0);
    for (const QString &folder : folders) {
        const QStringList wanted { QLatin1String("Added in ") + folder, QLatin1String("Edited in ") + folder,
            QStringLiteral("First 3") };
        QCOMPARE(serverNames(scene, folder), wanted);
        QCOMPARE(deviceNames(scene, folder), wanted);
    }
    QVERIFY(scene.furtherSyncIsSilent());
    QCOMPARE(scene.bed().server().failures(), QStringList());
}

void ContactSyncTest::moreThanOneWindowArrives()
{
    ContactScene scene(QStringLiteral("14.1"));
    scene.bed().server().setWindowSize(3);
    for (int i = 0; i < 10; ++i)
        scene.bed().place(ContactScene::full(i));
    QCOMPARE(scene.bed().sync(), 0);
    QCOMPARE(scene.differences(), QStringList());
    QCOMPARE(scene.deviceContacts().size(), 10);
}

void ContactSyncTest::foldersComeAndGoWithTheirContacts()
{
    ContactScene scene(QStringLiteral("14.1"));
    const QString folder = scene.bed().mailbox().addFolder(
        QStringLiteral("Colleagues"), Simulator::UserContactsFolder, scene.bed().contactsId());
    scene.bed().mailbox().addItem(folder, Simulator::ContactItem::make(ContactScene::full(7)));
    scene.bed().place(ContactScene::full(1));
    QCOMPARE(scene.bed().sync(), 0);
    QCOMPARE(ContactFixture::names(scene.store().contacts(scene.collection(folder))),
        QStringList(QStringLiteral("First 7")));
    QCOMPARE(scene.pictures().size(), 2);

    QVERIFY(scene.bed().mailbox().removeFolder(folder));
    QCOMPARE(scene.bed().sync(), 0);
    QCOMPARE(scene.deviceContacts().size(), 1);
    QCOMPARE(scene.pictures().size(), 1);
    QCOMPARE(scene.differences(), QStringList());
}

void ContactSyncTest::aContactThatIsNoneCostsItselfAlone()
{
    ContactScene scene(QStringLiteral("14.1"));
    Contact hostile = ContactScene::full(1);
    hostile.setText(QStringLiteral("Birthday"), QStringLiteral("the day before"));
    hostile.setText(QStringLiteral("FirstName"), QString(1024 * 1024, QLatin1Char('x')));
    hostile.setText(QStringLiteral("WebPage"), QStringLiteral("../../../etc/passwd"));
    hostile.setPicture("this is no picture");
    hostile.setNote(QString(10 * 1024 * 1024, QLatin1Char('n')));
    scene.bed().place(hostile);
    scene.bed().place(ContactScene::full(2));
    scene.bed().place(ContactScene::full(3).setPicture(TestPictures::hollowPng(300000, 300000)));
    QCOMPARE(scene.bed().sync(), 0);
    QCOMPARE(scene.deviceContacts().size(), 3);
    QVERIFY(!scene.deviceContact(QStringLiteral("First 2")).id().isNull());
    const QContact taken = scene.deviceContact(QString(1024 * 1024, QLatin1Char('x')));
    QVERIFY(taken.details<QContactAvatar>().isEmpty());
    QCOMPARE(taken.detail<QContactNote>().note().size(), 10 * 1024 * 1024);
    QVERIFY(scene.furtherSyncIsSilent());
}

FENNEL_REGISTER_TEST(ContactSyncTest)
#include "contactsynctest.moc"
