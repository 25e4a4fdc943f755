// SPDX-License-Identifier: LGPL-2.1-or-later
// The other applications of the device: puts events and contacts into its stores, and counts what is there.
#include "portrait.h"

#include "client/contactbook.h"
#include "common/exchangeactivesync.h"

#include <extendedcalendar.h>
#include <extendedstorage.h>

#include <QtContacts/QContactAddress>
#include <QtContacts/QContactAvatar>
#include <QtContacts/QContactEmailAddress>
#include <QtContacts/QContactName>
#include <QtContacts/QContactPhoneNumber>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <cstdio>

QTCONTACTS_USE_NAMESPACE

using KCalendarCore::Event;

namespace {

constexpr int seriesEvery = 10;

Event::Ptr event(int number)
{
    const QTimeZone zone("Europe/Berlin");
    const QDateTime start(QDate::currentDate().addDays(number % 60), QTime(8 + number % 10, 30), zone);
    const Event::Ptr event(new Event);
    event->setSummary(QStringLiteral("Work on the engine, part %1").arg(number));
    event->setDtStart(start);
    event->setDtEnd(start.addSecs(45 * 60));
    event->setLocation(QStringLiteral("Room 7"));
    event->setDescription(
        QStringLiteral("Part %1: what we did, and what comes next. ").arg(number).repeated(5));
    event->setCategories(QStringList { QStringLiteral("Work") });
    const KCalendarCore::Alarm::Ptr alarm = event->newAlarm();
    alarm->setDisplayAlarm(event->summary());
    alarm->setStartOffset(KCalendarCore::Duration(-15 * 60));
    alarm->setEnabled(true);
    if (number % seriesEvery == 0) {
        event->recurrence()->setWeekly(1);
        event->recurrence()->setDuration(26);
    }
    return event;
}

/** The account's calendar in the device's calendar store. */
class EventBook
{
public:
    explicit EventBook(EasAccountId accountId)
        : mAccount(QString::number(accountId))
        , mCalendar(new mKCal::ExtendedCalendar(QTimeZone::utc()))
        , mStorage(mKCal::ExtendedCalendar::defaultStorage(mCalendar))
    {
    }

    bool open()
    {
        const bool opened = mStorage->open();
        const mKCal::Notebook::List notebooks = mStorage->notebooks();
        for (const mKCal::Notebook::Ptr &notebook : notebooks) {
            if (notebook->account() == mAccount
                && notebook->pluginName() == ExchangeActiveSync::ExchangeCalendarPluginName)
                mNotebook = notebook->uid();
        }
        return opened && mStorage->loadNotebookIncidences(mNotebook);
    }

    bool add(int count)
    {
        for (int number = 0; number < count; ++number) {
            const Event::Ptr added = event(number);
            if (!mCalendar->addEvent(added, mNotebook) || (added->recurs() && !moveOccurrence(added)))
                return false;
        }
        return mStorage->save();
    }

    Event::List events() const { return mCalendar->rawEvents(); }

private:
    bool moveOccurrence(const Event::Ptr &series)
    {
        const QDateTime start = series->dtStart().addDays(3 * 7);
        const Event::Ptr exception =
            mCalendar->dissociateSingleOccurrence(series, start).dynamicCast<Event>();
        if (!exception)
            return false;
        exception->setDtStart(start.addSecs(3600));
        exception->setDtEnd(start.addSecs(2 * 3600));
        exception->setLocation(QStringLiteral("Room 9"));
        return mCalendar->addEvent(exception, mNotebook);
    }

    const QString mAccount;
    const mKCal::ExtendedCalendar::Ptr mCalendar;
    const mKCal::ExtendedStorage::Ptr mStorage;
    QString mNotebook;
};

template <class Detail> void give(QContact &contact, Detail detail)
{
    contact.saveDetail(&detail);
}

QUrl storedPortrait(int number)
{
    const QString path = QDir::home().absoluteFilePath(QStringLiteral("portrait-%1.jpg").arg(number));
    QFile file(path);
    const QByteArray bytes = Bench::portrait(number);
    const bool written = file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    return written ? QUrl::fromLocalFile(path) : QUrl();
}

QContact contact(int number)
{
    QContact contact;
    QContactName name;
    name.setFirstName(QStringLiteral("Ada"));
    name.setLastName(QStringLiteral("Lovelace %1").arg(number));
    give(contact, name);
    QContactEmailAddress email;
    email.setEmailAddress(QStringLiteral("ada%1@example.com").arg(number));
    give(contact, email);
    QContactPhoneNumber phone;
    phone.setNumber(QStringLiteral("+49 170 %1").arg(number));
    phone.setSubTypes({ QContactPhoneNumber::SubTypeMobile });
    give(contact, phone);
    QContactAddress address;
    address.setStreet(QStringLiteral("%1 Main Street").arg(number));
    address.setLocality(QStringLiteral("London"));
    address.setContexts(QContactDetail::ContextHome);
    give(contact, address);
    QContactAvatar avatar;
    avatar.setImageUrl(storedPortrait(number));
    give(contact, avatar);
    return contact;
}

bool addContacts(ContactBook &book, int count)
{
    const std::optional<QContactCollection> collection = book.collection(QString());
    for (int number = 0; collection && number < count; ++number) {
        QContact added = contact(number);
        added.setCollectionId(collection->id());
        if (!book.save(&added))
            return false;
    }
    return collection.has_value();
}

/** Prints how many events and exceptions, contacts and pictures there are; false if they cannot be read. */
bool count(const EventBook &calendar, const ContactBook &book)
{
    int exceptions = 0;
    const Event::List events = calendar.events();
    for (const Event::Ptr &event : events)
        exceptions += event->hasRecurrenceId() ? 1 : 0;
    int pictures = 0;
    QList<QContact> contacts;
    if (!book.contacts({}, &contacts))
        return false;
    for (const QContact &contact : contacts)
        pictures += QFile::exists(contact.detail<QContactAvatar>().imageUrl().toLocalFile()) ? 1 : 0;
    std::printf("%d %d %d %d\n", events.size() - exceptions, exceptions, contacts.size(), pictures);
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    const QString number = QStringLiteral("number");
    const QCommandLineOption account(QStringLiteral("account"), QStringLiteral("Whose stores."), number);
    const QCommandLineOption events(QStringLiteral("events"), QStringLiteral("Events to add."), number);
    const QCommandLineOption contacts(QStringLiteral("contacts"), QStringLiteral("Contacts to add."), number);
    parser.addOptions({ account, events, contacts });
    parser.process(application);

    const EasAccountId id = parser.value(account).toUInt();
    EventBook calendar(id);
    ContactBook book(id);
    if (!calendar.open() || !book.open() || !calendar.add(parser.value(events).toInt())
        || !addContacts(book, parser.value(contacts).toInt()))
        return 1;
    return count(calendar, book) ? 0 : 1;
}
