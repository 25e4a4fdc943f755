// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascontactsitem.h"

#include <QtContacts/QContact>
#include <QtContacts/QContactId>
#include <QtContacts/QContactPhoneNumber>

#include <QVector>

#include <functional>

/**
 * The thirteen numbers of an item and the phone details of a contact, both ways.
 *
 * A field has one context and one subtype. Details that the user made need not have them so exactly; they
 * find a field by rules that are the same in both directions.
 */
class ContactPhoneNumbers
{
public:
    /** Subtypes that no platform has a number for. */
    enum SubType { SubTypeCompanyMain = 1000, SubTypeRadio = 1001 };

    /**
     * Writes the item's numbers into the contact's phone details: into those that are there as far as they
     * fit, so that what else a detail says stays, and into new ones. Details without a number are removed.
     */
    static void easPhoneNumbersToContacts(QtContacts::QContact &contact, const EasContactsItem &item);

    /** Reads the contact's numbers into the item; what finds no free field is logged. */
    static void processPhoneNumbers(const QtContacts::QContact &contact, EasContactsItem &item);

private:
    using Numbers = QVector<QtContacts::QContactPhoneNumber>;
    /** Whether a field may be taken by a detail that does not fit exactly. */
    using IsOpen = std::function<bool(int field)>;

    /** The field of each detail, -1 for none; each field once. */
    static QVector<int> assign(const Numbers &details, const IsOpen &isOpen);
    static void updatePhoneNumber(QtContacts::QContact &contact, QtContacts::QContactPhoneNumber detail,
        const QString &number, int context, int subType);
};
