// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmaildatacomparator.h>
#include <qmailid.h>

#include <QDateTime>
#include <QExplicitlySharedDataPointer>
#include <QStringList>

class MailKeyNode;

/** Selects messages. A value; keys combine with & and |, and ~ turns one round. The empty key selects all. */
class QMF_EXPORT QMailMessageKey
{
public:
    enum Property {
        Id = 1 << 0,
        Type = 1 << 1,
        ParentFolderId = 1 << 2,
        Sender = 1 << 3,
        Recipients = 1 << 4,
        Subject = 1 << 5,
        TimeStamp = 1 << 6,
        Status = 1 << 7,
        Conversation = 1 << 8,
        ReceptionTimeStamp = 1 << 9,
        ServerUid = 1 << 10,
        Size = 1 << 11,
        ParentAccountId = 1 << 12,
        AncestorFolderIds = 1 << 13,
        ContentType = 1 << 14,
        PreviousParentFolderId = 1 << 15,
        Custom = 1 << 20
    };
    Q_DECLARE_FLAGS(Properties, Property)

    QMailMessageKey();
    QMailMessageKey(const QMailMessageKey &other);
    QMailMessageKey &operator=(const QMailMessageKey &other);
    ~QMailMessageKey();

    QMailMessageKey operator~() const;
    QMailMessageKey operator&(const QMailMessageKey &other) const;
    QMailMessageKey operator|(const QMailMessageKey &other) const;
    const QMailMessageKey &operator&=(const QMailMessageKey &other);
    const QMailMessageKey &operator|=(const QMailMessageKey &other);
    bool operator==(const QMailMessageKey &other) const;
    bool operator!=(const QMailMessageKey &other) const;

    bool isEmpty() const;
    bool isNonMatching() const;
    bool isNegated() const;
    static QMailMessageKey nonMatchingKey();

    static QMailMessageKey id(const QMailMessageId &id,
        QMailDataComparator::EqualityComparator comparator = QMailDataComparator::Equal);
    static QMailMessageKey id(const QMailMessageIdList &ids,
        QMailDataComparator::InclusionComparator comparator = QMailDataComparator::Includes);
    static QMailMessageKey parentAccountId(const QMailAccountId &id,
        QMailDataComparator::EqualityComparator comparator = QMailDataComparator::Equal);
    static QMailMessageKey parentAccountId(const QMailAccountIdList &ids,
        QMailDataComparator::InclusionComparator comparator = QMailDataComparator::Includes);
    static QMailMessageKey parentFolderId(const QMailFolderId &id,
        QMailDataComparator::EqualityComparator comparator = QMailDataComparator::Equal);
    static QMailMessageKey parentFolderId(const QMailFolderIdList &ids,
        QMailDataComparator::InclusionComparator comparator = QMailDataComparator::Includes);
    static QMailMessageKey previousParentFolderId(const QMailFolderId &id,
        QMailDataComparator::EqualityComparator comparator = QMailDataComparator::Equal);
    static QMailMessageKey serverUid(
        const QString &uid, QMailDataComparator::EqualityComparator comparator = QMailDataComparator::Equal);
    static QMailMessageKey serverUid(const QStringList &uids,
        QMailDataComparator::InclusionComparator comparator = QMailDataComparator::Includes);
    /** Includes: at least one bit of the mask is set. Excludes: none is. */
    static QMailMessageKey status(
        quint64 mask, QMailDataComparator::InclusionComparator comparator = QMailDataComparator::Includes);
    static QMailMessageKey status(quint64 mask, QMailDataComparator::EqualityComparator comparator);
    static QMailMessageKey timeStamp(const QDateTime &time,
        QMailDataComparator::EqualityComparator comparator = QMailDataComparator::Equal);
    static QMailMessageKey timeStamp(
        const QDateTime &time, QMailDataComparator::RelationComparator comparator);
    static QMailMessageKey receptionTimeStamp(
        const QDateTime &time, QMailDataComparator::RelationComparator comparator);
    static QMailMessageKey customField(const QString &name,
        QMailDataComparator::PresenceComparator comparator = QMailDataComparator::Present);
    static QMailMessageKey customField(const QString &name, const QString &value,
        QMailDataComparator::EqualityComparator comparator = QMailDataComparator::Equal);

private:
    friend struct MailValueAccess;
    explicit QMailMessageKey(const MailKeyNode *node);
    QExplicitlySharedDataPointer<const MailKeyNode> d;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(QMailMessageKey::Properties)
