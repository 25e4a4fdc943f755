// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascontactsitem.h"

#include <QtContacts/QContactDetail>

#include <QVariant>
#include <QVector>

/** One value of an item and where a detail keeps it. */
struct ContactDetailField
{
    int field;
    /** An empty text or list for "not there". */
    QVariant (*get)(const EasContactsItem &item);
    void (*set)(EasContactsItem &item, const QVariant &value);
};

/**
 * One detail of a contact: its type, what tells it from others of that type, and the fields of the item that
 * it holds. Writer and reader go by the same table, so that what goes in comes out.
 */
struct ContactDetailShape
{
    /** What is logged if the detail cannot be saved. */
    const char *failure;
    QtContacts::QContactDetail::DetailType type;
    /** The detail's URI; null for the plain one of its type. */
    const char *uri;
    /** What else the detail says: its context, its subtype, its name. */
    QMap<int, QVariant> marks;
    QVector<ContactDetailField> fields;

    /** Nothing to write if all fields are empty. */
    bool isEmpty(const EasContactsItem &item) const;
    QtContacts::QContactDetail toDetail(const EasContactsItem &item) const;
    /** Whether the detail is of this shape, URI and marks included. */
    bool fits(const QtContacts::QContactDetail &detail) const;
    void toItem(const QtContacts::QContactDetail &detail, EasContactsItem &item) const;
};

namespace ContactDetails {

/** All shapes; those of one type stand together, in the order of their slots. */
const QVector<ContactDetailShape> &shapes();

} // namespace ContactDetails
