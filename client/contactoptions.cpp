// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/contactoptions.h"

#include "client/contactdetails.h"
#include "client/output.h"

#include <QtContacts/QContactBirthday>
#include <QtContacts/QContactEmailAddress>
#include <QtContacts/QContactName>
#include <QtContacts/QContactNote>
#include <QtContacts/QContactOrganization>
#include <QtContacts/QContactPhoneNumber>

#include <QDate>

QTCONTACTS_USE_NAMESPACE

namespace {

const auto FullName = QStringLiteral("name");
const auto Company = QStringLiteral("company");
const auto Title = QStringLiteral("title");
const auto Email = QStringLiteral("email");
const auto Birthday = QStringLiteral("birthday");
const auto Note = QStringLiteral("note");

/** The kinds of numbers that the server has a field for. */
struct PhoneKind
{
    const char *option;
    QContactDetail::DetailContext context;
    QContactPhoneNumber::SubType type;
};

constexpr PhoneKind PhoneKinds[] = {
    { "mobile", QContactDetail::ContextHome, QContactPhoneNumber::SubTypeMobile },
    { "home-phone", QContactDetail::ContextHome, QContactPhoneNumber::SubTypeLandline },
    { "work-phone", QContactDetail::ContextWork, QContactPhoneNumber::SubTypeLandline },
    { "fax", QContactDetail::ContextWork, QContactPhoneNumber::SubTypeFax },
};

/** Which of the server's three addresses one is. */
const QStringList &slotNames()
{
    static const QStringList names { QString(), QStringLiteral("urn:as:contact:EmailAddress2"),
        QStringLiteral("urn:as:contact:EmailAddress3") };
    return names;
}

/** Saves the detail, or takes it away if it says nothing any more. */
void put(QContact &contact, QContactDetail &detail, bool isEmpty)
{
    if (!isEmpty) {
        contact.saveDetail(&detail);
        return;
    }
    // Only a detail that is as it was saved can be removed.
    const QList<QContactDetail> saved = contact.details(detail.type());
    for (QContactDetail one : saved) {
        if (one.key() == detail.key())
            contact.removeDetail(&one);
    }
}

} // namespace

ContactOptions::ContactOptions(QCommandLineParser &parser)
    : mParser(parser)
{
    QStringList names { FullName, Company, Title, Email, Birthday, Note };
    for (const PhoneKind &kind : PhoneKinds)
        names.append(QLatin1String(kind.option));
    for (const QString &name : qAsConst(names))
        parser.addOption(QCommandLineOption(name, QString(), QStringLiteral("value")));
}

bool ContactOptions::apply(QContact &contact) const
{
    applyName(contact);
    applyCompany(contact);
    applyEmails(contact);
    applyPhones(contact);
    if (mParser.isSet(Note)) {
        QContactNote note = contact.detail<QContactNote>();
        note.setNote(mParser.value(Note));
        put(contact, note, note.note().isEmpty());
    }
    return applyBirthday(contact);
}

void ContactOptions::applyName(QContact &contact) const
{
    if (!mParser.isSet(FullName))
        return;
    const QString full = mParser.value(FullName).simplified();
    const int last = full.lastIndexOf(QLatin1Char(' '));
    QContactName name = ContactDetails::plain<QContactName>(contact);
    name.setFirstName(last < 0 ? full : full.left(last));
    name.setLastName(last < 0 ? QString() : full.mid(last + 1));
    put(contact, name, full.isEmpty());
}

void ContactOptions::applyCompany(QContact &contact) const
{
    QContactOrganization organization = ContactDetails::plain<QContactOrganization>(contact);
    if (mParser.isSet(Company))
        organization.setName(mParser.value(Company));
    if (mParser.isSet(Title))
        organization.setTitle(mParser.value(Title));
    if (mParser.isSet(Company) || mParser.isSet(Title))
        put(contact, organization, organization.name().isEmpty() && organization.title().isEmpty());
}

void ContactOptions::applyEmails(QContact &contact) const
{
    if (!mParser.isSet(Email))
        return;
    QList<QContactEmailAddress> old = contact.details<QContactEmailAddress>();
    for (QContactEmailAddress &detail : old)
        contact.removeDetail(&detail);
    QStringList addresses = mParser.values(Email);
    addresses.removeAll(QString());
    if (addresses.size() > slotNames().size())
        Output::error(QStringLiteral("the server keeps %1 addresses; the others stay on this device")
                          .arg(slotNames().size()));
    for (int i = 0; i < addresses.size(); ++i) {
        QContactEmailAddress detail;
        detail.setEmailAddress(addresses.at(i));
        if (!slotNames().value(i).isEmpty())
            detail.setValue(ContactDetails::SlotField, slotNames().at(i));
        contact.saveDetail(&detail);
    }
}

void ContactOptions::applyPhones(QContact &contact) const
{
    for (const PhoneKind &kind : PhoneKinds) {
        const QString option = QLatin1String(kind.option);
        if (!mParser.isSet(option))
            continue;
        QContactPhoneNumber number;
        const QList<QContactPhoneNumber> old = contact.details<QContactPhoneNumber>();
        for (const QContactPhoneNumber &detail : old) {
            if (detail.contexts().contains(kind.context) && detail.subTypes().contains(kind.type))
                number = detail;
        }
        number.setContexts(kind.context);
        number.setSubTypes({ kind.type });
        number.setNumber(mParser.value(option));
        put(contact, number, number.number().isEmpty());
    }
}

bool ContactOptions::applyBirthday(QContact &contact) const
{
    if (!mParser.isSet(Birthday))
        return true;
    QContactBirthday birthday = contact.detail<QContactBirthday>();
    const QDate date = QDate::fromString(mParser.value(Birthday), Qt::ISODate);
    if (!date.isValid() && !mParser.value(Birthday).isEmpty()) {
        Output::error(QStringLiteral("--birthday needs a day, such as 1980-05-01"));
        return false;
    }
    birthday.setDate(date);
    put(contact, birthday, !date.isValid());
    return true;
}
