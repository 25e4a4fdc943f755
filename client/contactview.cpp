// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/contactview.h"

#include "client/contactbook.h"
#include "client/contactdetails.h"

#include <QtContacts/QContactAddress>
#include <QtContacts/QContactAvatar>
#include <QtContacts/QContactBirthday>
#include <QtContacts/QContactEmailAddress>
#include <QtContacts/QContactName>
#include <QtContacts/QContactNickname>
#include <QtContacts/QContactNote>
#include <QtContacts/QContactOrganization>
#include <QtContacts/QContactPhoneNumber>
#include <QtContacts/QContactTag>
#include <QtContacts/QContactUrl>
#include <QtVersit/QVersitContactExporter>
#include <QtVersit/QVersitWriter>

#include <QBuffer>
#include <QJsonArray>

QTCONTACTS_USE_NAMESPACE
QTVERSIT_USE_NAMESPACE

namespace {

QString placeOf(const QContactDetail &detail)
{
    if (detail.contexts().contains(QContactDetail::ContextWork))
        return QStringLiteral("work");
    return detail.contexts().contains(QContactDetail::ContextHome) ? QStringLiteral("home") : QString();
}

QString kindOf(const QContactPhoneNumber &number)
{
    const QList<int> kinds = number.subTypes();
    QStringList words;
    if (!placeOf(number).isEmpty())
        words.append(placeOf(number));
    if (kinds.contains(QContactPhoneNumber::SubTypeMobile))
        words.append(QStringLiteral("mobile"));
    if (kinds.contains(QContactPhoneNumber::SubTypeFax))
        words.append(QStringLiteral("fax"));
    if (kinds.contains(QContactPhoneNumber::SubTypePager))
        words.append(QStringLiteral("pager"));
    return words.join(QLatin1Char(' '));
}

QString labelled(const QString &text, const QString &label)
{
    return label.isEmpty() ? text : QStringLiteral("%1 (%2)").arg(text, label);
}

QStringList emails(const QContact &contact)
{
    QStringList texts;
    const QList<QContactEmailAddress> details = contact.details<QContactEmailAddress>();
    for (const QContactEmailAddress &detail : details)
        texts.append(detail.emailAddress());
    return texts;
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
    const QString person = fullName(ContactDetails::plain<QContactName>(contact));
    if (!person.isEmpty())
        return person;
    const QString organization = ContactDetails::plain<QContactOrganization>(contact).name();
    return organization.isEmpty() ? emails(contact).value(0) : organization;
}

QJsonObject ContactView::describe(const QContact &contact)
{
    return {
        { QStringLiteral("id"), ContactBook::number(contact) },
        { QStringLiteral("name"), name(contact) },
        { QStringLiteral("company"), ContactDetails::plain<QContactOrganization>(contact).name() },
        { QStringLiteral("emails"), QJsonArray::fromStringList(emails(contact)) },
        { QStringLiteral("phones"), QJsonArray::fromStringList(phones(contact, true)) },
    };
}

QJsonObject ContactView::describeWhole(const QContact &contact)
{
    QJsonObject object = describe(contact);
    const QContactOrganization organization = ContactDetails::plain<QContactOrganization>(contact);
    const QList<QPair<const char *, QString>> texts {
        { "title", organization.title() },
        { "department", organization.department().join(QStringLiteral(", ")) },
        { "nickname", ContactDetails::plain<QContactNickname>(contact).nickname() },
        { "birthday", contact.detail<QContactBirthday>().date().toString(Qt::ISODate) },
        { "web", contact.detail<QContactUrl>().url() },
        { "picture", contact.detail<QContactAvatar>().imageUrl().toLocalFile() },
        { "note", contact.detail<QContactNote>().note() },
    };
    for (const auto &text : texts) {
        if (!text.second.isEmpty())
            object[QLatin1String(text.first)] = text.second;
    }
    object[QStringLiteral("addresses")] = QJsonArray::fromStringList(addresses(contact));
    QStringList categories;
    const QList<QContactTag> tags = contact.details<QContactTag>();
    for (const QContactTag &tag : tags)
        categories.append(tag.tag());
    object[QStringLiteral("categories")] = QJsonArray::fromStringList(categories);
    return object;
}

bool ContactView::matches(const QContact &contact, const QString &text)
{
    const QStringList texts =
        QStringList { name(contact), ContactDetails::plain<QContactOrganization>(contact).name(),
            ContactDetails::plain<QContactNickname>(contact).nickname() }
        + emails(contact) + phones(contact, false);
    for (const QString &one : texts) {
        if (one.contains(text, Qt::CaseInsensitive))
            return true;
    }
    return false;
}

QByteArray ContactView::toVCard(const QList<QContact> &contacts)
{
    QVersitContactExporter exporter;
    // What cannot be written, a contact without any name, is left out and the rest goes on.
    exporter.exportContacts(contacts, QVersitDocument::VCard30Type);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QVersitWriter writer(&buffer);
    if (!exporter.documents().isEmpty() && writer.startWriting(exporter.documents()))
        writer.waitForFinished();
    return bytes;
}
