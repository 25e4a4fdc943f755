// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactdetails.h"

#include "storages/contacts/contactdetailuris.h"

#include <QtContacts/QContactAddress>
#include <QtContacts/QContactEmailAddress>
#include <QtContacts/QContactExtendedDetail>
#include <QtContacts/QContactFamily>
#include <QtContacts/QContactName>
#include <QtContacts/QContactNickname>
#include <QtContacts/QContactNote>
#include <QtContacts/QContactOnlineAccount>
#include <QtContacts/QContactOrganization>
#include <QtContacts/QContactUrl>

#include <algorithm>

QTCONTACTS_USE_NAMESPACE

namespace {

using Contact = EasContactsItem;

template <QString (Contact::*get)() const, void (Contact::*set)(const QString &)>
ContactDetailField text(int field)
{
    return { field, [](const Contact &item) { return QVariant((item.*get)()); },
        [](Contact &item, const QVariant &value) {
            (item.*set)(value.toString());
        } };
}

/** A text that its detail keeps as a list. */
template <QString (Contact::*get)() const, void (Contact::*set)(const QString &)>
ContactDetailField listOfOne(int field)
{
    return { field,
        [](const Contact &item) {
            return QVariant((item.*get)().isEmpty() ? QStringList() : QStringList((item.*get)()));
        },
        [](Contact &item, const QVariant &value) {
            (item.*set)(value.toStringList().value(0));
        } };
}

template <QStringList (Contact::*get)() const, void (Contact::*set)(const QStringList &)>
ContactDetailField texts(int field)
{
    return { field, [](const Contact &item) { return QVariant((item.*get)()); },
        [](Contact &item, const QVariant &value) {
            (item.*set)(value.toStringList());
        } };
}

ContactDetailField note()
{
    return { QContactNote::FieldNote, [](const Contact &item) { return QVariant(item.body().data()); },
        [](Contact &item, const QVariant &value) {
            EasBodyContainer body;
            body.setType(EasBodyContainer::PlainTextBodyType);
            body.setData(value.toString());
            item.setBody(body);
        } };
}

QMap<int, QVariant> context(int value)
{
    return { { QContactDetail::FieldContext, QVariant::fromValue(QList<int> { value }) } };
}

/** QVariant compares values of types that it does not know by their address. */
bool isSame(const QVariant &one, const QVariant &other)
{
    if (one.userType() == qMetaTypeId<QList<int>>())
        return one.value<QList<int>>() == other.value<QList<int>>();
    return one == other;
}

bool isEmptyValue(const QVariant &value)
{
    return value.type() == QVariant::StringList ? value.toStringList().isEmpty() : value.toString().isEmpty();
}

template <QString (Contact::*get)() const, void (Contact::*set)(const QString &)>
ContactDetailShape email(const char *failure, const char *uri)
{
    return { failure, QContactEmailAddress::Type, uri, {},
        { text<get, set>(QContactEmailAddress::FieldEmailAddress) } };
}

template <QString (Contact::*get)() const, void (Contact::*set)(const QString &)>
ContactDetailShape messaging(const char *failure, const char *uri)
{
    const QList<int> subTypes { QContactOnlineAccount::SubTypeImpp };
    return { failure, QContactOnlineAccount::Type, uri,
        { { QContactOnlineAccount::FieldSubTypes, QVariant::fromValue(subTypes) } },
        { text<get, set>(QContactOnlineAccount::FieldAccountUri) } };
}

template <QString (Contact::*get)() const, void (Contact::*set)(const QString &)>
ContactDetailShape extended(const char *name, const char *failure)
{
    return { failure, QContactExtendedDetail::Type, nullptr,
        { { QContactExtendedDetail::FieldName, QString::fromLatin1(name) } },
        { text<get, set>(QContactExtendedDetail::FieldData) } };
}

QVector<ContactDetailShape> namesAndOrganizations()
{
    return {
        { "Failed to save name ", QContactName::Type, nullptr, {},
            { text<&Contact::firstName, &Contact::setFirstName>(QContactName::FieldFirstName),
                text<&Contact::lastName, &Contact::setLastName>(QContactName::FieldLastName),
                text<&Contact::middleName, &Contact::setMiddleName>(QContactName::FieldMiddleName),
                text<&Contact::suffix, &Contact::setSuffix>(QContactName::FieldSuffix) } },
        { "Failed to save yomi name ", QContactName::Type, ContactDetailUris::yomiName, {},
            { text<&Contact::yomiFirstName, &Contact::setYomiFirstName>(QContactName::FieldFirstName),
                text<&Contact::yomiLastName, &Contact::setYomiLastName>(QContactName::FieldLastName) } },
        { "Failed to save nick name ", QContactNickname::Type, nullptr, {},
            { text<&Contact::nickName, &Contact::setNickName>(QContactNickname::FieldNickname) } },
        { "Failed to save alias ", QContactNickname::Type, ContactDetailUris::alias, {},
            { text<&Contact::alias, &Contact::setAlias>(QContactNickname::FieldNickname) } },
        { "Failed to save organization ", QContactOrganization::Type, nullptr, {},
            { text<&Contact::companyName, &Contact::setCompanyName>(QContactOrganization::FieldName),
                text<&Contact::jobTitle, &Contact::setJobTitle>(QContactOrganization::FieldTitle),
                listOfOne<&Contact::department, &Contact::setDepartment>(
                    QContactOrganization::FieldDepartment),
                text<&Contact::assistantName, &Contact::setAssistantName>(
                    QContactOrganization::FieldAssistantName),
                text<&Contact::officeLocation, &Contact::setOfficeLocation>(
                    QContactOrganization::FieldLocation) } },
        { "Failed to save yomi company name ", QContactOrganization::Type, ContactDetailUris::yomiCompany, {},
            { text<&Contact::yomiCompanyName, &Contact::setYomiCompanyName>(
                QContactOrganization::FieldName) } },
        { "Failed to save family ", QContactFamily::Type, nullptr, {},
            { text<&Contact::spouse, &Contact::setSpouse>(QContactFamily::FieldSpouse),
                texts<&Contact::children, &Contact::setChildren>(QContactFamily::FieldChildren) } },
    };
}

QVector<ContactDetailShape> addresses()
{
    return {
        { "Failed to save business address ", QContactAddress::Type, nullptr,
            context(QContactDetail::ContextWork),
            { text<&Contact::businessAddressCity, &Contact::setBusinessAddressCity>(
                  QContactAddress::FieldLocality),
                text<&Contact::businessAddressCountry, &Contact::setBusinessAddressCountry>(
                    QContactAddress::FieldCountry),
                text<&Contact::businessAddressPostalCode, &Contact::setBusinessAddressPostalCode>(
                    QContactAddress::FieldPostcode),
                text<&Contact::businessAddressStreet, &Contact::setBusinessAddressStreet>(
                    QContactAddress::FieldStreet),
                text<&Contact::businessAddressState, &Contact::setBusinessAddressState>(
                    QContactAddress::FieldRegion) } },
        { "Failed to save home address ", QContactAddress::Type, nullptr,
            context(QContactDetail::ContextHome),
            { text<&Contact::homeAddressCity, &Contact::setHomeAddressCity>(QContactAddress::FieldLocality),
                text<&Contact::homeAddressCountry, &Contact::setHomeAddressCountry>(
                    QContactAddress::FieldCountry),
                text<&Contact::homeAddressPostalCode, &Contact::setHomeAddressPostalCode>(
                    QContactAddress::FieldPostcode),
                text<&Contact::homeAddressStreet, &Contact::setHomeAddressStreet>(
                    QContactAddress::FieldStreet),
                text<&Contact::homeAddressState, &Contact::setHomeAddressState>(
                    QContactAddress::FieldRegion) } },
        { "Failed to save other address ", QContactAddress::Type, nullptr,
            context(QContactDetail::ContextOther),
            { text<&Contact::otherAddressCity, &Contact::setOtherAddressCity>(QContactAddress::FieldLocality),
                text<&Contact::otherAddressCountry, &Contact::setOtherAddressCountry>(
                    QContactAddress::FieldCountry),
                text<&Contact::otherAddressPostalCode, &Contact::setOtherAddressPostalCode>(
                    QContactAddress::FieldPostcode),
                text<&Contact::otherAddressStreet, &Contact::setOtherAddressStreet>(
                    QContactAddress::FieldStreet),
                text<&Contact::otherAddressState, &Contact::setOtherAddressState>(
                    QContactAddress::FieldRegion) } },
    };
}

QVector<ContactDetailShape> otherTexts()
{
    return {
        { "Failed to save note ", QContactNote::Type, nullptr, {}, { note() } },
        { "Failed to save web page ", QContactUrl::Type, nullptr, {},
            { text<&Contact::webPage, &Contact::setWebPage>(QContactUrl::FieldUrl) } },
        email<&Contact::email1Address, &Contact::setEmail1Address>("Failed to save email address ", nullptr),
        email<&Contact::email2Address, &Contact::setEmail2Address>(
            "Failed to save email address 2 ", ContactDetailUris::secondEmail),
        email<&Contact::email3Address, &Contact::setEmail3Address>(
            "Failed to save email address 3 ", ContactDetailUris::thirdEmail),
        messaging<&Contact::imAddress, &Contact::setImAddress>("Failed to save IM address ", nullptr),
        messaging<&Contact::imAddress2, &Contact::setImAddress2>(
            "Failed to save IM address 2 ", ContactDetailUris::secondMessaging),
        messaging<&Contact::imAddress3, &Contact::setImAddress3>(
            "Failed to save IM address 3 ", ContactDetailUris::thirdMessaging),
        extended<&Contact::title, &Contact::setTitle>("Title", "Failed to save Title "),
        extended<&Contact::customerId, &Contact::setCustomerId>("CustomerId", "Failed to save CustomerId "),
        extended<&Contact::governmentId, &Contact::setGovernmentId>(
            "GovernmentId", "Failed to save GovernmentId "),
        extended<&Contact::managerName, &Contact::setManagerName>(
            "ManagerName", "Failed to save ManagerName "),
        extended<&Contact::accountName, &Contact::setAccountName>(
            "AccountName", "Failed to save AccountName "),
        extended<&Contact::mms, &Contact::setMms>("MMS", "Failed to save MMS "),
    };
}

} // namespace

