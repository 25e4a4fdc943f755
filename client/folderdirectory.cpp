// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/folderdirectory.h"

#include "client/commandcontext.h"
#include "client/contactbook.h"
#include "client/eventstore.h"
#include "client/mailbox.h"

#include <QJsonObject>

const QStringList &FolderDirectory::kinds()
{
    static const QStringList words { QStringLiteral("mail"), QStringLiteral("calendar"),
        QStringLiteral("contacts") };
    return words;
}

bool FolderDirectory::kindOf(const QString &word, Kind *kind)
{
    if (!CommandContext::isOneOf(word, kinds(), QStringLiteral("--kind")))
        return false;
    *kind = Kind(kinds().indexOf(word));
    return true;
}

FolderDirectory::FolderDirectory(EasAccountId accountId, Kind kind)
    : mAccountId(accountId)
    , mKind(kind)
{
}

bool FolderDirectory::open()
{
    switch (mKind) {
    case Mail:
        return openMail();
    case Calendar:
        return openCalendars();
    case Contacts:
        break;
    }
    return openContacts();
}

bool FolderDirectory::openMail()
{
    MailBox box(mAccountId);
    if (!box.open())
        return false;
    const QMailFolderIdList ids = box.folders();
    for (const QMailFolderId &id : ids)
        mFolders.append({ QString::number(id.toULongLong()), QMailFolder(id).displayName(), MailBox::path(id),
            MailBox::depth(id), MailBox::count(id, false), MailBox::count(id, true) });
    return true;
}

bool FolderDirectory::openCalendars()
{
    EventStore store(mAccountId);
    if (!store.open())
        return false;
    const mKCal::Notebook::List calendars = store.calendars();
    for (const mKCal::Notebook::Ptr &calendar : calendars)
        mFolders.append({ calendar->uid(), calendar->name(), calendar->name(), 0, store.count(calendar), 0 });
    return true;
}

bool FolderDirectory::openContacts()
{
    ContactBook book(mAccountId);
    if (!book.open())
        return false;
    const QList<QtContacts::QContactCollection> &collections = book.collections();
    for (const QtContacts::QContactCollection &collection : collections) {
        QList<QtContacts::QContact> contacts;
        if (!book.contacts(collection, &contacts))
            return false;
        const QString name = ContactBook::name(collection);
        mFolders.append({ collection.id().toString(), name, name, 0, contacts.size(), 0 });
    }
    return true;
}

QJsonArray FolderDirectory::describe() const
{
    QJsonArray rows;
    for (const LocalFolder &folder : mFolders)
        rows.append(QJsonObject { { QStringLiteral("id"), folder.id },
            { QStringLiteral("kind"), kinds().at(mKind) }, { QStringLiteral("name"), folder.name },
            { QStringLiteral("path"), folder.path }, { QStringLiteral("depth"), folder.depth },
            { QStringLiteral("items"), folder.items }, { QStringLiteral("unread"), folder.unread } });
    return rows;
}

const LocalFolder *FolderDirectory::find(const QString &wanted) const
{
    QList<const LocalFolder *> found;
    for (const LocalFolder &folder : mFolders) {
        if (folder.id == wanted)
            return &folder;
        if (folder.path.compare(wanted, Qt::CaseInsensitive) == 0)
            found.append(&folder);
    }
    if (found.size() == 1)
        return found.first();
    Output::error(found.isEmpty()
            ? QStringLiteral("there is no folder \"%1\"").arg(wanted)
            : QStringLiteral("several folders are called \"%1\"; give the identifier of one").arg(wanted));
    return nullptr;
}
