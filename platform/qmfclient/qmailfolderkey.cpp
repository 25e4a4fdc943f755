// SPDX-License-Identifier: LGPL-2.1-or-later
#include <qmailfolderkey.h>

#include "internal/mailkeybuilder.h"
#include "internal/mailkeynode.h"

using namespace QMailDataComparator;

QMailFolderKey::QMailFolderKey()
    : d(new MailKeyNode)
{
}

QMailFolderKey::QMailFolderKey(const MailKeyNode *node)
    : d(node)
{
}

QMailFolderKey::QMailFolderKey(const QMailFolderKey &other) = default;
QMailFolderKey &QMailFolderKey::operator=(const QMailFolderKey &other) = default;
QMailFolderKey::~QMailFolderKey() = default;

QMailFolderKey QMailFolderKey::operator~() const
{
    return QMailFolderKey(MailKeyNode::negated(d));
}

QMailFolderKey QMailFolderKey::operator&(const QMailFolderKey &other) const
{
    return QMailFolderKey(MailKeyNode::both(d, other.d));
}

QMailFolderKey QMailFolderKey::operator|(const QMailFolderKey &other) const
{
    return QMailFolderKey(MailKeyNode::either(d, other.d));
}

const QMailFolderKey &QMailFolderKey::operator&=(const QMailFolderKey &other)
{
    return *this = *this & other;
}

const QMailFolderKey &QMailFolderKey::operator|=(const QMailFolderKey &other)
{
    return *this = *this | other;
}

bool QMailFolderKey::operator==(const QMailFolderKey &other) const
{
    return *d == *other.d;
}

bool QMailFolderKey::operator!=(const QMailFolderKey &other) const
{
    return !(*this == other);
}

bool QMailFolderKey::isEmpty() const
{
    return d->kind == MailKeyNode::Everything;
}

bool QMailFolderKey::isNonMatching() const
{
    return d->kind == MailKeyNode::Nothing;
}

bool QMailFolderKey::isNegated() const
{
    return d->kind == MailKeyNode::Not;
}

QMailFolderKey QMailFolderKey::nonMatchingKey()
{
    return QMailFolderKey(new MailKeyNode(MailKeyNode::Nothing));
}

QMailFolderKey QMailFolderKey::id(const QMailFolderId &id, EqualityComparator comparator)
{
    return QMailFolderKey(MailKeyBuilder::number(MailKeyNode::Id, id, comparator));
}

QMailFolderKey QMailFolderKey::id(const QMailFolderIdList &ids, InclusionComparator comparator)
{
    return QMailFolderKey(MailKeyBuilder::numbers(MailKeyNode::Id, ids, comparator));
}

QMailFolderKey QMailFolderKey::parentFolderId(const QMailFolderId &id, EqualityComparator comparator)
{
    return QMailFolderKey(MailKeyBuilder::number(MailKeyNode::ParentFolderId, id, comparator));
}

QMailFolderKey QMailFolderKey::parentFolderId(const QMailFolderIdList &ids, InclusionComparator comparator)
{
    return QMailFolderKey(MailKeyBuilder::numbers(MailKeyNode::ParentFolderId, ids, comparator));
}

QMailFolderKey QMailFolderKey::parentAccountId(const QMailAccountId &id, EqualityComparator comparator)
{
    return QMailFolderKey(MailKeyBuilder::number(MailKeyNode::ParentAccountId, id, comparator));
}

QMailFolderKey QMailFolderKey::parentAccountId(const QMailAccountIdList &ids, InclusionComparator comparator)
{
    return QMailFolderKey(MailKeyBuilder::numbers(MailKeyNode::ParentAccountId, ids, comparator));
}

QMailFolderKey QMailFolderKey::displayName(const QString &name, EqualityComparator comparator)
{
    return QMailFolderKey(MailKeyBuilder::text(MailKeyNode::DisplayName, name, comparator));
}

QMailFolderKey QMailFolderKey::path(const QString &path, EqualityComparator comparator)
{
    return QMailFolderKey(MailKeyBuilder::text(MailKeyNode::Path, path, comparator));
}

QMailFolderKey QMailFolderKey::status(quint64 mask, InclusionComparator comparator)
{
    return QMailFolderKey(MailKeyBuilder::mask(mask, comparator));
}

QMailFolderKey QMailFolderKey::ancestorFolderIds(const QMailFolderId &id, InclusionComparator comparator)
{
    return QMailFolderKey(
        MailKeyBuilder::numbers(MailKeyNode::AncestorFolderIds, QMailFolderIdList { id }, comparator));
}
