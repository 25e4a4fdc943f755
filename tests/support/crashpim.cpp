// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/crashpim.h"

#include "application/base/clock.h"
#include "simulator/contactitem.h"
#include "simulator/eventitem.h"
#include "simulator/mailbox.h"
#include "storages/calendar/calendarattachmentservice.h"
#include "storages/contacts/contactstoremanager.h"
#include "storages/uploadbudget.h"
#include "support/contactfixture.h"
#include "support/devicecalendar.h"
#include "support/storecheck.h"
#include "support/testpictures.h"

#include <QDir>
#include <QFile>

#include <attachmentinfo.h>
#include <sqlitestorage.h>

#include <QtContacts/QContactAvatar>
#include <QtContacts/QContactName>

QTCONTACTS_USE_NAMESPACE
using Simulator::Contact;
using ServerEvent = Simulator::Event;
using DeviceEvent = KCalendarCore::Event;

namespace {

const QByteArray zoneId = QByteArrayLiteral("Europe/Berlin");
// The stores tell times by whole seconds; an edit has to be later than the sync before it.
constexpr int EditDelay = 3;

QString text(const char *name)
{
    return QString::fromLatin1(name);
}

/** In a month that no filter leaves out, and across the change to summer time. */
QDateTime wall(int day, int hour)
{
    return QDateTime(QDate(2036, 3, 10).addDays(day), QTime(hour, 0));
}

ServerEvent timed(const char *subject, int day, int hour)
{
    return ServerEvent::timed(text(subject), zoneId, wall(day, hour), 45);
}

ServerEvent weekly(const char *subject, int day, int hour)
{
    ServerEvent event = timed(subject, day, hour);
    event.rule = Simulator::EventRule();
    event.rule->type = Simulator::EventRule::Weekly;
    event.rule->dayOfWeek = Simulator::EventRule::Monday;
    event.rule->firstDayOfWeek = 1;
    event.rule->occurrences = 8;
    event.editOccurrence(wall(day + 7, 0).date(), [](Simulator::EventDetails &details) {
        details.start = details.start.addSecs(3600);
        details.end = details.end.addSecs(3600);
    });
    event.deleteOccurrence(wall(day + 14, 0).date());
    return event;
}

Contact contact(const char *firstName)
{
    return Contact()
        .setText(QStringLiteral("FirstName"), text(firstName))
        .setText(QStringLiteral("LastName"), QStringLiteral("Known"));
}

template <class ItemType, class Name>
QString find(const Simulator::Mailbox &mailbox, int folderType, const QString &wanted, Name name)
{
    const auto items = mailbox.items(mailbox.folderOfType(folderType).id);
    for (const Simulator::ItemEntry &entry : items) {
        const auto item = std::dynamic_pointer_cast<const ItemType>(entry.item);
        if (item && name(item->value()) == wanted)
            return entry.serverId;
    }
    return QString();
}

/** What both sides have to have: the edits of each since they were equal. */
PimListing::Listing merged(
    const PimListing::Listing &before, const PimListing::Listing &server, const PimListing::Listing &device)
{
    PimListing::Listing result;
    const QStringList names = server.keys() + device.keys();
    for (const QString &name : names) {
        const bool hasServerChanged =
            server.contains(name) != before.contains(name) || server.value(name) != before.value(name);
        const PimListing::Listing &source = hasServerChanged ? server : device;
        if (source.contains(name))
            result.insert(name, source.value(name));
    }
    return result;
}

QStringList lines(const PimListing::Listing &listing)
{
    QStringList result;
    for (auto entry = listing.cbegin(); entry != listing.cend(); ++entry)
        result.append(entry.key() + QStringLiteral(": ") + entry.value());
    return result;
}

QString calendarFile()
{
    return DeviceCalendar().storage.staticCast<mKCal::SqliteStorage>()->databaseName();
}

QContact deviceContact(QContactManager &manager, EasAccountId accountId, const char *firstName)
{
    const QList<QContact> contacts = PimListing::contactsOf(manager, accountId);
    for (const QContact &contact : contacts) {
        if (ContactFixture::name(contact) == text(firstName))
            return contact;
    }
    return QContact();
}

QContactCollectionId defaultCollection(QContactManager &manager, EasAccountId accountId)
{
    const QList<QContactCollectionId> ids = PimListing::collectionsOf(manager, accountId);
    for (const QContactCollectionId &id : ids) {
        if (manager.collection(id).metaData(QContactCollection::KeyName).toString() != QLatin1String("Old"))
            return id;
    }
    return {};
}

void setPicture(QContact &contact, const char *fileName, int red)
{
    QFile file(QDir::homePath() + QLatin1Char('/') + text(fileName));
    const QByteArray picture = TestPictures::png(red);
    if (!file.open(QIODevice::WriteOnly) || file.write(picture) != picture.size())
        qFatal("no picture");
    QContactAvatar avatar = contact.detail<QContactAvatar>();
    avatar.setImageUrl(QUrl::fromLocalFile(file.fileName()));
    contact.saveDetail(&avatar);
}

} // namespace

