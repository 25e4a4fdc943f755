// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/mailboxdirectory.h"

#include <QDir>
#include <QFile>

#include <algorithm>

namespace Simulator {
namespace {

/** The folder of that name under the parent, made if there is none. */
QString folderNamed(const QString &name, const QString &parentId, Mailbox &mailbox)
{
    const QVector<MailFolder> folders = mailbox.folders();
    const auto found = std::find_if(folders.begin(), folders.end(), [&](const MailFolder &folder) {
        return folder.parentId == parentId && folder.name.compare(name, Qt::CaseInsensitive) == 0;
    });
    return found == folders.end() ? mailbox.addFolder(name, UserMailFolder, parentId) : found->id;
}

int loadFolder(const QDir &directory, const QString &messagesTo, const QString &parentId, Mailbox &mailbox)
{
    int count = 0;
    const QStringList files = directory.entryList({ QStringLiteral("*.eml") }, QDir::Files, QDir::Name);
    for (const QString &name : files) {
        QFile file(directory.filePath(name));
        if (file.open(QIODevice::ReadOnly) && !mailbox.deliver(messagesTo, file.readAll()).isEmpty())
            ++count;
    }
    const QStringList directories = directory.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    for (const QString &name : directories) {
        const QString id = folderNamed(name, parentId, mailbox);
        count += loadFolder(QDir(directory.filePath(name)), id, id, mailbox);
    }
    return count;
}

} // namespace

int MailboxDirectory::load(const QString &path, Mailbox &mailbox)
{
    const QDir directory(path);
    return directory.exists() ? loadFolder(directory, mailbox.inboxId(), QStringLiteral("0"), mailbox) : -1;
}

} // namespace Simulator
