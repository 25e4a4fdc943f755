// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/devicecontactfields.h"

#include "simulator/contactitem.h"

#include <QtContacts/QContactAddress>
#include <QtContacts/QContactBirthday>
#include <QtContacts/QContactEmailAddress>
#include <QtContacts/QContactName>
#include <QtContacts/QContactOnlineAccount>
#include <QtContacts/QContactPhoneNumber>

#include <QDateTime>

QTCONTACTS_USE_NAMESPACE

namespace {

const QString birthday = QStringLiteral("Birthday");

/** Saves a detail, or removes one that has become empty. */
template <class Detail> void put(QContact &contact, Detail detail, bool isEmpty)
{
    if (!isEmpty)
        contact.saveDetail(&detail);
    else if (!detail.key())
        return;
    else
        contact.removeDetail(&detail);
}

QString lastName(const QContact &contact)
{
    return contact.detail<QContactName>().lastName();
}

void setLastName(QContact &contact, const QString &text)
{
    QContactName name = contact.detail<QContactName>();
    name.setLastName(text);
    contact.saveDetail(&name);
}

/** The detail of a type with this URI; a new one if there is none. */
template <class Detail> Detail byUri(const QContact &contact, const char *uri)
{
    const QList<Detail> details = contact.details<Detail>();
    for (const Detail &detail : details) {
        if (detail.detailUri() == QLatin1String(uri))
            return detail;
    }
    Detail fresh;
    if (*uri)
        fresh.setDetailUri(QLatin1String(uri));
    return fresh;
}

constexpr char plain[] = "";
constexpr char second[] = "urn:as:contact:EmailAddress2";

template <const char *uri> QString email(const QContact &contact)
{
    return byUri<QContactEmailAddress>(contact, uri).emailAddress();
}

template <const char *uri> void setEmail(QContact &contact, const QString &text)
{
    auto detail = byUri<QContactEmailAddress>(contact, uri);
    detail.setEmailAddress(text);
    put(contact, detail, text.isEmpty());
}

QString messaging(const QContact &contact)
{
    return byUri<QContactOnlineAccount>(contact, plain).accountUri();
}

void setMessaging(QContact &contact, const QString &text)
{
    auto detail = byUri<QContactOnlineAccount>(contact, plain);
    detail.setAccountUri(text);
    detail.setSubTypes({ QContactOnlineAccount::SubTypeImpp });
    put(contact, detail, text.isEmpty());
}

template <int context, int subType> QContactPhoneNumber phoneDetail(const QContact &contact)
{
    const QList<QContactPhoneNumber> details = contact.details<QContactPhoneNumber>();
    for (const QContactPhoneNumber &detail : details) {
        if (detail.contexts().contains(context) && detail.subTypes().contains(subType))
            return detail;
    }
    QContactPhoneNumber fresh;
    fresh.setContexts(context);
    fresh.setSubTypes({ subType });
    return fresh;
}

template <int context, int subType> QString phone(const QContact &contact)
{
    return phoneDetail<context, subType>(contact).number();
}

template <int context, int subType> void setPhone(QContact &contact, const QString &text)
{
    QContactPhoneNumber detail = phoneDetail<context, subType>(contact);
    detail.setNumber(text);
    put(contact, detail, text.isEmpty());
}

QContactAddress homeAddress(const QContact &contact)
{
    const QList<QContactAddress> details = contact.details<QContactAddress>();
    for (const QContactAddress &detail : details) {
        if (detail.contexts().contains(QContactDetail::ContextHome))
            return detail;
    }
    QContactAddress fresh;
    fresh.setContexts(QContactDetail::ContextHome);
    return fresh;
}

QString homeCity(const QContact &contact)
{
    return homeAddress(contact).locality();
}

void setHomeCity(QContact &contact, const QString &text)
{
    QContactAddress detail = homeAddress(contact);
    detail.setLocality(text);
    put(contact, detail, text.isEmpty());
}

QString birthDay(const QContact &contact)
{
    return contact.detail<QContactBirthday>().date().toString(Qt::ISODate);
}

void setBirthDay(QContact &contact, const QString &text)
{
    QContactBirthday detail = contact.detail<QContactBirthday>();
    detail.setDate(QDate::fromString(text, Qt::ISODate));
    put(contact, detail, text.isEmpty());
}

QString joined(const QStringList &texts)
{
    return texts.join(QLatin1Char('|'));
}

} // namespace

const QVector<DeviceContactField> &DeviceContactField::all()
{
    using Detail = QContactDetail;
    using Phone = QContactPhoneNumber;
    static const QVector<DeviceContactField> fields {
        { QStringLiteral("LastName"), lastName, setLastName },
        { QStringLiteral("Email1Address"), email<plain>, setEmail<plain> },
        { QStringLiteral("Email2Address"), email<second>, setEmail<second> },
        { QStringLiteral("IMAddress"), messaging, setMessaging },
        { QStringLiteral("MobilePhoneNumber"), phone<Detail::ContextHome, Phone::SubTypeMobile>,
            setPhone<Detail::ContextHome, Phone::SubTypeMobile> },
        { QStringLiteral("BusinessPhoneNumber"), phone<Detail::ContextWork, Phone::SubTypeLandline>,
            setPhone<Detail::ContextWork, Phone::SubTypeLandline> },
        { QStringLiteral("HomeAddressCity"), homeCity, setHomeCity },
        { birthday, birthDay, setBirthDay },
    };
    return fields;
}

QString DeviceContactField::ofServer(const Simulator::Contact &contact) const
{
    const QString text = contact.text(name);
    if (name != birthday || text.isEmpty())
        return text;
    // The day to whose midnight the moment is nearest.
    return QDateTime::fromString(text, Qt::ISODate).addSecs(12 * 3600).date().toString(Qt::ISODate);
}

QString DeviceContactField::sample(int number) const
{
    if (name == birthday)
        return QDate(1980, 1, 1).addDays(number).toString(Qt::ISODate);
    if (name.startsWith(QLatin1String("Email")))
        return QStringLiteral("m%1@example.org").arg(number);
    return QStringLiteral("%1").arg(number);
}

QString DeviceContactField::line(const QContact &contact)
{
    QStringList texts;
    for (const DeviceContactField &field : all())
        texts.append(field.get(contact));
    return joined(texts);
}

QString DeviceContactField::line(const Simulator::Contact &contact)
{
    QStringList texts;
    for (const DeviceContactField &field : all())
        texts.append(field.ofServer(contact));
    return joined(texts);
}
