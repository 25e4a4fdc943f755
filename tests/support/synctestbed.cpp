// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/synctestbed.h"

#include "support/maillisting.h"

using Simulator::Contact;
using Simulator::ContactItem;
using Simulator::Event;
using Simulator::EventItem;
using Simulator::ItemEntry;

namespace {

template <class ItemType>
QVector<typename ItemType::Value> valuesIn(Simulator::Mailbox &mailbox, const QString &folderId)
{
    QVector<typename ItemType::Value> values;
    const QVector<ItemEntry> entries = mailbox.items(folderId);
    for (const ItemEntry &entry : entries) {
        if (const auto item = std::dynamic_pointer_cast<const ItemType>(entry.item))
            values.append(item->value());
    }
    return values;
}

} // namespace

AccountOptions SyncTestBed::everyService()
{
    AccountOptions options;
    options.calendarsEnabled = true;
    options.contactsEnabled = true;
    return options;
}

SyncTestBed::SyncTestBed(const QStringList &versions)
    : SyncTestBed(versions, AccountOptions())
{
}

SyncTestBed::SyncTestBed(const QStringList &versions, AccountOptions options)
{
    mServer.addUser(QStringLiteral("alice"), QStringLiteral("s3cret"));
    mServer.setVersions(versions);
    if (!mServer.start())
        return;
    options.port = mServer.port();
    options.preferredVersion = versions.last();
    start(options);
}

QStringList SyncTestBed::serverState()
{
    return MailListing::serverMessages(mailbox());
}

QStringList SyncTestBed::serverFolders()
{
    return MailListing::serverFolders(mailbox());
}

QString SyncTestBed::place(const Event &event)
{
    return mailbox().addItem(calendarId(), EventItem::make(event));
}

QString SyncTestBed::place(const Contact &contact)
{
    return mailbox().addItem(contactsId(), ContactItem::make(contact));
}

bool SyncTestBed::editEvent(const QString &serverId, const std::function<void(Event &)> &change)
{
    return mailbox().edit<EventItem>(serverId, change);
}

bool SyncTestBed::editContact(const QString &serverId, const std::function<void(Contact &)> &change)
{
    return mailbox().edit<ContactItem>(serverId, change);
}

QVector<Event> SyncTestBed::serverEvents()
{
    return valuesIn<EventItem>(mailbox(), calendarId());
}

QVector<Contact> SyncTestBed::serverContacts()
{
    return valuesIn<ContactItem>(mailbox(), contactsId());
}

std::optional<Event> SyncTestBed::serverEvent(const QString &serverId)
{
    return mailbox().value<EventItem>(serverId);
}

std::optional<Contact> SyncTestBed::serverContact(const QString &serverId)
{
    return mailbox().value<ContactItem>(serverId);
}

QByteArray SyncTestBed::message(const QString &subject, const QString &text)
{
    return QStringLiteral("From: Bob <bob@example.com>\r\nTo: Alice <alice@example.com>\r\nSubject: %1\r\n"
                          "Date: Tue, 2 Jan 2024 03:04:05 +0000\r\nMIME-Version: 1.0\r\n"
                          "Content-Type: text/plain; charset=utf-8\r\n\r\n%2\r\n")
        .arg(subject, text)
        .toUtf8();
}
