// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailfolder.h>
#include <qmailid.h>

#include <QString>

class QMailMessageMetaData;

/** Local changes that a server learns of later: a move leaves the previous folder in the message. */
class QMF_EXPORT QMailDisconnected
{
public:
    static void moveToStandardFolder(
        const QMailMessageIdList &ids, QMailFolder::StandardFolder standardFolder);
    static void moveToFolder(const QMailMessageIdList &ids, const QMailFolderId &folderId);
    static void moveToFolder(QMailMessageMetaData *message, const QMailFolderId &folderId);
    static void flagMessage(
        const QMailMessageId &id, quint64 setMask, quint64 unsetMask, const QString &description);
    static void flagMessages(
        const QMailMessageIdList &ids, quint64 setMask, quint64 unsetMask, const QString &description);
    static void clearPreviousFolder(QMailMessageMetaData *message);
    static bool updatesOutstanding(const QMailAccountId &mailAccountId);
};