bool ContactDetailShape::isEmpty(const EasContactsItem &item) const
{
    return std::all_of(fields.cbegin(), fields.cend(),
        [&item](const ContactDetailField &field) { return isEmptyValue(field.get(item)); });
}

QContactDetail ContactDetailShape::toDetail(const EasContactsItem &item) const
{
    QContactDetail detail(type);
    for (const ContactDetailField &field : fields) {
        const QVariant value = field.get(item);
        if (!isEmptyValue(value))
            detail.setValue(field.field, value);
    }
    for (auto it = marks.cbegin(); it != marks.cend(); ++it)
        detail.setValue(it.key(), it.value());
    if (uri)
        detail.setDetailUri(QString::fromLatin1(uri));
    return detail;
}

bool ContactDetailShape::fits(const QContactDetail &detail) const
{
    if (detail.type() != type || detail.detailUri() != QString::fromLatin1(uri))
        return false;
    for (auto it = marks.cbegin(); it != marks.cend(); ++it) {
        if (!isSame(it.value(), detail.value(it.key())))
            return false;
    }
    return true;
}

void ContactDetailShape::toItem(const QContactDetail &detail, EasContactsItem &item) const
{
    for (const ContactDetailField &field : fields)
        field.set(item, detail.value(field.field));
}

const QVector<ContactDetailShape> &ContactDetails::shapes()
{
    static const QVector<ContactDetailShape> all = namesAndOrganizations() + addresses() + otherTexts();
    return all;
}
