// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/contactfieldtable.h"

#include <QtContacts/QContactAddress>
#include <QtContacts/QContactFamily>
#include <QtContacts/QContactName>
#include <QtContacts/QContactNickname>
#include <QtContacts/QContactNote>
#include <QtContacts/QContactOrganization>
#include <QtContacts/QContactUrl>

QTCONTACTS_USE_NAMESPACE

const QVector<ContactTextField> &ContactFieldTable::texts()
{
    static const QVector<ContactTextField> table {
        { "first-name", QContactName::Type, QContactName::FieldFirstName },
        { "middle-name", QContactName::Type, QContactName::FieldMiddleName },
        { "last-name", QContactName::Type, QContactName::FieldLastName },
        { "suffix", QContactName::Type, QContactName::FieldSuffix },
        { "nickname", QContactNickname::Type, QContactNickname::FieldNickname },
        { "company", QContactOrganization::Type, QContactOrganization::FieldName },
        { "title", QContactOrganization::Type, QContactOrganization::FieldTitle },
        { "department", QContactOrganization::Type, QContactOrganization::FieldDepartment,
            ContactTextField::AnyContext, true },
        { "office", QContactOrganization::Type, QContactOrganization::FieldLocation },
        { "assistant", QContactOrganization::Type, QContactOrganization::FieldAssistantName },
        { "spouse", QContactFamily::Type, QContactFamily::FieldSpouse },
        { "web", QContactUrl::Type, QContactUrl::FieldUrl },
        { "note", QContactNote::Type, QContactNote::FieldNote },
        { "home-street", QContactAddress::Type, QContactAddress::FieldStreet, QContactDetail::ContextHome },
        { "home-postcode", QContactAddress::Type, QContactAddress::FieldPostcode,
            QContactDetail::ContextHome },
        { "home-city", QContactAddress::Type, QContactAddress::FieldLocality, QContactDetail::ContextHome },
        { "home-region", QContactAddress::Type, QContactAddress::FieldRegion, QContactDetail::ContextHome },
        { "home-country", QContactAddress::Type, QContactAddress::FieldCountry, QContactDetail::ContextHome },
        { "work-street", QContactAddress::Type, QContactAddress::FieldStreet, QContactDetail::ContextWork },
        { "work-postcode", QContactAddress::Type, QContactAddress::FieldPostcode,
            QContactDetail::ContextWork },
        { "work-city", QContactAddress::Type, QContactAddress::FieldLocality, QContactDetail::ContextWork },
        { "work-region", QContactAddress::Type, QContactAddress::FieldRegion, QContactDetail::ContextWork },
        { "work-country", QContactAddress::Type, QContactAddress::FieldCountry, QContactDetail::ContextWork },
    };
    return table;
}

const QVector<ContactPhoneField> &ContactFieldTable::phones()
{
    static const QVector<ContactPhoneField> table {
        { "mobile", QContactDetail::ContextHome, QContactPhoneNumber::SubTypeMobile },
        { "home-phone", QContactDetail::ContextHome, QContactPhoneNumber::SubTypeLandline },
        { "home-phone2", QContactDetail::ContextOther, QContactPhoneNumber::SubTypeLandline },
        { "work-phone", QContactDetail::ContextWork, QContactPhoneNumber::SubTypeLandline },
        { "work-phone2", QContactDetail::ContextWork, QContactPhoneNumber::SubTypeMobile },
        { "fax", QContactDetail::ContextWork, QContactPhoneNumber::SubTypeFax },
        { "home-fax", QContactDetail::ContextHome, QContactPhoneNumber::SubTypeFax },
        { "pager", QContactDetail::ContextHome, QContactPhoneNumber::SubTypePager },
        { "car-phone", QContactDetail::ContextHome, QContactPhoneNumber::SubTypeCar },
    };
    return table;
}
