// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmaildatacomparator.h>
#include <qmailid.h>

#include <QExplicitlySharedDataPointer>
#include <QString>

class MailKeyNode;

/** Selects folders. A value; keys combine with & and |, and ~ turns one round. The empty key selects all. */
class QMF_EXPORT QMailFolderKey
{
public:
    QMailFolderKey();
    QMailFolderKey(const QMailFolderKey &other);
    QMailFolderKey &operator=(const QMailFolderKey &other);
    ~QMailFolderKey();

    QMailFolderKey operator~() const;
    QMailFolderKey operator&(const QMailFolderKey &other) const;
    QMailFolderKey operator|(const QMailFolderKey &other) const;
    const QMailFolderKey &operator&=(const QMailFolderKey &other);
    const QMailFolderKey &operator|=(const QMailFolderKey &other);
    bool operator==(const QMailFolderKey &other) const;
    bool operator!=(const QMailFolderKey &other) const;

    bool isEmpty() const;
    bool isNonMatching() const;
    bool isNegated() const;
    static QMailFolderKey nonMatchingKey();

    static QMailFolderKey id(const QMailFolderId &id,
        QMailDataComparator::EqualityComparator comparator = QMailDataComparator::Equal);
    static QMailFolderKey id(const QMailFolderIdList &ids,
        QMailDataComparator::InclusionComparator comparator = QMailDataComparator::Includes);
    static QMailFolderKey parentFolderId(const QMailFolderId &id,
        QMailDataComparator::EqualityComparator comparator = QMailDataComparator::Equal);
    static QMailFolderKey parentFolderId(const QMailFolderIdList &ids,
        QMailDataComparator::InclusionComparator comparator = QMailDataComparator::Includes);
    static QMailFolderKey parentAccountId(const QMailAccountId &id,
        QMailDataComparator::EqualityComparator comparator = QMailDataComparator::Equal);
    static QMailFolderKey parentAccountId(const QMailAccountIdList &ids,
        QMailDataComparator::InclusionComparator comparator = QMailDataComparator::Includes);
    static QMailFolderKey displayName(
        const QString &name, QMailDataComparator::EqualityComparator comparator = QMailDataComparator::Equal);
    static QMailFolderKey path(
        const QString &path, QMailDataComparator::EqualityComparator comparator = QMailDataComparator::Equal);
    static QMailFolderKey status(
        quint64 mask, QMailDataComparator::InclusionComparator comparator = QMailDataComparator::Includes);
    static QMailFolderKey ancestorFolderIds(const QMailFolderId &id,
        QMailDataComparator::InclusionComparator comparator = QMailDataComparator::Includes);

private:
    friend struct MailValueAccess;
    explicit QMailFolderKey(const MailKeyNode *node);
    QExplicitlySharedDataPointer<const MailKeyNode> d;
};
