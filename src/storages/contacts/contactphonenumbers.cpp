// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactphonenumbers.h"

#include "application/base/logging.h"

#include <array>
#include <iterator>

QTCONTACTS_USE_NAMESPACE

namespace {

struct PhoneField
{
    QString (EasContactsItem::*get)() const;
    void (EasContactsItem::*set)(const QString &);
    int context;
    int subType;
};

using Contact = EasContactsItem;
using Phone = QContactPhoneNumber;

const PhoneField phoneFields[] = {
    { &Contact::homePhoneNumber, &Contact::setHomePhoneNumber, QContactDetail::ContextHome,
        Phone::SubTypeLandline },
    { &Contact::home2PhoneNumber, &Contact::setHome2PhoneNumber, QContactDetail::ContextOther,
        Phone::SubTypeLandline },
    { &Contact::businessPhoneNumber, &Contact::setBusinessPhoneNumber, QContactDetail::ContextWork,
        Phone::SubTypeLandline },
    { &Contact::mobilePhoneNumber, &Contact::setMobilePhoneNumber, QContactDetail::ContextHome,
        Phone::SubTypeMobile },
    { &Contact::business2PhoneNumber, &Contact::setBusiness2PhoneNumber, QContactDetail::ContextWork,
        Phone::SubTypeMobile },
    { &Contact::homeFaxNumber, &Contact::setHomeFaxNumber, QContactDetail::ContextHome, Phone::SubTypeFax },
    { &Contact::businessFaxNumber, &Contact::setBusinessFaxNumber, QContactDetail::ContextWork,
        Phone::SubTypeFax },
    { &Contact::pagerNumber, &Contact::setPagerNumber, QContactDetail::ContextHome, Phone::SubTypePager },
    { &Contact::mms, &Contact::setMms, QContactDetail::ContextHome, Phone::SubTypeVideo },
    { &Contact::carPhoneNumber, &Contact::setCarPhoneNumber, QContactDetail::ContextHome, Phone::SubTypeCar },
    { &Contact::assistantPhoneNumber, &Contact::setAssistantPhoneNumber, QContactDetail::ContextWork,
        Phone::SubTypeAssistant },
    { &Contact::companyMainPhone, &Contact::setCompanyMainPhone, QContactDetail::ContextWork,
        ContactPhoneNumbers::SubTypeCompanyMain },
    { &Contact::radioPhoneNumber, &Contact::setRadioPhoneNumber, QContactDetail::ContextHome,
        ContactPhoneNumbers::SubTypeRadio },
};
constexpr int fieldCount = int(std::size(phoneFields));

/** A number without a subtype is one to be talked to. */
QList<int> subTypesOf(const Phone &detail)
{
    QList<int> subTypes = detail.subTypes();
    subTypes.removeAll(Phone::SubTypeVoice);
    return subTypes.isEmpty() ? QList<int> { Phone::SubTypeLandline } : subTypes;
}

bool fitsExactly(const Phone &detail, const PhoneField &field)
{
    return detail.contexts() == QList<int> { field.context }
    && detail.subTypes() == QList<int> { field.subType };
}

bool fitsByContext(const Phone &detail, const PhoneField &field)
{
    return detail.contexts().contains(field.context) && subTypesOf(detail).contains(field.subType);
}

bool fitsBySubType(const Phone &detail, const PhoneField &field)
{
    return subTypesOf(detail).contains(field.subType);
}

QString numberOf(const EasContactsItem &item, const PhoneField &field)
{
    return (item.*field.get)();
}

} // namespace

QVector<int> ContactPhoneNumbers::assign(const Numbers &details, const IsOpen &isOpen)
{
    QVector<int> assigned(details.size(), -1);
    const auto pass = [&](bool (*fits)(const Phone &, const PhoneField &), const IsOpen &mayBeTaken) {
        for (int i = 0; i < details.size(); ++i) {
            for (int field = 0; field < fieldCount && assigned.at(i) < 0; ++field) {
                if (!assigned.contains(field) && mayBeTaken(field) && fits(details.at(i), phoneFields[field]))
                    assigned[i] = field;
            }
        }
    };
    pass(fitsExactly, [](int) { return true; });
    pass(fitsByContext, isOpen);
    pass(fitsBySubType, isOpen);
    return assigned;
}

void ContactPhoneNumbers::easPhoneNumbersToContacts(QContact &contact, const EasContactsItem &item)
{
    const Numbers details = contact.details<Phone>().toVector();
    QStringList numbers;
    for (const PhoneField &field : phoneFields)
        numbers.append(numberOf(item, field));
    const QVector<int> assigned =
        assign(details, [&numbers](int field) { return !numbers.at(field).isEmpty(); });

    for (int i = 0; i < details.size(); ++i) {
        const int field = assigned.at(i);
        if (field >= 0) {
            updatePhoneNumber(contact, details.at(i), numbers.at(field), phoneFields[field].context,
                phoneFields[field].subType);
            continue;
        }
        Phone old = details.at(i);
        if (!contact.removeDetail(&old))
            qCWarning(eas()) << "failed to remove (old) phone number detail from contact:" << contact.id();
    }
    for (int field = 0; field < fieldCount; ++field) {
        if (!assigned.contains(field) && !numbers.at(field).isEmpty())
            updatePhoneNumber(
                contact, Phone(), numbers.at(field), phoneFields[field].context, phoneFields[field].subType);
    }
}

void ContactPhoneNumbers::updatePhoneNumber(
    QContact &contact, QContactPhoneNumber detail, const QString &number, int context, int subType)
{
    if (number.isEmpty()) {
        if (!contact.removeDetail(&detail))
            qCWarning(eas()) << "failed to remove detail:" << detail;
        return;
    }
    detail.setNumber(number);
    detail.setContexts(context);
    detail.setSubTypes({ subType });
    if (!contact.saveDetail(&detail))
        qCWarning(eas()) << "failed to save contact detail:" << detail;
}

void ContactPhoneNumbers::processPhoneNumbers(const QContact &contact, EasContactsItem &item)
{
    const Numbers details = contact.details<Phone>().toVector();
    const QVector<int> assigned = assign(details, [](int) { return true; });
    QStringList spare;
    for (int i = 0; i < details.size(); ++i) {
        if (assigned.at(i) >= 0)
            (item.*phoneFields[assigned.at(i)].set)(details.at(i).number());
        else
            spare.append(details.at(i).number());
    }
    if (!spare.isEmpty())
        qCWarning(eas()) << "we have" << spare.size() << "more phone numbers that can't be synced:" << spare;
}
