// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/mailboxdirectory.h"

#include "simulator/calendarfile.h"
#include "simulator/contactfile.h"
#include "simulator/contactitem.h"
#include "simulator/email.h"
#include "simulator/eventitem.h"

#include <QDir>
#include <QFile>

#include <algorithm>

namespace Simulator {
namespace {

/** A kind of file: what is in it, and the folders that are for it. */
struct FileKind
{
    const char *suffix;
    int standardFolder;
    int userFolder;
    QVector<ItemPtr> (*items)(const QByteArray &content);
};

QVector<ItemPtr> messages(const QByteArray &content)
{
    return { Email::fromMessage(content) };
}

QVector<ItemPtr> events(const QByteArray &content)
{
    QVector<ItemPtr> items;
    const QVector<Event> found = CalendarFile::read(content);
    std::transform(found.begin(), found.end(), std::back_inserter(items), &EventItem::make);
    return items;
}

QVector<ItemPtr> contacts(const QByteArray &content)
{
    QVector<ItemPtr> items;
    const QVector<Contact> found = ContactFile::read(content);
    std::transform(found.begin(), found.end(), std::back_inserter(items), &ContactItem::make);
    return items;
}

const FileKind kinds[] = {
    { "eml", InboxFolder, UserMailFolder, messages },
    { "ics", CalendarFolder, UserCalendarFolder, events },
    { "vcf", ContactsFolder, UserContactsFolder, contacts },
};

QStringList filesOf(const QDir &directory, const FileKind &kind)
{
    return directory.entryList(
        { QStringLiteral("*.") + QLatin1String(kind.suffix) }, QDir::Files, QDir::Name);
}

/** The folder of that name under the parent, made if there is none for what the directory holds. */
QString folderFor(const QDir &directory, const QString &parentId, Mailbox &mailbox)
{
    const QString name = directory.dirName();
    const QVector<MailFolder> folders = mailbox.folders();
    const auto found = std::find_if(folders.begin(), folders.end(), [&](const MailFolder &folder) {
        return folder.parentId == parentId && folder.name.compare(name, Qt::CaseInsensitive) == 0;
    });
    if (found != folders.end())
        return found->id;
    const auto kind = std::find_if(std::begin(kinds), std::end(kinds),
        [&directory](const FileKind &candidate) { return !filesOf(directory, candidate).isEmpty(); });
    return mailbox.addFolder(
        name, kind == std::end(kinds) ? int(UserMailFolder) : kind->userFolder, parentId);
}

/** What is not of the folder's kind goes where it would without a folder. */
QString targetOf(const FileKind &kind, const QString &folderId, const Mailbox &mailbox)
{
    const int type = mailbox.folder(folderId).type;
    const bool isForMail = type != CalendarFolder && type != UserCalendarFolder && type != ContactsFolder
        && type != UserContactsFolder;
    const bool fits = kind.standardFolder == InboxFolder
        ? isForMail
        : type == kind.standardFolder || type == kind.userFolder;
    return !folderId.isEmpty() && fits ? folderId : mailbox.folderOfType(kind.standardFolder).id;
}

int loadFolder(const QDir &directory, const QString &folderId, const QString &parentId, Mailbox &mailbox)
{
    int count = 0;
    for (const FileKind &kind : kinds) {
        const QStringList files = filesOf(directory, kind);
        for (const QString &name : files)
            count += MailboxDirectory::loadFile(directory.filePath(name), mailbox, folderId).size();
    }
    const QStringList directories = directory.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    for (const QString &name : directories) {
        const QDir below(directory.filePath(name));
        const QString id = folderFor(below, parentId, mailbox);
        count += loadFolder(below, id, id, mailbox);
    }
    return count;
}

} // namespace

int MailboxDirectory::load(const QString &path, Mailbox &mailbox)
{
    const QDir directory(path);
    return directory.exists() ? loadFolder(directory, QString(), QStringLiteral("0"), mailbox) : -1;
}

QStringList MailboxDirectory::loadFile(const QString &fileName, Mailbox &mailbox, const QString &folderId)
{
    QStringList ids;
    QFile file(fileName);
    const auto kind =
        std::find_if(std::begin(kinds), std::end(kinds), [&fileName](const FileKind &candidate) {
            return fileName.endsWith(QLatin1Char('.') + QLatin1String(candidate.suffix), Qt::CaseInsensitive);
        });
    if (kind == std::end(kinds) || !file.open(QIODevice::ReadOnly))
        return ids;
    const QString target = targetOf(*kind, folderId, mailbox);
    const QVector<ItemPtr> items = kind->items(file.readAll());
    for (const ItemPtr &item : items)
        ids.append(mailbox.addItem(target, item));
    return ids;
}

} // namespace Simulator
