// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailfolderfwd.h>
#include <qmailid.h>

#include <QMap>
#include <QSharedDataPointer>
#include <QString>

class QMailFolderData;

/** A mail folder as a value; QMailStore::addFolder and updateFolder write it. */
class QMF_EXPORT QMailFolder : public QMailFolderFwd
{
public:
    static const quint64 &SynchronizationEnabled;
    static const quint64 &Synchronized;
    static const quint64 &PartialContent;
    static const quint64 &Removed;
    static const quint64 &Incoming;
    static const quint64 &Outgoing;
    static const quint64 &Sent;
    static const quint64 &Trash;
    static const quint64 &Drafts;
    static const quint64 &Junk;
    static const quint64 &ChildCreationPermitted;
    static const quint64 &RenamePermitted;
    static const quint64 &DeletionPermitted;
    static const quint64 &NonMail;
    static const quint64 &MessagesPermitted;
    static const quint64 &ReadOnly;
    static const quint64 &Favourite;

    QMailFolder();
    QMailFolder(const QString &name, const QMailFolderId &parentFolderId = QMailFolderId(),
        const QMailAccountId &parentAccountId = QMailAccountId());
    explicit QMailFolder(const QMailFolderId &id);
    QMailFolder(const QMailFolder &other);
    QMailFolder &operator=(const QMailFolder &other);
    ~QMailFolder();

    QMailFolderId id() const;
    void setId(const QMailFolderId &id);
    QString path() const;
    void setPath(const QString &path);
    QString displayName() const;
    void setDisplayName(const QString &displayName);
    QMailFolderId parentFolderId() const;
    void setParentFolderId(const QMailFolderId &id);
    QMailAccountId parentAccountId() const;
    void setParentAccountId(const QMailAccountId &id);

    quint64 status() const;
    void setStatus(quint64 newStatus);
    void setStatus(quint64 mask, bool set);
    static quint64 statusMask(const QString &flagName);

    QString customField(const QString &name) const;
    void setCustomField(const QString &name, const QString &value);
    void setCustomFields(const QMap<QString, QString> &fields);
    void removeCustomField(const QString &name);
    const QMap<QString, QString> &customFields() const;

private:
    friend struct MailValueAccess;
    QSharedDataPointer<QMailFolderData> d;
};
