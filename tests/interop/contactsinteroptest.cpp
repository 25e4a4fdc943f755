// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/easdatabase.h"
#include "interop/contactlisting.h"
#include "interop/interopbed.h"
#include "storages/contacts/contactreader.h"
#include "storages/contacts/contactstorecontext.h"
#include "support/carddavclient.h"
#include "support/contactfixture.h"
#include "support/realserver.h"
#include "support/testmain.h"
#include "support/testpictures.h"

#include <QtContacts/QContactAvatar>
#include <QtContacts/QContactEmailAddress>
#include <QtContacts/QContactName>
#include <QtContacts/QContactNote>
#include <QtContacts/QContactPhoneNumber>

#include <QFile>
#include <QtTest>

QTCONTACTS_USE_NAMESPACE

namespace {

QStringList unique(QStringList list)
{
    list.removeDuplicates();
    return list;
}

} // namespace

/** @short Contacts on the device are what CardDAV says of them on a real server, whichever side changed them.
 */
class ContactsInteropTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void contactsAreTheSame_data() { versions(); }
    void contactsAreTheSame();
    void changesOfTheDeviceArrive_data() { versions(); }
    void changesOfTheDeviceArrive();
    void changesOfTheServerArrive_data() { versions(); }
    void changesOfTheServerArrive();

private:
    using Listings = QMap<QString, QMap<QString, QString>>;

    static void versions();
    std::unique_ptr<InteropBed> bed(int contacts);
    static QString key(const QMap<QString, QString> &listing);
    Listings onServer();
    Listings onDevice();
    QList<QContact> deviceContacts();
    QContact deviceContact(const QString &email);
    /** The first differences, as people read them. */
    QString differences();
    bool furtherSyncChangesNothing(InteropBed &bed);

    RealServer mServer;
    ContactFixture mStore;
    std::unique_ptr<CardDavClient> mDav;
    EasAccountId mAccount = 0;
};

void ContactsInteropTest::versions()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("user");
    QTest::addColumn<int>("contacts");
    QTest::newRow("12.0") << "12.0"
                          << "bob" << 40;
    QTest::newRow("12.1") << "12.1"
                          << "carol" << 40;
    QTest::newRow("14.0") << "14.0"
                          << "dave" << 40;
    QTest::newRow("14.1") << "14.1"
                          << "alice" << 500;
}

void ContactsInteropTest::initTestCase()
{
    const QString obstacle = RealServer::obstacle();
    if (!obstacle.isEmpty())
        QSKIP(qPrintable(obstacle));
    QVERIFY(mServer.start());
}

std::unique_ptr<InteropBed> ContactsInteropTest::bed(int contacts)
{
    const QString user = *static_cast<QString *>(QTest::qData("user", qMetaTypeId<QString>()));
    const QString version = *static_cast<QString *>(QTest::qData("version", qMetaTypeId<QString>()));
    mDav =
        std::make_unique<CardDavClient>(RealServer::host(), mServer.httpPort(), user, RealServer::password());
    if (contacts > 0 && !mServer.seedContacts(user, contacts))
        return nullptr;
    InteropBed::Connection connection { version };
    connection.contacts = true;
    auto bed = std::make_unique<InteropBed>(mServer, user, connection);
    mAccount = bed->accountId();
    return bed->isReady() ? std::move(bed) : nullptr;
}

QString ContactsInteropTest::key(const QMap<QString, QString> &listing)
{
    return listing.value(QStringLiteral("emails")) + QLatin1Char(' ')
        + listing.value(QStringLiteral("mobile"));
}

ContactsInteropTest::Listings ContactsInteropTest::onServer()
{
    Listings listings;
    const auto cards = mDav->contacts();
    for (const VCard &card : cards.value_or(QMap<QString, VCard>())) {
        const auto listing = ContactListing::ofCard(card);
        listings.insert(key(listing), listing);
    }
    return listings;
}

QList<QContact> ContactsInteropTest::deviceContacts()
{
    const auto folders =
        *EasDatabase::instance()->folderItemsByFolderType(mAccount, EasFolderItem::DefaultContactsFolder);
    return mStore.contacts(QContactCollectionId::fromString(folders.value(0).localId()));
}

ContactsInteropTest::Listings ContactsInteropTest::onDevice()
{
    ContactStoreContext context;
    context.manager = &mStore.manager();
    context.accountId = mAccount;
    Listings listings;
    for (const QContact &contact : deviceContacts()) {
        const auto listing = ContactListing::ofItem(ContactReader(context).convertContact(contact));
        listings.insert(key(listing), listing);
    }
    return listings;
}

QContact ContactsInteropTest::deviceContact(const QString &email)
{
    for (const QContact &contact : deviceContacts()) {
        if (contact.detail<QContactEmailAddress>().emailAddress() == email)
            return contact;
    }
    return QContact();
}

QString ContactsInteropTest::differences()
{
    const Listings server = onServer();
    const Listings device = onDevice();
    QStringList lines;
    const QStringList keys = unique(server.keys() + device.keys());
    for (const QString &contact : keys) {
        const auto here = device.value(contact);
        const auto there = server.value(contact);
        const QStringList fields = unique(here.keys() + there.keys());
        for (const QString &field : fields) {
            if (here.value(field) != there.value(field))
                lines.append(
                    QStringLiteral("%1 %2: device \"%3\", server \"%4\"")
                        .arg(contact, field, here.value(field).left(80), there.value(field).left(80)));
        }
    }
    lines.sort();
    return lines.mid(0, 20).join(QLatin1Char('\n'));
}

