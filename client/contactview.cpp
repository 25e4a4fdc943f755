// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/contactview.h"

#include "client/contactbook.h"
#include "client/plaindetail.h"

#include <QtContacts/QContactAddress>
#include <QtContacts/QContactAnniversary>
#include <QtContacts/QContactAvatar>
#include <QtContacts/QContactBirthday>
#include <QtContacts/QContactEmailAddress>
#include <QtContacts/QContactExtendedDetail>
#include <QtContacts/QContactFamily>
#include <QtContacts/QContactName>
#include <QtContacts/QContactNickname>
#include <QtContacts/QContactNote>
#include <QtContacts/QContactOnlineAccount>
#include <QtContacts/QContactOrganization>
#include <QtContacts/QContactPhoneNumber>
#include <QtContacts/QContactTag>
#include <QtContacts/QContactUrl>

#include <QJsonArray>

QTCONTACTS_USE_NAMESPACE

namespace {

QString placeOf(const QContactDetail &detail)
{
    if (detail.contexts().contains(QContactDetail::ContextWork))
        return QStringLiteral("work");
    if (detail.contexts().contains(QContactDetail::ContextOther))
        return QStringLiteral("other");
    return detail.contexts().contains(QContactDetail::ContextHome) ? QStringLiteral("home") : QString();
}

struct PhoneWord
{
    int type;
    const char *word;
};

/** The last two are the engine's own, which no platform has a number for. */
constexpr PhoneWord PhoneWords[] = { { QContactPhoneNumber::SubTypeMobile, "mobile" },
    { QContactPhoneNumber::SubTypeFax, "fax" }, { QContactPhoneNumber::SubTypePager, "pager" },
    { QContactPhoneNumber::SubTypeVideo, "messages" }, { QContactPhoneNumber::SubTypeCar, "car" },
    { QContactPhoneNumber::SubTypeAssistant, "assistant" }, { 1000, "company" }, { 1001, "radio" } };

QString kindOf(const QContactPhoneNumber &number)
{
    const QList<int> kinds = number.subTypes();
    QStringList words;
    if (!placeOf(number).isEmpty())
        words.append(placeOf(number));
    for (const PhoneWord &known : PhoneWords) {
        if (kinds.contains(known.type))
            words.append(QLatin1String(known.word));
    }
    return words.join(QLatin1Char(' '));
}

QString labelled(const QString &text, const QString &label)
{
    return label.isEmpty() ? text : QStringLiteral("%1 (%2)").arg(text, label);
}

/** One text of each detail of a kind. */
template <class Detail> QStringList texts(const QContact &contact, QString (Detail::*text)() const)
{
    QStringList found;
    const QList<Detail> details = contact.details<Detail>();
    for (const Detail &detail : details)
        found.append((detail.*text)());
    return found;
}

/** The detail of a kind that the server keeps in a field of its own beside the plain one. */
template <class Detail> Detail marked(const QContact &contact)
{
    const QList<Detail> details = contact.details<Detail>();
    for (const Detail &detail : details) {
        if (!detail.detailUri().isEmpty())
            return detail;
    }
    return Detail();
}

/** A text that the engine keeps under a name of its own. */
QString extended(const QContact &contact, const char *name)
{
    const QList<QContactExtendedDetail> details = contact.details<QContactExtendedDetail>();
    for (const QContactExtendedDetail &detail : details) {
        if (detail.name() == QLatin1String(name))
            return detail.data().toString();
    }
    return {};
}

QStringList emails(const QContact &contact)
{
    return texts<QContactEmailAddress>(contact, &QContactEmailAddress::emailAddress);
}

QStringList phones(const QContact &contact, bool withKinds)
{
    QStringList texts;
    const QList<QContactPhoneNumber> details = contact.details<QContactPhoneNumber>();
    for (const QContactPhoneNumber &detail : details)
        texts.append(withKinds ? labelled(detail.number(), kindOf(detail)) : detail.number());
    return texts;
}

QStringList addresses(const QContact &contact)
{
    QStringList texts;
    const QList<QContactAddress> details = contact.details<QContactAddress>();
    for (const QContactAddress &detail : details) {
        QStringList parts { detail.street(), detail.postcode(), detail.locality(), detail.region(),
            detail.country() };
        parts.removeAll(QString());
        texts.append(labelled(parts.join(QStringLiteral(", ")), placeOf(detail)));
    }
    return texts;
}

} // namespace

