// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailid.h>

#include <QList>
#include <QString>

/** What is left of a removed message until its removal has reached the server. */
class QMF_EXPORT QMailMessageRemovalRecord
{
public:
    QMailMessageRemovalRecord() = default;
    QMailMessageRemovalRecord(const QMailAccountId &parentAccountId, const QString &serverUid,
        const QMailFolderId &parentFolderId = QMailFolderId());

    QMailAccountId parentAccountId() const;
    void setParentAccountId(const QMailAccountId &id);
    QString serverUid() const;
    void setServerUid(const QString &serverUid);
    QMailFolderId parentFolderId() const;
    void setParentFolderId(const QMailFolderId &id);

private:
    QMailAccountId mParentAccountId;
    QString mServerUid;
    QMailFolderId mParentFolderId;
};

typedef QList<QMailMessageRemovalRecord> QMailMessageRemovalRecordList;