QStringList CrashPim::durableFiles()
{
    return { QStringLiteral("fennel_eas.db*"), QStringLiteral("contacts.db*"), QStringLiteral("db"),
        QStringLiteral("db-wal"), QStringLiteral("db-shm"), QStringLiteral("avatar-*") };
}

void CrashPim::clearDevice() const
{
    // The fixture empties the store.
    ContactFixture();
    QDir(QDir::homePath() + QStringLiteral("/.avatars")).removeRecursively();
    const DeviceCalendar device;
    const auto notebooks = device.storage->notebooks();
    for (const auto &notebook : notebooks) {
        if (!notebook->account().isEmpty())
            device.storage->deleteNotebook(notebook);
    }
}

void CrashPim::fillMailbox()
{
    fillCalendar();
    fillContacts();
    mWantedEvents = PimListing::serverEvents(mailbox());
    mWantedContacts = PimListing::serverContacts(mailbox());
}

void CrashPim::fillCalendar()
{
    ServerEvent days = ServerEvent::wholeDay(QStringLiteral("days"), wall(3, 0).date(), 2);
    days.zone = Simulator::EventZone::named(zoneId, days.start);
    ServerEvent withFile = timed("file", 1, 9);
    withFile.attach(QStringLiteral("figures.txt"), "1 2 3");
    const QVector<ServerEvent> events { timed("single", 0, 9), timed("gone there", 1, 11),
        timed("gone here", 2, 11), timed("place", 4, 15), withFile, days, weekly("weekly", 0, 14),
        weekly("series", 0, 17) };
    const QString folder = mailbox().folderOfType(Simulator::CalendarFolder).id;
    for (const ServerEvent &event : events)
        mailbox().addItem(folder, Simulator::EventItem::make(event));
    mOldCalendar = mailbox().addFolder(QStringLiteral("Old"), Simulator::UserCalendarFolder);
    ServerEvent old = weekly("old", 0, 8);
    old.attach(QStringLiteral("minutes.txt"), "all agreed");
    mailbox().addItem(mOldCalendar, Simulator::EventItem::make(old));
}

void CrashPim::fillContacts()
{
    const QVector<Contact> contacts { contact("Ada").setPicture(TestPictures::png(10)), contact("Bob"),
        contact("Cyd").setPicture(TestPictures::png(20)), contact("Dan"), contact("Eve") };
    const QString folder = mailbox().folderOfType(Simulator::ContactsFolder).id;
    for (const Contact &contact : contacts)
        mailbox().addItem(folder, Simulator::ContactItem::make(contact));
    mOldContacts = mailbox().addFolder(QStringLiteral("Old"), Simulator::UserContactsFolder);
    mailbox().addItem(
        mOldContacts, Simulator::ContactItem::make(contact("Olga").setPicture(TestPictures::png(70))));
}

void CrashPim::changeBothSides()
{
    const Listing events = PimListing::serverEvents(mailbox());
    const Listing contacts = PimListing::serverContacts(mailbox());
    changeServerCalendar();
    changeServerContacts();
    changeDeviceCalendar();
    changeDeviceContacts();
    mServerEvents = PimListing::serverEvents(mailbox());
    mServerContacts = PimListing::serverContacts(mailbox());
    mWantedEvents = merged(events, mServerEvents, PimListing::deviceEvents(accountId()));
    mWantedContacts = merged(contacts, mServerContacts, PimListing::deviceContacts(accountId()));
}

void CrashPim::addManyContacts()
{
    const std::unique_ptr<QContactManager> manager(ContactStoreManager::create(nullptr));
    QList<QContact> contacts;
    for (int number = 0; number <= UploadBudget::MostChanges; ++number) {
        QContact contact = ContactFixture::named(QStringLiteral("Many %1").arg(number));
        contact.setCollectionId(defaultCollection(*manager, accountId()));
        contacts.append(contact);
    }
    if (!manager->saveContacts(&contacts))
        qFatal("no contacts");
    changeBothSides();
}

