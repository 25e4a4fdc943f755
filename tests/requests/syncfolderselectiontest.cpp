// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/syncfolderselection.h"
#include "requests/uploadresultscene.h"
#include "support/fakeconfigurations.h"
#include "support/hiddentable.h"
#include "support/logcollector.h"
#include "support/testmain.h"

using namespace UploadResultScene;

namespace {

EasFolderItem folder(const char *serverId, EasFolderItem::FolderType type)
{
    EasFolderItem folder;
    folder.setServerId(QString::fromLatin1(serverId));
    folder.setLocalId(QStringLiteral("local-") + folder.serverId());
    folder.setType(type);
    return folder;
}

} // namespace

/** Which folders a sync is about. */
class SyncFolderSelectionTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<DatabaseFixture> mDatabase;
    std::unique_ptr<FakeAccount> mAccount;
    QSharedPointer<FakeEmailConfiguration> mMail;
    QSharedPointer<FakeCalendarConfiguration> mCalendar;
    QSharedPointer<FakeContactsConfiguration> mContacts;

    static constexpr int Mail = SyncFolderSelection::MailService;
    static constexpr int Calendar = SyncFolderSelection::CalendarService;
    static constexpr int Contacts = SyncFolderSelection::ContactsService;

    QString chosen(int service, const QStringList &localFolderIds = {})
    {
        SyncFolderSelection selection(*mAccount);
        const Lookup<QStringList> ids = selection.serverIds(service, localFolderIds);
        return ids ? ids->join(QLatin1Char(',')) : QStringLiteral("failed");
    }

private Q_SLOTS:
    void init()
    {
        mDatabase = std::make_unique<DatabaseFixture>(DatabaseFixture::Opened);
        mAccount = std::make_unique<FakeAccount>(Account);
        mAccount->email = mMail = QSharedPointer<FakeEmailConfiguration>::create(Account);
        mAccount->calendar = mCalendar = QSharedPointer<FakeCalendarConfiguration>::create(Account);
        mAccount->contacts = mContacts = QSharedPointer<FakeContactsConfiguration>::create(Account);
        QVERIFY(EasDatabase::instance()->addFolderItems(Account,
            { folder("c2", EasFolderItem::UserCreatedCalendarFolder),
                folder("c1", EasFolderItem::DefaultCalendarFolder),
                folder("second", EasFolderItem::DefaultCalendarFolder),
                folder("p1", EasFolderItem::DefaultContactsFolder),
                folder("p2", EasFolderItem::UserCreatedContactsFolder),
                folder("p3", EasFolderItem::UserCreatedContactsFolder) }));
    }

    void cleanup()
    {
        mAccount.reset();
        mDatabase.reset();
    }

    void aServiceMeansItsFirstFolderAndAllOfTheUser()
    {
        QCOMPARE(chosen(Calendar), QStringLiteral("c1,c2"));
        QCOMPARE(chosen(Contacts), QStringLiteral("p1,p2,p3"));
        QCOMPARE(chosen(Calendar | Contacts), QStringLiteral("c1,c2,p1,p2,p3"));
        QCOMPARE(chosen(0), QStringLiteral("c1,c2,p1,p2,p3"));
        QCOMPARE(chosen(Mail), QString());
    }

    void aDisabledServiceIsLeftOutAndNamedIfItWasMeant()
    {
        mMail->isEnabled = mCalendar->isEnabled = mContacts->isEnabled = false;
        const LogCollector log;
        QCOMPARE(chosen(0), QString());
        QCOMPARE(log.count(QStringLiteral("service is disabled")), 0);
        QCOMPARE(chosen(Mail | Calendar), QString());
        QVERIFY(log.contains(QStringLiteral("Email service is disabled")));
        QVERIFY(log.contains(QStringLiteral("Calendar service is disabled")));
        QCOMPARE(chosen(Contacts), QString());
        QVERIFY(log.contains(QStringLiteral("Contacts service is disabled")));
    }

    void missingSettingsStopTheList()
    {
        const LogCollector log;
        mAccount->contacts.reset();
        QCOMPARE(chosen(0), QStringLiteral("c1,c2"));
        QVERIFY(log.contains(QStringLiteral("contactsConfig is null")));
        mAccount->calendar.reset();
        QCOMPARE(chosen(0), QString());
        QVERIFY(log.contains(QStringLiteral("calendarConfig is null")));
        mAccount->email.reset();
        QCOMPARE(chosen(0), QString());
        QVERIFY(log.contains(QStringLiteral("emailConfig is null")));
    }

    void namedFoldersComeOnceAndInTheirOrder()
    {
        const LogCollector log;
        QCOMPARE(chosen(0,
                     { QStringLiteral("local-p1"), QStringLiteral("nobody"), QStringLiteral("local-c2"),
                         QStringLiteral("local-p1") }),
            QStringLiteral("p1,c2"));
        QVERIFY(log.contains(
            QtWarningMsg, { QStringLiteral("failed to find local folder id"), QStringLiteral("nobody") }));
        // Services win over folders.
        QCOMPARE(chosen(Calendar, { QStringLiteral("local-p1") }), QStringLiteral("c1,c2"));
    }

    void foldersThatCannotBeReadAreNoEmptyList_data()
    {
        QTest::addColumn<int>("service");
        QTest::addColumn<QStringList>("named");
        QTest::newRow("of all services") << 0 << QStringList();
        QTest::newRow("of one service") << int(Contacts) << QStringList();
        QTest::newRow("by name") << 0 << QStringList(QStringLiteral("local-p1"));
    }

    void foldersThatCannotBeReadAreNoEmptyList()
    {
        QFETCH(int, service);
        QFETCH(QStringList, named);
        const HiddenTable hidden("collections");
        const LogCollector log;
        QCOMPARE(chosen(service, named), QStringLiteral("failed"));
    }
};

FENNEL_REGISTER_TEST(SyncFolderSelectionTest)
#include "syncfolderselectiontest.moc"