bool ContactsInteropTest::furtherSyncChangesNothing(InteropBed &bed)
{
    const QMap<QString, QString> marks = mDav->marks();
    if (bed.sync() != 0) // The server's key moves once more after the last window.
        return false;
    const auto stored = InteropBed::storedData();
    mServer.forgetRequests();
    if (bed.sync() != 0 || stored != InteropBed::storedData() || marks != mDav->marks())
        return false;
    for (const QString &request : mServer.requests(QStringLiteral("Sync"))) {
        if (request.contains(QStringLiteral("<Commands")))
            return false;
    }
    return !marks.isEmpty();
}

void ContactsInteropTest::contactsAreTheSame()
{
    QFETCH(int, contacts);
    const auto bed = this->bed(contacts);
    QVERIFY(bed);
    QCOMPARE(bed->sync(), 0);
    QCOMPARE(deviceContacts().size(), contacts);
    QCOMPARE(onServer().size(), contacts);
    QCOMPARE(differences(), QString());
    int pictures = 0;
    for (const auto &listing : onDevice())
        pictures += listing.contains(QStringLiteral("picture")) ? 1 : 0;
    QCOMPARE(pictures, (contacts + 5) / 6);
    QVERIFY(furtherSyncChangesNothing(*bed));
}

void ContactsInteropTest::changesOfTheDeviceArrive()
{
    QFETCH(int, contacts);
    const auto bed = this->bed(0);
    QVERIFY(bed);
    QCOMPARE(bed->sync(), 0);
    QVERIFY(mDav->leaveThisSecond());

    QContact added = ContactFixture::named(QStringLiteral("Zoë"));
    QContactEmailAddress email;
    email.setEmailAddress(QStringLiteral("zoe@example.net"));
    QVERIFY(added.saveDetail(&email));
    QContactPhoneNumber phone;
    phone.setNumber(QStringLiteral("+31 6 1"));
    phone.setSubTypes({ QContactPhoneNumber::SubTypeMobile });
    QVERIFY(added.saveDetail(&phone));
    QFile picture(QDir::homePath() + QStringLiteral("/zoe.png"));
    QVERIFY(picture.open(QIODevice::WriteOnly));
    picture.write(TestPictures::png());
    picture.close();
    QContactAvatar avatar;
    avatar.setImageUrl(QUrl::fromLocalFile(picture.fileName()));
    QVERIFY(added.saveDetail(&avatar));
    QContact edited = deviceContact(QStringLiteral("contact0@example.net"));
    added.setCollectionId(edited.collectionId());
    QVERIFY(mStore.manager().saveContact(&added));

    QContactName name = edited.detail<QContactName>();
    name.setFirstName(QStringLiteral("Renamed: 会議"));
    QVERIFY(edited.saveDetail(&name));
    QContactNote note = edited.detail<QContactNote>();
    note.setNote(QStringLiteral("Another\nnote; with, marks"));
    QVERIFY(edited.saveDetail(&note));
    QVERIFY(mStore.manager().saveContact(&edited));
    QVERIFY(mStore.manager().removeContact(deviceContact(QStringLiteral("contact1@example.net")).id()));
    QCOMPARE(bed->sync(), 0);

    QCOMPARE(onServer().size(), contacts);
    QCOMPARE(differences(), QString());
    QVERIFY(mDav->leaveThisSecond());
    QVERIFY(furtherSyncChangesNothing(*bed));
    QCOMPARE(differences(), QString());
}

void ContactsInteropTest::changesOfTheServerArrive()
{
    QFETCH(int, contacts);
    const auto bed = this->bed(0);
    QVERIFY(bed);
    QCOMPARE(bed->sync(), 0);
    QVERIFY(mDav->leaveThisSecond());

    const QMap<QString, VCard> cards = mDav->contacts().value_or(QMap<QString, VCard>());
    QCOMPARE(cards.size(), contacts);
    const auto address = [&cards](int number) {
        for (auto it = cards.cbegin(); it != cards.cend(); ++it) {
            if (it.key().contains(QStringLiteral("seed-contact-%1-").arg(number)))
                return it.key();
        }
        return QString();
    };
    VCard changed = cards.value(address(6));
    changed.set(QStringLiteral("N"), QStringLiteral("Changed;There;;;"));
    changed.set(QStringLiteral("PHOTO"), QString::fromLatin1(TestPictures::png(7).toBase64()),
        { QStringLiteral("ENCODING=b"), QStringLiteral("PNG") });
    changed.set(QStringLiteral("CATEGORIES"), QStringLiteral("One,Two"));
    QVERIFY(mDav->put(address(6), changed));
    QVERIFY(mDav->remove(address(2)));
    VCard added = cards.value(address(3));
    added.set(QStringLiteral("UID"), QStringLiteral("added-there"));
    added.set(QStringLiteral("EMAIL"), QStringLiteral("added.there@example.net"));
    QVERIFY(mDav->put(QStringLiteral("added-there.vcf"), added));
    QCOMPARE(bed->sync(), 0);

    QCOMPARE(deviceContacts().size(), contacts);
    QCOMPARE(differences(), QString());
    QVERIFY(mDav->leaveThisSecond());
    QVERIFY(furtherSyncChangesNothing(*bed));
}

FENNEL_REGISTER_TEST(ContactsInteropTest)
#include "contactsinteroptest.moc"
