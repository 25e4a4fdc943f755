// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/mailkeybuilder.h"

using namespace QMailDataComparator;

namespace MailKeyBuilder {

MailKeyNode::Comparison comparison(EqualityComparator comparator)
{
    return comparator == Equal ? MailKeyNode::Equal : MailKeyNode::NotEqual;
}

MailKeyNode::Comparison comparison(InclusionComparator comparator)
{
    return comparator == Includes ? MailKeyNode::Includes : MailKeyNode::Excludes;
}

MailKeyNode::Comparison comparison(RelationComparator comparator)
{
    switch (comparator) {
    case LessThan:
        return MailKeyNode::LessThan;
    case LessThanEqual:
        return MailKeyNode::LessThanEqual;
    case GreaterThan:
        return MailKeyNode::GreaterThan;
    case GreaterThanEqual:
        break;
    }
    return MailKeyNode::GreaterThanEqual;
}

MailKeyNode::Comparison comparison(PresenceComparator comparator)
{
    return comparator == Present ? MailKeyNode::Present : MailKeyNode::Absent;
}

const MailKeyNode *text(MailKeyNode::Property property, const QString &text, EqualityComparator comparator)
{
    return new MailKeyNode(property, comparison(comparator), { text.isNull() ? QLatin1String("") : text });
}

const MailKeyNode *texts(
    MailKeyNode::Property property, const QStringList &texts, InclusionComparator comparator)
{
    QVariantList values;
    for (const QString &text : texts)
        values.append(text.isNull() ? QLatin1String("") : text);
    return new MailKeyNode(property, comparison(comparator), values);
}

} // namespace MailKeyBuilder
