// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QtContacts/QContactDetail>
#include <QtContacts/QContactPhoneNumber>

#include <QVector>

/** A text of a contact that has an option of its own, and the detail that keeps it. */
struct ContactTextField
{
    /** The context of a detail that has none. */
    static constexpr int AnyContext = -1;

    const char *option;
    QtContacts::QContactDetail::DetailType type;
    int field;
    /** Which of the details of the type is meant. */
    int context = AnyContext;
    /** Whether the detail keeps a list, of which the option sets the only entry. */
    bool isList = false;
};

/** A kind of phone number that has an option of its own and a field on the server. */
struct ContactPhoneField
{
    const char *option;
    QtContacts::QContactDetail::DetailContext context;
    QtContacts::QContactPhoneNumber::SubType type;
};

/** The fields of a contact that the command line can set one by one. */
namespace ContactFieldTable {

const QVector<ContactTextField> &texts();
const QVector<ContactPhoneField> &phones();

} // namespace ContactFieldTable
