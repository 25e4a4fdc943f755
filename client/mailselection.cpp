// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/mailselection.h"

bool MailSelection::select(const QStringList &numbers)
{
    for (const QString &number : numbers) {
        const QMailMessageId id = store().findMessage(number);
        if (!id.isValid())
            return fail(ExitNotFound);
        if (!mMessages.contains(id))
            mMessages.append(id);
    }
    return true;
}

bool MailSelection::selectOfFolder(const QString &folder, bool unread)
{
    MailFilter filter;
    if (!findFolder(folder, &filter.folder))
        return false;
    const QMailMessageIdList ids = store().messages(filter);
    for (const QMailMessageId &id : ids) {
        const bool isUnread = !(QMailMessageMetaData(id).status() & QMailMessage::Read);
        if (isUnread == unread)
            mMessages.append(id);
    }
    return true;
}

QJsonArray MailSelection::numbers() const
{
    QJsonArray array;
    for (const QMailMessageId &id : mMessages)
        array.append(QString::number(id.toULongLong()));
    return array;
}

bool MailSelection::findFolder(const QString &folder, QMailFolderId *id)
{
    *id = store().findFolder(folder);
    return id->isValid() || fail(ExitNotFound);
}