void CrashPim::wantServersEdits(Besides besides)
{
    const QString newEvent = QStringLiteral("new here");
    const QString newContact = QStringLiteral("Gus");
    if (besides == AndWhatIsNewHere) {
        mServerEvents.insert(newEvent, mWantedEvents.value(newEvent));
        mServerContacts.insert(newContact, mWantedContacts.value(newContact));
        // Contacts are not wiped, and a deletion waits in their store until the server has heard of it.
        mServerContacts.remove(QStringLiteral("Dan"));
    }
    mWantedEvents = mServerEvents;
    mWantedContacts = mServerContacts;
}

QString CrashPim::serverEvent(const QString &subject) const
{
    return find<Simulator::EventItem>(mailbox(), Simulator::CalendarFolder, subject,
        [](const ServerEvent &event) { return event.subject; });
}

QString CrashPim::serverContact(const QString &firstName) const
{
    return find<Simulator::ContactItem>(mailbox(), Simulator::ContactsFolder, firstName,
        [](const Contact &contact) { return contact.text(QStringLiteral("FirstName")); });
}

void CrashPim::changeServerCalendar()
{
    mailbox().edit<Simulator::EventItem>(serverEvent(QStringLiteral("single")),
        [](ServerEvent &event) { event.location.name = QStringLiteral("Hall"); });
    mailbox().edit<Simulator::EventItem>(serverEvent(QStringLiteral("series")),
        [](ServerEvent &event) { event.deleteOccurrence(wall(21, 0).date()); });
    mailbox().remove(serverEvent(QStringLiteral("gone there")));
    mailbox().removeFolder(mOldCalendar);
    ServerEvent fresh = weekly("new there", 0, 10);
    fresh.attach(QStringLiteral("agenda.txt"), "one, two");
    mailbox().addItem(
        mailbox().folderOfType(Simulator::CalendarFolder).id, Simulator::EventItem::make(fresh));
}

void CrashPim::changeServerContacts()
{
    mailbox().edit<Simulator::ContactItem>(serverContact(QStringLiteral("Ada")),
        [](Contact &contact) { contact.setPicture(TestPictures::png(30)); });
    mailbox().remove(serverContact(QStringLiteral("Bob")));
    mailbox().removeFolder(mOldContacts);
    mailbox().addItem(mailbox().folderOfType(Simulator::ContactsFolder).id,
        Simulator::ContactItem::make(contact("Flo").setPicture(TestPictures::png(40))));
}

void CrashPim::changeDeviceCalendar() const
{
    const QDateTime now = Clock::instance().currentDateTimeUtc().addSecs(EditDelay);
    DeviceCalendar device;
    // By name, before the one that the server removes.
    const QString notebook = device.notebooksOf(accountId()).value(0);

    const DeviceEvent::Ptr fresh(new DeviceEvent);
    fresh->setSummary(QStringLiteral("new here"));
    fresh->setDtStart(QDateTime(wall(5, 12).date(), QTime(12, 0), QTimeZone(zoneId)));
    fresh->setDtEnd(fresh->dtStart().addSecs(3600));
    device.calendar->addEvent(fresh, notebook);
    fresh->setCreated(now);
    fresh->setLastModified(now);

    const DeviceEvent::Ptr place = device.withSummary(QStringLiteral("place"));
    place->setLocation(QStringLiteral("Yard"));
    place->setLastModified(now);

    const DeviceEvent::Ptr series = device.withSummary(QStringLiteral("weekly"));
    const DeviceEvent::Ptr occurrence = device.occurrence(series, wall(28, 0).date());
    occurrence->setLocation(QStringLiteral("Roof"));
    device.calendar->addEvent(occurrence, notebook);
    occurrence->setCreated(now);
    occurrence->setLastModified(now);
    series->setLastModified(now);
    device.storage->save();
    device.remove(device.withSummary(QStringLiteral("gone here")), now);
}

void CrashPim::changeDeviceContacts() const
{
    const std::unique_ptr<QContactManager> manager(ContactStoreManager::create(nullptr));
    QContact fresh = ContactFixture::named(QStringLiteral("Gus"));
    fresh.setCollectionId(defaultCollection(*manager, accountId()));
    setPicture(fresh, "gus.png", 50);
    manager->saveContact(&fresh);

    QContact edited = deviceContact(*manager, accountId(), "Cyd");
    QContactName name = edited.detail<QContactName>();
    name.setLastName(QStringLiteral("Changed"));
    edited.saveDetail(&name);
    setPicture(edited, "cyd.png", 60);
    manager->saveContact(&edited);

    manager->removeContact(deviceContact(*manager, accountId(), "Dan").id());
}

