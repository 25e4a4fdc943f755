// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/folderdirectory.h"

#include "client/contactbook.h"
#include "client/eventstore.h"
#include "client/mailview.h"
#include "client/output.h"

#include <qmailstore.h>

bool FolderDirectory::kindOf(const QString &word, Kind *kind)
{
    static const QStringList words { QStringLiteral("mail"), QStringLiteral("calendar"),
        QStringLiteral("contacts") };
    const int index = words.indexOf(word);
    if (index < 0)
        Output::error(QStringLiteral("--kind is one of %1").arg(words.join(QStringLiteral(", "))));
    else
        *kind = Kind(index);
    return index >= 0;
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
    if (!QMailStore::instance() || QMailStore::initializationState() != QMailStore::Initialized) {
        Output::error(QStringLiteral("the mail store cannot be opened"));
        return false;
    }
    const QMailFolderIdList ids = MailView::folders(mAccountId);
    for (const QMailFolderId &id : ids)
        mFolders.append({ QString::number(id.toULongLong()), MailView::folderPath(id) });
    return true;
}

bool FolderDirectory::openCalendars()
{
    EventStore store(mAccountId);
    if (!store.open())
        return false;
    const mKCal::Notebook::List calendars = store.calendars();
    for (const mKCal::Notebook::Ptr &calendar : calendars)
        mFolders.append({ calendar->uid(), calendar->name() });
    return true;
}

bool FolderDirectory::openContacts()
{
    ContactBook book(mAccountId);
    if (!book.open())
        return false;
    const QList<QtContacts::QContactCollection> collections = book.collections();
    for (const QtContacts::QContactCollection &collection : collections)
        mFolders.append({ collection.id().toString(), ContactBook::name(collection) });
    return true;
}

QString FolderDirectory::find(const QString &wanted) const
{
    for (const LocalFolder &folder : mFolders) {
        if (folder.id == wanted || folder.name.compare(wanted, Qt::CaseInsensitive) == 0)
            return folder.id;
    }
    Output::error(QStringLiteral("there is no folder \"%1\"").arg(wanted));
    return {};
}
