// SPDX-License-Identifier: LGPL-2.1-or-later
#include <qmailmessagekey.h>

#include "internal/mailkeybuilder.h"
#include "internal/mailkeynode.h"

using namespace QMailDataComparator;

QMailMessageKey::QMailMessageKey()
    : d(new MailKeyNode)
{
}

QMailMessageKey::QMailMessageKey(const MailKeyNode *node)
    : d(node)
{
}

QMailMessageKey::QMailMessageKey(const QMailMessageKey &other) = default;
QMailMessageKey &QMailMessageKey::operator=(const QMailMessageKey &other) = default;
QMailMessageKey::~QMailMessageKey() = default;

QMailMessageKey QMailMessageKey::operator~() const
{
    return QMailMessageKey(MailKeyNode::negated(d));
}

QMailMessageKey QMailMessageKey::operator&(const QMailMessageKey &other) const
{
    return QMailMessageKey(MailKeyNode::both(d, other.d));
}

QMailMessageKey QMailMessageKey::operator|(const QMailMessageKey &other) const
{
    return QMailMessageKey(MailKeyNode::either(d, other.d));
}

const QMailMessageKey &QMailMessageKey::operator&=(const QMailMessageKey &other)
{
    return *this = *this & other;
}

const QMailMessageKey &QMailMessageKey::operator|=(const QMailMessageKey &other)
{
    return *this = *this | other;
}

bool QMailMessageKey::operator==(const QMailMessageKey &other) const
{
    return *d == *other.d;
}

bool QMailMessageKey::operator!=(const QMailMessageKey &other) const
{
    return !(*this == other);
}

bool QMailMessageKey::isEmpty() const
{
    return d->kind == MailKeyNode::Everything;
}

bool QMailMessageKey::isNonMatching() const
{
    return d->kind == MailKeyNode::Nothing;
}

bool QMailMessageKey::isNegated() const
{
    return d->kind == MailKeyNode::Not;
}

QMailMessageKey QMailMessageKey::nonMatchingKey()
{
    return QMailMessageKey(new MailKeyNode(MailKeyNode::Nothing));
}

QMailMessageKey QMailMessageKey::id(const QMailMessageId &id, EqualityComparator comparator)
{
    return QMailMessageKey(MailKeyBuilder::number(MailKeyNode::Id, id, comparator));
}

QMailMessageKey QMailMessageKey::id(const QMailMessageIdList &ids, InclusionComparator comparator)
{
    return QMailMessageKey(MailKeyBuilder::numbers(MailKeyNode::Id, ids, comparator));
}

QMailMessageKey QMailMessageKey::parentAccountId(const QMailAccountId &id, EqualityComparator comparator)
{
    return QMailMessageKey(MailKeyBuilder::number(MailKeyNode::ParentAccountId, id, comparator));
}

QMailMessageKey QMailMessageKey::parentAccountId(
    const QMailAccountIdList &ids, InclusionComparator comparator)
{
    return QMailMessageKey(MailKeyBuilder::numbers(MailKeyNode::ParentAccountId, ids, comparator));
}

QMailMessageKey QMailMessageKey::parentFolderId(const QMailFolderId &id, EqualityComparator comparator)
{
    return QMailMessageKey(MailKeyBuilder::number(MailKeyNode::ParentFolderId, id, comparator));
}

QMailMessageKey QMailMessageKey::parentFolderId(const QMailFolderIdList &ids, InclusionComparator comparator)
{
    return QMailMessageKey(MailKeyBuilder::numbers(MailKeyNode::ParentFolderId, ids, comparator));
}

QMailMessageKey QMailMessageKey::previousParentFolderId(
    const QMailFolderId &id, EqualityComparator comparator)
{
    return QMailMessageKey(MailKeyBuilder::number(MailKeyNode::PreviousParentFolderId, id, comparator));
}

QMailMessageKey QMailMessageKey::serverUid(const QString &uid, EqualityComparator comparator)
{
    return QMailMessageKey(MailKeyBuilder::text(MailKeyNode::ServerUid, uid, comparator));
}

QMailMessageKey QMailMessageKey::serverUid(const QStringList &uids, InclusionComparator comparator)
{
    return QMailMessageKey(MailKeyBuilder::texts(MailKeyNode::ServerUid, uids, comparator));
}

QMailMessageKey QMailMessageKey::status(quint64 mask, InclusionComparator comparator)
{
    return QMailMessageKey(MailKeyBuilder::mask(mask, comparator));
}

QMailMessageKey QMailMessageKey::status(quint64 mask, EqualityComparator comparator)
{
    return QMailMessageKey(MailKeyBuilder::mask(mask, comparator));
}

QMailMessageKey QMailMessageKey::timeStamp(const QDateTime &time, EqualityComparator comparator)
{
    return QMailMessageKey(MailKeyBuilder::time(MailKeyNode::TimeStamp, time, comparator));
}

QMailMessageKey QMailMessageKey::timeStamp(const QDateTime &time, RelationComparator comparator)
{
    return QMailMessageKey(MailKeyBuilder::time(MailKeyNode::TimeStamp, time, comparator));
}

QMailMessageKey QMailMessageKey::receptionTimeStamp(const QDateTime &time, RelationComparator comparator)
{
    return QMailMessageKey(MailKeyBuilder::time(MailKeyNode::ReceptionTimeStamp, time, comparator));
}

QMailMessageKey QMailMessageKey::customField(const QString &name, PresenceComparator comparator)
{
    return QMailMessageKey(
        new MailKeyNode(MailKeyNode::CustomField, MailKeyBuilder::comparison(comparator), { name }));
}

QMailMessageKey QMailMessageKey::customField(
    const QString &name, const QString &value, EqualityComparator comparator)
{
    return QMailMessageKey(
        new MailKeyNode(MailKeyNode::CustomField, MailKeyBuilder::comparison(comparator), { name, value }));
}
