// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/pimlisting.h"

#include "easitems/eascalendaritem.h"
#include "simulator/contactitem.h"
#include "simulator/eventitem.h"
#include "simulator/mailbox.h"
#include "storages/calendar/calendarrecurrence.h"
#include "storages/contacts/contactstoremanager.h"
#include "support/contactfixture.h"
#include "support/devicecalendar.h"
#include "support/devicecontactfields.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QSet>

#include <QtContacts/QContactAvatar>
#include <QtContacts/QContactCollectionFilter>
#include <QtContacts/QContactManager>
#include <QtContacts/QContactNote>
#include <QtContacts/QContactTag>

QTCONTACTS_USE_NAMESPACE
using KCalendarCore::Event;

namespace {

QString iso(const QDateTime &moment)
{
    return moment.toUTC().toString(QStringLiteral("yyyy-MM-ddTHH:mm"));
}

struct EventText
{
    QString times; ///< and place
    QString rest;

    QString whole() const { return times + rest; }
};

EventText textOf(const QDateTime &start, const QDateTime &end, bool allDay, const QString &location,
    QStringList categories, int reminder)
{
    categories.sort();
    return { QStringLiteral("%1-%2 %3 \"%4\"")
                 .arg(iso(start), iso(end), allDay ? QStringLiteral("days") : QStringLiteral("hours"),
                     location),
        QStringLiteral(" [%1] %2").arg(categories.join(QLatin1Char(','))).arg(reminder) };
}

EventText textOf(const Simulator::EventDetails &details)
{
    return textOf(details.start, details.end, details.allDay, details.location.name, details.categories,
        details.reminder);
}

EventText textOf(const Event::Ptr &event)
{
    const auto alarms = event->alarms();
    const int reminder = alarms.isEmpty() ? -1 : -alarms.first()->startOffset().asSeconds() / 60;
    if (!event->allDay())
        return textOf(
            event->dtStart(), event->dtEnd(), false, event->location(), event->categories(), reminder);
    // As a server has them: midnights, the end not included.
    const QDateTime start(event->dtStart().date(), QTime(0, 0), Qt::UTC);
    const QDateTime end(event->dtEnd().date().addDays(1), QTime(0, 0), Qt::UTC);
    return textOf(start, end, true, event->location(), event->categories(), reminder);
}

/** That an occurrence has no reminder or no category where its series has some cannot be said to a server. */
QString exceptionLine(const QDateTime &original, const QString &what)
{
    return iso(original) + QStringLiteral(": ") + what;
}

QString withExceptions(const EventText &series, QStringList exceptions)
{
    exceptions.sort();
    return exceptions.isEmpty()
        ? series.whole()
        : series.whole() + QStringLiteral(" but ") + exceptions.join(QStringLiteral(", "));
}

/** Of a contact, beside its fields. */
QString contactText(const QString &folder, const QString &fields, QStringList categories,
    const QByteArray &picture, const QString &note)
{
    categories.sort();
    const QByteArray hash = QCryptographicHash::hash(picture, QCryptographicHash::Md5).toHex();
    return QStringLiteral("in %1: %2|%3|%4|%5")
        .arg(folder, fields, categories.join(QLatin1Char(',')),
            picture.isEmpty() ? QString() : QString::fromLatin1(hash.left(6)), note);
}

template <class ItemType>
QList<typename ItemType::Value> itemsOf(const Simulator::Mailbox &mailbox, const QString &folderId)
{
    QList<typename ItemType::Value> values;
    const auto items = mailbox.items(folderId);
    for (const Simulator::ItemEntry &entry : items) {
        if (const auto item = std::dynamic_pointer_cast<const ItemType>(entry.item))
            values.append(item->value());
    }
    return values;
}

} // namespace

void PimListing::enter(Listing &listing, const QString &name, const QString &value)
{
    QString key = name;
    for (int copy = 2; listing.contains(key); ++copy)
        key = QStringLiteral("%1 (copy %2)").arg(name).arg(copy);
    listing.insert(key, value);
}

namespace {

QString ruleText(
    int type, int interval, int occurrences, int dayOfWeek, int weekOfMonth, int dayOfMonth, int monthOfYear)
{
    return QStringLiteral(" rule %1 every %2, %3 times, days %4 of week %5, day %6 of month %7")
        .arg(type)
        .arg(interval)
        .arg(occurrences)
        .arg(dayOfWeek)
        .arg(weekOfMonth)
        .arg(dayOfMonth)
        .arg(monthOfYear);
}

QString ruleText(const Event::Ptr &event)
{
    EasCalendarItem item;
    if (!event->recurs() || !CalendarRecurrence::applyRecurrence(event, item, false))
        return QString();
    const EasRecurrenceContainer rule = item.recurrence();
    return ruleText(rule.type(), rule.interval(), rule.occurrences(), rule.dayOfWeek(), rule.weekOfMonth(),
        rule.dayOfMonth(), rule.monthOfYear());
}

void enterServerEvent(PimListing::Listing &listing, const Simulator::Event &event, const QString &calendar)
{
    QStringList exceptions;
    for (const Simulator::EventException &exception : event.exceptions) {
        exceptions.append(exceptionLine(exception.original,
            exception.isDeleted ? QStringLiteral("none") : textOf(event.detailsOf(exception)).times));
    }
    const QString rule = event.rule
        ? ruleText(event.rule->type, event.rule->interval, event.rule->occurrences, event.rule->dayOfWeek,
            event.rule->weekOfMonth, event.rule->dayOfMonth, event.rule->monthOfYear)
        : QString();
    PimListing::enter(listing, event.subject,
        calendar + QStringLiteral(": ") + withExceptions(textOf(event), exceptions) + rule);
}

} // namespace

