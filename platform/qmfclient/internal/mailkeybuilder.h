// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "internal/mailkeynode.h"

#include <qmaildatacomparator.h>

#include <QDateTime>
#include <QStringList>

/** Makes the conditions that the two key classes share. */
namespace MailKeyBuilder {

MailKeyNode::Comparison comparison(QMailDataComparator::EqualityComparator comparator);
MailKeyNode::Comparison comparison(QMailDataComparator::InclusionComparator comparator);
MailKeyNode::Comparison comparison(QMailDataComparator::RelationComparator comparator);
MailKeyNode::Comparison comparison(QMailDataComparator::PresenceComparator comparator);

template <typename Id>
const MailKeyNode *number(
    MailKeyNode::Property property, const Id &id, QMailDataComparator::EqualityComparator comparator)
{
    return new MailKeyNode(property, comparison(comparator), { qlonglong(id.toULongLong()) });
}

template <typename Id>
const MailKeyNode *numbers(
    MailKeyNode::Property property, const QList<Id> &ids, QMailDataComparator::InclusionComparator comparator)
{
    QVariantList values;
    values.reserve(ids.size());
    for (const Id &id : ids)
        values.append(qlonglong(id.toULongLong()));
    return new MailKeyNode(property, comparison(comparator), values);
}

const MailKeyNode *text(
    MailKeyNode::Property property, const QString &text, QMailDataComparator::EqualityComparator comparator);
const MailKeyNode *texts(MailKeyNode::Property property, const QStringList &texts,
    QMailDataComparator::InclusionComparator comparator);

template <typename Comparator> const MailKeyNode *mask(quint64 mask, Comparator comparator)
{
    return new MailKeyNode(MailKeyNode::Status, comparison(comparator), { qlonglong(mask) });
}

template <typename Comparator>
const MailKeyNode *time(MailKeyNode::Property property, const QDateTime &time, Comparator comparator)
{
    const QVariant value = time.isValid() ? QVariant(time.toMSecsSinceEpoch()) : QVariant();
    return new MailKeyNode(property, comparison(comparator), { value });
}

} // namespace MailKeyBuilder
