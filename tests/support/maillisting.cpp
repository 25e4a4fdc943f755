// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/maillisting.h"

#include "simulator/email.h"
#include "simulator/mailbox.h"

#include <qmailfolderkey.h>
#include <qmailmessagekey.h>
#include <qmailstore.h>

namespace {

QString line(const QString &folder, const QString &subject, bool read)
{
    return folder + QLatin1Char('|') + subject + QLatin1Char('|')
        + (read ? QStringLiteral("read") : QStringLiteral("unread"));
}

QString devicePath(QMailFolderId id)
{
    QStringList names;
    while (id.isValid()) {
        const QMailFolder folder(id);
        names.prepend(folder.displayName());
        id = folder.parentFolderId();
    }
    return names.join(QLatin1Char('/'));
}

QMailMessageIdList messageIds(EasAccountId accountId)
{
    // What a search has found is no part of what is synchronised.
    return QMailStore::instance()->queryMessages(QMailMessageKey::parentAccountId(QMailAccountId(accountId))
        & QMailMessageKey::status(QMailMessage::Temporary, QMailDataComparator::Excludes));
}

QMailFolderIdList folderIds(EasAccountId accountId)
{
    return QMailStore::instance()->queryFolders(QMailFolderKey::parentAccountId(QMailAccountId(accountId)));
}

QString serverPath(const Simulator::Mailbox &mailbox, Simulator::MailFolder folder)
{
    QString path = folder.name;
    while (folder.parentId != QLatin1String("0")) {
        folder = mailbox.folder(folder.parentId);
        path.prepend(folder.name + QLatin1Char('/'));
    }
    return path;
}

QVector<Simulator::MailFolder> mailFolders(const Simulator::Mailbox &mailbox)
{
    QVector<Simulator::MailFolder> found;
    const auto folders = mailbox.folders();
    for (const Simulator::MailFolder &folder : folders) {
        const bool standard =
            folder.type >= Simulator::GenericFolder && folder.type <= Simulator::OutboxFolder;
        if (standard || folder.type == Simulator::UserMailFolder)
            found.append(folder);
    }
    return found;
}

} // namespace

QStringList MailListing::deviceMessages(EasAccountId accountId)
{
    QStringList lines;
    const QMailMessageIdList ids = messageIds(accountId);
    for (const QMailMessageId &id : ids) {
        const QMailMessageMetaData message(id);
        lines.append(line(
            devicePath(message.parentFolderId()), message.subject(), message.status() & QMailMessage::Read));
    }
    lines.sort();
    return lines;
}

QStringList MailListing::deviceFolders(EasAccountId accountId)
{
    QStringList paths;
    const QMailFolderIdList ids = folderIds(accountId);
    for (const QMailFolderId &id : ids)
        paths.append(devicePath(id));
    paths.sort();
    return paths;
}

QStringList MailListing::serverMessages(const Simulator::Mailbox &mailbox)
{
    QStringList lines;
    const auto folders = mailFolders(mailbox);
    for (const Simulator::MailFolder &folder : folders) {
        const QString path = serverPath(mailbox, folder);
        const auto items = mailbox.items(folder.id);
        for (const Simulator::ItemEntry &entry : items) {
            // Events and contacts that were deleted lie among the deleted mail.
            const auto email = std::dynamic_pointer_cast<const Simulator::Email>(entry.item);
            if (email)
                lines.append(line(path, email->content().headers().subject, email->isRead()));
        }
    }
    lines.sort();
    return lines;
}

QStringList MailListing::serverFolders(const Simulator::Mailbox &mailbox)
{
    QStringList paths;
    const auto folders = mailFolders(mailbox);
    for (const Simulator::MailFolder &folder : folders)
        paths.append(serverPath(mailbox, folder));
    paths.sort();
    return paths;
}

QMailMessageId MailListing::deviceMessage(EasAccountId accountId, const QString &subject)
{
    const QMailMessageIdList ids = messageIds(accountId);
    for (const QMailMessageId &id : ids) {
        if (QMailMessageMetaData(id).subject() == subject)
            return id;
    }
    return {};
}

QMailFolderId MailListing::deviceFolder(EasAccountId accountId, const QString &path)
{
    const QMailFolderIdList ids = folderIds(accountId);
    for (const QMailFolderId &id : ids) {
        if (devicePath(id) == path)
            return id;
    }
    return {};
}
