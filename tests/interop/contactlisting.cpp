// SPDX-License-Identifier: LGPL-2.1-or-later
#include "interop/contactlisting.h"

#include "easitems/eascontactsitem.h"

namespace {

using Listing = QMap<QString, QString>;

void add(Listing &listing, const QString &field, const QString &value)
{
    if (!value.isEmpty())
        listing.insert(field, value);
}

QString sorted(QStringList list)
{
    list.sort();
    return list.join(QLatin1Char('|'));
}

void addAddress(Listing &listing, const QString &kind, const QStringList &parts)
{
    const QStringList names { QStringLiteral("box"), QStringLiteral("extended"), QStringLiteral("street"),
        QStringLiteral("city"), QStringLiteral("state"), QStringLiteral("code"), QStringLiteral("country") };
    for (int i = 2; i < names.size(); ++i)
        add(listing, kind + QLatin1Char(' ') + names.at(i), parts.value(i));
}

/** The kinds of numbers that address books have in common with the protocol. */
QString phoneKind(const VCard::Property &phone)
{
    const bool work = phone.is(QStringLiteral("WORK"));
    if (phone.is(QStringLiteral("CELL")))
        return QStringLiteral("mobile");
    if (phone.is(QStringLiteral("PAGER")))
        return QStringLiteral("pager");
    if (phone.is(QStringLiteral("FAX")))
        return work ? QStringLiteral("work fax") : QStringLiteral("home fax");
    return work ? QStringLiteral("work phone") : QStringLiteral("home phone");
}

} // namespace

QMap<QString, QString> ContactListing::ofItem(const EasContactsItem &item)
{
    Listing listing;
    add(listing, QStringLiteral("first"), item.firstName());
    add(listing, QStringLiteral("middle"), item.middleName());
    add(listing, QStringLiteral("last"), item.lastName());
    add(listing, QStringLiteral("title"), item.title());
    add(listing, QStringLiteral("suffix"), item.suffix());
    add(listing, QStringLiteral("company"), item.companyName());
    add(listing, QStringLiteral("department"), item.department());
    add(listing, QStringLiteral("job"), item.jobTitle());
    add(listing, QStringLiteral("nick"), item.nickName());
    add(listing, QStringLiteral("emails"),
        sorted(QStringList { item.email1Address(), item.email2Address(), item.email3Address() }.filter(
            QStringLiteral("@"))));
    add(listing, QStringLiteral("mobile"), item.mobilePhoneNumber());
    add(listing, QStringLiteral("pager"), item.pagerNumber());
    add(listing, QStringLiteral("work phone"), item.businessPhoneNumber());
    add(listing, QStringLiteral("home phone"), item.homePhoneNumber());
    add(listing, QStringLiteral("work fax"), item.businessFaxNumber());
    add(listing, QStringLiteral("home fax"), item.homeFaxNumber());
    addAddress(listing, QStringLiteral("work"),
        { QString(), QString(), item.businessAddressStreet(), item.businessAddressCity(),
            item.businessAddressState(), item.businessAddressPostalCode(), item.businessAddressCountry() });
    addAddress(listing, QStringLiteral("home"),
        { QString(), QString(), item.homeAddressStreet(), item.homeAddressCity(), item.homeAddressState(),
            item.homeAddressPostalCode(), item.homeAddressCountry() });
    add(listing, QStringLiteral("birthday"), item.birthday().left(10));
    add(listing, QStringLiteral("note"), item.body().data());
    add(listing, QStringLiteral("web"), item.webPage());
    add(listing, QStringLiteral("categories"), sorted(item.categories()));
    add(listing, QStringLiteral("picture"), item.picture());
    return listing;
}

QMap<QString, QString> ContactListing::ofCard(const VCard &card)
{
    Listing listing;
    const QStringList names = card.first(QStringLiteral("N")).parts();
    add(listing, QStringLiteral("last"), names.value(0));
    add(listing, QStringLiteral("first"), names.value(1));
    add(listing, QStringLiteral("middle"), names.value(2));
    add(listing, QStringLiteral("title"), names.value(3));
    add(listing, QStringLiteral("suffix"), names.value(4));
    add(listing, QStringLiteral("company"), card.first(QStringLiteral("ORG")).parts().value(0));
    add(listing, QStringLiteral("department"), card.first(QStringLiteral("ORG")).parts().value(1));
    add(listing, QStringLiteral("job"), card.first(QStringLiteral("TITLE")).text());
    add(listing, QStringLiteral("nick"), card.first(QStringLiteral("NICKNAME")).text());
    QStringList emails;
    for (const VCard::Property &email : card.all(QStringLiteral("EMAIL")))
        emails.append(email.text());
    add(listing, QStringLiteral("emails"), sorted(emails.filter(QStringLiteral("@"))));
    for (const VCard::Property &phone : card.all(QStringLiteral("TEL")))
        add(listing, phoneKind(phone), phone.text());
    for (const VCard::Property &address : card.all(QStringLiteral("ADR"))) {
        addAddress(listing,
            address.is(QStringLiteral("WORK")) ? QStringLiteral("work") : QStringLiteral("home"),
            address.parts());
    }
    add(listing, QStringLiteral("birthday"), card.first(QStringLiteral("BDAY")).text().left(10));
    add(listing, QStringLiteral("note"), card.first(QStringLiteral("NOTE")).text());
    add(listing, QStringLiteral("web"), card.first(QStringLiteral("URL")).text());
    add(listing, QStringLiteral("categories"), sorted(card.first(QStringLiteral("CATEGORIES")).list()));
    add(listing, QStringLiteral("picture"), card.first(QStringLiteral("PHOTO")).value);
    return listing;
}