PimListing::Listing PimListing::serverEvents(const Simulator::Mailbox &mailbox)
{
    Listing listing;
    const auto folders = mailbox.folders();
    for (const Simulator::MailFolder &folder : folders) {
        if (folder.type != Simulator::CalendarFolder && folder.type != Simulator::UserCalendarFolder)
            continue;
        const auto events = itemsOf<Simulator::EventItem>(mailbox, folder.id);
        for (const Simulator::Event &event : events)
            enterServerEvent(listing, event, folder.name);
    }
    return listing;
}

PimListing::Listing PimListing::deviceEvents(EasAccountId accountId)
{
    Listing listing;
    const DeviceCalendar device;
    const Event::List events = device.series(accountId);
    for (const Event::Ptr &event : events) {
        QStringList exceptions;
        if (event->recurs()) {
            const auto moments = event->recurrence()->exDateTimes();
            for (const QDateTime &moment : moments)
                exceptions.append(exceptionLine(moment, QStringLiteral("none")));
            const auto days = event->recurrence()->exDates();
            for (const QDate &day : days)
                exceptions.append(
                    exceptionLine(QDateTime(day, QTime(0, 0), Qt::UTC), QStringLiteral("none")));
        }
        const auto instances = device.calendar->eventInstances(event);
        for (const auto &instance : instances) {
            const QDateTime original = instance->allDay()
                ? QDateTime(instance->recurrenceId().date(), QTime(0, 0), Qt::UTC)
                : instance->recurrenceId();
            exceptions.append(exceptionLine(original, textOf(instance.staticCast<Event>()).times));
        }
        const auto notebook = device.storage->notebook(device.calendar->notebook(event));
        enter(listing, event->summary(),
            (notebook ? notebook->name() : QString()) + QStringLiteral(": ")
                + withExceptions(textOf(event), exceptions) + ruleText(event));
    }
    return listing;
}

PimListing::Listing PimListing::serverContacts(const Simulator::Mailbox &mailbox)
{
    Listing listing;
    const auto folders = mailbox.folders();
    for (const Simulator::MailFolder &folder : folders) {
        if (folder.type != Simulator::ContactsFolder && folder.type != Simulator::UserContactsFolder)
            continue;
        const auto contacts = itemsOf<Simulator::ContactItem>(mailbox, folder.id);
        for (const Simulator::Contact &contact : contacts) {
            enter(listing, contact.text(QStringLiteral("FirstName")),
                contactText(folder.name, DeviceContactField::line(contact), contact.categories(),
                    contact.picture(), contact.note()));
        }
    }
    return listing;
}

PimListing::Listing PimListing::deviceContacts(EasAccountId accountId)
{
    Listing listing;
    const std::unique_ptr<QContactManager> manager(ContactStoreManager::create(nullptr));
    const QList<QContact> contacts = contactsOf(*manager, accountId);
    for (const QContact &contact : contacts) {
        QStringList categories;
        for (const QContactTag &tag : contact.details<QContactTag>())
            categories.append(tag.tag());
        const QContactCollection folder = manager->collection(contact.collectionId());
        enter(listing, ContactFixture::name(contact),
            contactText(folder.metaData(QContactCollection::KeyName).toString(),
                DeviceContactField::line(contact), categories, pictureOf(contact),
                contact.detail<QContactNote>().note()));
    }
    return listing;
}

QList<QContact> PimListing::contactsOf(QContactManager &manager, EasAccountId accountId)
{
    const QList<QContactCollectionId> ids = collectionsOf(manager, accountId);
    if (ids.isEmpty())
        return {};
    QContactCollectionFilter filter;
    filter.setCollectionIds(QSet<QContactCollectionId>(ids.cbegin(), ids.cend()));
    return manager.contacts(filter);
}

QList<QContactCollectionId> PimListing::collectionsOf(QContactManager &manager, EasAccountId accountId)
{
    QList<QContactCollectionId> ids;
    const QList<QContactCollection> collections = manager.collections();
    for (const QContactCollection &collection : collections) {
        if (collection.extendedMetaData(QStringLiteral("AccountId")).toULongLong() == accountId)
            ids.append(collection.id());
    }
    return ids;
}

QContactCollectionId PimListing::collectionOf(QContactManager &manager, EasAccountId accountId)
{
    return collectionsOf(manager, accountId).value(0);
}

QByteArray PimListing::pictureOf(const QContact &contact)
{
    const QString path = contact.detail<QContactAvatar>().imageUrl().toLocalFile();
    QFile file(path);
    return !path.isEmpty() && file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList PimListing::orphanPictures(EasAccountId accountId)
{
    const QDir folder(QDir::homePath() + QStringLiteral("/.avatars/account-%1").arg(accountId));
    QStringList orphans;
    for (const QString &name : folder.entryList(QDir::Files))
        orphans.append(folder.filePath(name));
    const std::unique_ptr<QContactManager> manager(ContactStoreManager::create(nullptr));
    const QList<QContact> contacts = contactsOf(*manager, accountId);
    for (const QContact &contact : contacts)
        orphans.removeAll(contact.detail<QContactAvatar>().imageUrl().toLocalFile());
    return orphans;
}
