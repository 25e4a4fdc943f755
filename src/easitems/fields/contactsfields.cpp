// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/fields/contactsfields.h"

#include "easitems/fields/sharedfields.h"

using namespace Wbxml;

namespace {

constexpr char NoInt[] = "Cannot convert to int:";
constexpr char NoBool[] = "Cannot convert to bool: ";

/** A change that leaves the picture out leaves it to the server; that it was removed has to be said. */
void givePicture(
    const EasContactsItem &item, Token tag, WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion)
{
    if (!item.picture().isEmpty())
        encoder.appendTextElement(tag, item.picture());
    else if (item.changedFields().contains(tag.key()))
        encoder.appendElement(tag);
}

} // namespace

namespace ContactsFields {

const FieldTable<EasContactsItem> &itemFields()
{
    using Contact = EasContactsItem;
    using Kind = Fields<Contact>;
    // In the order of the published table, which is the order on the wire
    static const FieldTable<Contact> table {
        Kind::text<&Contact::anniversary, &Contact::setAnniversary>(Contacts::Anniversary),
        Kind::text<&Contact::assistantName, &Contact::setAssistantName>(Contacts::AssistantName),
        Kind::text<&Contact::assistantPhoneNumber, &Contact::setAssistantPhoneNumber>(
            Contacts::AssistantPhoneNumber),
        Kind::text<&Contact::birthday, &Contact::setBirthday>(Contacts::Birthday),
        Kind::text<&Contact::business2PhoneNumber, &Contact::setBusiness2PhoneNumber>(
            Contacts::Business2PhoneNumber),
        Kind::text<&Contact::businessAddressCity, &Contact::setBusinessAddressCity>(
            Contacts::BusinessAddressCity),
        Kind::text<&Contact::businessAddressCountry, &Contact::setBusinessAddressCountry>(
            Contacts::BusinessAddressCountry),
        Kind::text<&Contact::businessAddressPostalCode, &Contact::setBusinessAddressPostalCode>(
            Contacts::BusinessAddressPostalCode),
        Kind::text<&Contact::businessAddressState, &Contact::setBusinessAddressState>(
            Contacts::BusinessAddressState),
        Kind::text<&Contact::businessAddressStreet, &Contact::setBusinessAddressStreet>(
            Contacts::BusinessAddressStreet),
        Kind::text<&Contact::businessFaxNumber, &Contact::setBusinessFaxNumber>(Contacts::BusinessFaxNumber),
        Kind::text<&Contact::businessPhoneNumber, &Contact::setBusinessPhoneNumber>(
            Contacts::BusinessPhoneNumber),
        Kind::text<&Contact::carPhoneNumber, &Contact::setCarPhoneNumber>(Contacts::CarPhoneNumber),
        Kind::texts<&Contact::categories, Contacts::Category>(Contacts::Categories),
        Kind::texts<&Contact::children, Contacts::Child>(Contacts::Children),
        Kind::text<&Contact::companyName, &Contact::setCompanyName>(Contacts::CompanyName),
        Kind::text<&Contact::department, &Contact::setDepartment>(Contacts::Department),
        Kind::text<&Contact::email1Address, &Contact::setEmail1Address>(Contacts::Email1Address),
        Kind::text<&Contact::email2Address, &Contact::setEmail2Address>(Contacts::Email2Address),
        Kind::text<&Contact::email3Address, &Contact::setEmail3Address>(Contacts::Email3Address),
        Kind::text<&Contact::fileAs, &Contact::setFileAs>(Contacts::FileAs),
        Kind::text<&Contact::firstName, &Contact::setFirstName>(Contacts::FirstName),
        Kind::text<&Contact::home2PhoneNumber, &Contact::setHome2PhoneNumber>(Contacts::Home2PhoneNumber),
        Kind::text<&Contact::homeAddressCity, &Contact::setHomeAddressCity>(Contacts::HomeAddressCity),
        Kind::text<&Contact::homeAddressCountry, &Contact::setHomeAddressCountry>(
            Contacts::HomeAddressCountry),
        Kind::text<&Contact::homeAddressPostalCode, &Contact::setHomeAddressPostalCode>(
            Contacts::HomeAddressPostalCode),
        Kind::text<&Contact::homeAddressState, &Contact::setHomeAddressState>(Contacts::HomeAddressState),
        Kind::text<&Contact::homeAddressStreet, &Contact::setHomeAddressStreet>(Contacts::HomeAddressStreet),
        Kind::text<&Contact::homeFaxNumber, &Contact::setHomeFaxNumber>(Contacts::HomeFaxNumber),
        Kind::text<&Contact::homePhoneNumber, &Contact::setHomePhoneNumber>(Contacts::HomePhoneNumber),
        Kind::text<&Contact::jobTitle, &Contact::setJobTitle>(Contacts::JobTitle),
        Kind::text<&Contact::lastName, &Contact::setLastName>(Contacts::LastName),
        Kind::text<&Contact::middleName, &Contact::setMiddleName>(Contacts::MiddleName),
        Kind::text<&Contact::mobilePhoneNumber, &Contact::setMobilePhoneNumber>(Contacts::MobilePhoneNumber),
        Kind::text<&Contact::officeLocation, &Contact::setOfficeLocation>(Contacts::OfficeLocation),
        Kind::text<&Contact::otherAddressCity, &Contact::setOtherAddressCity>(Contacts::OtherAddressCity),
        Kind::text<&Contact::otherAddressCountry, &Contact::setOtherAddressCountry>(
            Contacts::OtherAddressCountry),
        Kind::text<&Contact::otherAddressPostalCode, &Contact::setOtherAddressPostalCode>(
            Contacts::OtherAddressPostalCode),
        Kind::text<&Contact::otherAddressState, &Contact::setOtherAddressState>(Contacts::OtherAddressState),
        Kind::text<&Contact::otherAddressStreet, &Contact::setOtherAddressStreet>(
            Contacts::OtherAddressStreet),
        Kind::text<&Contact::pagerNumber, &Contact::setPagerNumber>(Contacts::PagerNumber),
        Kind::text<&Contact::radioPhoneNumber, &Contact::setRadioPhoneNumber>(Contacts::RadioPhoneNumber),
        Kind::text<&Contact::spouse, &Contact::setSpouse>(Contacts::Spouse),
        Kind::text<&Contact::suffix, &Contact::setSuffix>(Contacts::Suffix),
        Kind::text<&Contact::title, &Contact::setTitle>(Contacts::Title),
        Kind::text<&Contact::webPage, &Contact::setWebPage>(Contacts::WebPage),
        Kind::text<&Contact::yomiCompanyName, &Contact::setYomiCompanyName>(Contacts::YomiCompanyName),
        Kind::text<&Contact::yomiFirstName, &Contact::setYomiFirstName>(Contacts::YomiFirstName),
        Kind::text<&Contact::yomiLastName, &Contact::setYomiLastName>(Contacts::YomiLastName),
        Kind::text<&Contact::picture, &Contact::setPicture>(Contacts::Picture).givenBy(givePicture),
        Kind::text<&Contact::customerId, &Contact::setCustomerId>(Contacts2::CustomerId),
        Kind::text<&Contact::governmentId, &Contact::setGovernmentId>(Contacts2::GovernmentId),
        Kind::text<&Contact::imAddress, &Contact::setImAddress>(Contacts2::IMAddress),
        Kind::text<&Contact::imAddress2, &Contact::setImAddress2>(Contacts2::IMAddress2),
        Kind::text<&Contact::imAddress3, &Contact::setImAddress3>(Contacts2::IMAddress3),
        Kind::text<&Contact::managerName, &Contact::setManagerName>(Contacts2::ManagerName),
        Kind::text<&Contact::companyMainPhone, &Contact::setCompanyMainPhone>(Contacts2::CompanyMainPhone),
        Kind::text<&Contact::accountName, &Contact::setAccountName>(Contacts2::AccountName),
        Kind::text<&Contact::nickName, &Contact::setNickName>(Contacts2::NickName),
        Kind::text<&Contact::mms, &Contact::setMms>(Contacts2::MMS),
        Kind::container<&Contact::body, bodyFields, SharedFields::bodyIsSent>(AirSyncBase::Body),
        // What only comes in
        Kind::text<&Contact::alias, &Contact::setAlias>(Contacts::Alias).receivedOnly(),
        Kind::signedNumber<&Contact::weightedRank, &Contact::setWeightedRank>(Contacts::WeightedRank, NoInt)
            .receivedOnly(),
        Kind::signedNumber<&Contact::nativeBodyType, &Contact::setNativeBodyType>(
            AirSyncBase::NativeBodyType, NoInt)
            .receivedOnly(),
    };
    return table;
}

const FieldTable<EasBodyContainer> &bodyFields()
{
    static const FieldTable<EasBodyContainer> table = SharedFields::bodyFields({ NoInt, NoInt, NoBool });
    return table;
}

} // namespace ContactsFields