QString ContactView::fullName(const QContactName &name)
{
    QStringList parts { name.firstName(), name.middleName(), name.lastName(), name.suffix() };
    parts.removeAll(QString());
    return parts.join(QLatin1Char(' '));
}

QString ContactView::name(const QContact &contact)
{
    const QString person = fullName(PlainDetail::plain<QContactName>(contact));
    if (!person.isEmpty())
        return person;
    const QString organization = PlainDetail::plain<QContactOrganization>(contact).name();
    return organization.isEmpty() ? emails(contact).value(0) : organization;
}

QJsonObject ContactView::describe(const QContact &contact)
{
    return {
        { QStringLiteral("id"), ContactBook::number(contact) },
        { QStringLiteral("name"), name(contact) },
        { QStringLiteral("company"), PlainDetail::plain<QContactOrganization>(contact).name() },
        { QStringLiteral("emails"), QJsonArray::fromStringList(emails(contact)) },
        { QStringLiteral("phones"), QJsonArray::fromStringList(phones(contact, true)) },
    };
}

QJsonObject ContactView::describeWhole(const QContact &contact)
{
    QJsonObject object = describe(contact);
    const auto name = PlainDetail::plain<QContactName>(contact);
    const auto organization = PlainDetail::plain<QContactOrganization>(contact);
    const QList<QPair<const char *, QString>> values {
        { "firstName", name.firstName() },
        { "middleName", name.middleName() },
        { "lastName", name.lastName() },
        { "suffix", name.suffix() },
        { "reading", fullName(marked<QContactName>(contact)) },
        { "honorific", extended(contact, "Title") },
        { "nickname", PlainDetail::plain<QContactNickname>(contact).nickname() },
        { "alias", marked<QContactNickname>(contact).nickname() },
        { "title", organization.title() },
        { "department", organization.department().join(QStringLiteral(", ")) },
        { "office", organization.location() },
        { "assistant", organization.assistantName() },
        { "companyReading", marked<QContactOrganization>(contact).name() },
        { "manager", extended(contact, "ManagerName") },
        { "customerId", extended(contact, "CustomerId") },
        { "governmentId", extended(contact, "GovernmentId") },
        { "accountName", extended(contact, "AccountName") },
        { "birthday", contact.detail<QContactBirthday>().date().toString(Qt::ISODate) },
        { "anniversary", contact.detail<QContactAnniversary>().originalDate().toString(Qt::ISODate) },
        { "spouse", contact.detail<QContactFamily>().spouse() },
        { "picture", contact.detail<QContactAvatar>().imageUrl().toLocalFile() },
    };
    for (const auto &value : values)
        object[QLatin1String(value.first)] = value.second;
    const QList<QPair<const char *, QStringList>> lists {
        { "children", contact.detail<QContactFamily>().children() },
        { "addresses", addresses(contact) },
        { "messengers", texts<QContactOnlineAccount>(contact, &QContactOnlineAccount::accountUri) },
        { "web", texts<QContactUrl>(contact, &QContactUrl::url) },
        { "categories", texts<QContactTag>(contact, &QContactTag::tag) },
        { "notes", texts<QContactNote>(contact, &QContactNote::note) },
    };
    for (const auto &list : lists)
        object[QLatin1String(list.first)] = QJsonArray::fromStringList(list.second);
    return object;
}

const Columns &ContactView::columns()
{
    static const Columns columns { { "id", "number" }, { "name", "name" }, { "reading", "reading" },
        { "honorific", "honorific" }, { "nickname", "nickname" }, { "alias", "alias" },
        { "company", "company" }, { "companyReading", "company's reading" }, { "title", "title" },
        { "department", "department" }, { "office", "office" }, { "manager", "manager" },
        { "assistant", "assistant" }, { "emails", "email" }, { "phones", "phone" },
        { "addresses", "address" }, { "messengers", "messenger" }, { "web", "web" },
        { "birthday", "birthday" }, { "anniversary", "anniversary" }, { "spouse", "spouse" },
        { "children", "children" }, { "categories", "categories" }, { "customerId", "customer" },
        { "governmentId", "government id" }, { "accountName", "account" }, { "picture", "picture" },
        { "notes", "note" } };
    return columns;
}

bool ContactView::matches(const QContact &contact, const QString &text)
{
    const QStringList texts =
        QStringList { name(contact), PlainDetail::plain<QContactOrganization>(contact).name(),
            PlainDetail::plain<QContactNickname>(contact).nickname() }
        + emails(contact) + phones(contact, false);
    for (const QString &one : texts) {
        if (one.contains(text, Qt::CaseInsensitive))
            return true;
    }
    return false;
}