QString CrashPim::wrongState() const
{
    using StoreCheck::difference;
    return difference(
               "events of the device", lines(PimListing::deviceEvents(accountId())), lines(mWantedEvents))
        + difference("events of the server", lines(PimListing::serverEvents(mailbox())), lines(mWantedEvents))
        + difference(
            "contacts of the device", lines(PimListing::deviceContacts(accountId())), lines(mWantedContacts))
        + difference(
            "contacts of the server", lines(PimListing::serverContacts(mailbox())), lines(mWantedContacts));
}

QString CrashPim::wrongStores() const
{
    QStringList events;
    const DeviceEvent::List series = DeviceCalendar().series(accountId());
    for (const DeviceEvent::Ptr &event : series)
        events.append(event->uid());
    QStringList contacts;
    const std::unique_ptr<QContactManager> manager(ContactStoreManager::create(nullptr));
    const QList<QContact> present = PimListing::contactsOf(*manager, accountId());
    for (const QContact &contact : present)
        contacts.append(contact.id().toString());
    QStringList everywhere;
    const QList<QContactId> ids = manager->contactIds();
    for (const QContactId &id : ids)
        everywhere.append(id.toString());
    for (QStringList *list : { &contacts, &everywhere })
        list->sort();
    return StoreCheck::difference("contacts of all collections", everywhere, contacts)
        + wrongRows("calendar", itemsOf(Simulator::CalendarFolder, Simulator::UserCalendarFolder), events)
        + wrongRows("contacts", itemsOf(Simulator::ContactsFolder, Simulator::UserContactsFolder), contacts)
        + wrongAttachments()
        + StoreCheck::difference("pictures of no contact", PimListing::orphanPictures(accountId()), {})
        + StoreCheck::damage(calendarFile())
        + StoreCheck::damage(qEnvironmentVariable("CONTACTS_DATA") + QStringLiteral("/contacts.db"));
}

QVector<Simulator::ItemEntry> CrashPim::itemsOf(int folderType, int userFolderType) const
{
    QVector<Simulator::ItemEntry> items;
    const auto folders = mailbox().folders();
    for (const Simulator::MailFolder &folder : folders) {
        if (folder.type == folderType || folder.type == userFolderType)
            items += mailbox().items(folder.id);
    }
    return items;
}

QString CrashPim::wrongRows(
    const char *table, const QVector<Simulator::ItemEntry> &items, QStringList localIds) const
{
    const auto rows = [&](const char *column) {
        return StoreCheck::ask(StoreCheck::mappingFile(),
            QStringLiteral("SELECT %1 FROM %2 WHERE account_id = %3")
                .arg(text(column), text(table))
                .arg(accountId()));
    };
    QStringList serverIds;
    for (const Simulator::ItemEntry &entry : items)
        serverIds.append(entry.serverId);
    serverIds.sort();
    localIds.sort();
    return StoreCheck::difference(table, rows("local_id"), localIds)
        + StoreCheck::difference(table, rows("server_id"), serverIds);
}

QString CrashPim::wrongAttachments() const
{
    // Before 16.0 devices do not see them.
    QStringList ofServer;
    const bool hasAttachments = version() >= QLatin1String("16.0");
    const auto items = itemsOf(Simulator::CalendarFolder, Simulator::UserCalendarFolder);
    for (const Simulator::ItemEntry &entry : items) {
        const auto item = std::dynamic_pointer_cast<const Simulator::EventItem>(entry.item);
        for (const Simulator::EventAttachment &attachment :
            hasAttachments ? item->value().attachments : QVector<Simulator::EventAttachment>())
            ofServer.append(item->value().subject + QStringLiteral(": ") + attachment.name);
    }
    QStringList ofDevice;
    QStringList references;
    const DeviceCalendar device;
    const DeviceEvent::List series = device.series(accountId());
    for (const DeviceEvent::Ptr &event : series) {
        const KCalendarCore::Attachment::List attachments = event->attachments();
        for (const KCalendarCore::Attachment &attachment : attachments) {
            const QString reference = CalendarAttachmentService::fileReference(attachment.uri());
            ofDevice.append(
                event->summary() + QStringLiteral(": ") + mKCal::AttachmentInfo(attachment).fileName());
            references.append(CalendarAttachmentService::eventKey(*event) + QLatin1Char(' ') + reference);
        }
    }
    for (QStringList *list : { &ofServer, &ofDevice, &references })
        list->sort();
    const QString sql = QStringLiteral("SELECT local_id || ' ' || file_reference FROM attachments");
    return StoreCheck::difference("attachments of the device", ofDevice, ofServer)
        + StoreCheck::difference(
            "rows of attachments", StoreCheck::ask(StoreCheck::mappingFile(), sql), references);
}
