// SPDX-License-Identifier: LGPL-2.1-or-later
#include <qmailmessageremovalrecord.h>

QMailMessageRemovalRecord::QMailMessageRemovalRecord(
    const QMailAccountId &parentAccountId, const QString &serverUid, const QMailFolderId &parentFolderId)
    : mParentAccountId(parentAccountId)
    , mServerUid(serverUid)
    , mParentFolderId(parentFolderId)
{
}

QMailAccountId QMailMessageRemovalRecord::parentAccountId() const
{
    return mParentAccountId;
}

void QMailMessageRemovalRecord::setParentAccountId(const QMailAccountId &id)
{
    mParentAccountId = id;
}

QString QMailMessageRemovalRecord::serverUid() const
{
    return mServerUid;
}

void QMailMessageRemovalRecord::setServerUid(const QString &serverUid)
{
    mServerUid = serverUid;
}

QMailFolderId QMailMessageRemovalRecord::parentFolderId() const
{
    return mParentFolderId;
}

void QMailMessageRemovalRecord::setParentFolderId(const QMailFolderId &id)
{
    mParentFolderId = id;
}
