// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QExplicitlySharedDataPointer>
#include <QList>
#include <QSharedData>
#include <QVariant>

/** One node of a key: a condition on a property, or a combination of keys. Never changes once it is made. */
class MailKeyNode : public QSharedData
{
public:
    enum Kind { Everything, Nothing, Condition, Not, And, Or };
    enum Property {
        Id,
        ParentAccountId,
        ParentFolderId,
        PreviousParentFolderId,
        AncestorFolderIds,
        ServerUid,
        Status,
        TimeStamp,
        ReceptionTimeStamp,
        CustomField,
        DisplayName,
        Path
    };
    enum Comparison {
        Equal,
        NotEqual,
        Includes,
        Excludes,
        LessThan,
        LessThanEqual,
        GreaterThan,
        GreaterThanEqual,
        Present,
        Absent
    };
    typedef QExplicitlySharedDataPointer<const MailKeyNode> Pointer;

    explicit MailKeyNode(Kind kind = Everything)
        : kind(kind)
    {
    }
    MailKeyNode(Property property, Comparison comparison, const QVariantList &values)
        : kind(Condition)
        , property(property)
        , comparison(comparison)
        , values(values)
    {
    }

    static const MailKeyNode *negated(const Pointer &key);
    static const MailKeyNode *both(const Pointer &left, const Pointer &right);
    static const MailKeyNode *either(const Pointer &left, const Pointer &right);
    bool operator==(const MailKeyNode &other) const;

    Kind kind;
    Property property = Id;
    Comparison comparison = Equal;
    QVariantList values;
    QList<Pointer> children;
};
