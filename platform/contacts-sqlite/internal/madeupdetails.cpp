// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/madeupdetails.h"

#include <qcontactstatusflags.h>

#include <QtContacts/QContactDisplayLabel>
#include <QtContacts/QContactEmailAddress>
#include <QtContacts/QContactName>
#include <QtContacts/QContactNickname>
#include <QtContacts/QContactOnlineAccount>
#include <QtContacts/QContactOrganization>
#include <QtContacts/QContactPhoneNumber>
#include <QtContacts/QContactTimestamp>
#include <QtContacts/QContactType>

#include <QDateTime>
#include <QStringList>

QTCONTACTS_USE_NAMESPACE

namespace {

/** What people would look for the contact under. */
QString label(const QContact &contact)
{
    const QContactName name = contact.detail<QContactName>();
    QStringList names { name.firstName(), name.middleName(), name.lastName() };
    names.removeAll(QString());
    if (!names.isEmpty())
        return names.join(QLatin1Char(' '));
    for (const QString &text :
        { contact.detail<QContactNickname>().nickname(), contact.detail<QContactOrganization>().name(),
            contact.detail<QContactEmailAddress>().emailAddress(),
            contact.detail<QContactPhoneNumber>().number() }) {
        if (!text.isEmpty())
            return text;
    }
    return QString();
}

int contentFlags(const QContact &contact)
{
    const auto flag = [&contact](QContactDetail::DetailType type, QContactStatusFlags::Flag value) {
        return contact.details(type).isEmpty() ? 0 : int(value);
    };
    return flag(QContactPhoneNumber::Type, QContactStatusFlags::HasPhoneNumber)
        | flag(QContactEmailAddress::Type, QContactStatusFlags::HasEmailAddress)
        | flag(QContactOnlineAccount::Type, QContactStatusFlags::HasOnlineAccount);
}

template <typename Detail> void save(QContact *contact, Detail detail)
{
    contact->saveDetail(&detail, QContact::IgnoreAccessConstraints);
}

} // namespace

void MadeUpDetails::add(QContact *contact, const Facts &facts)
{
    QContactDisplayLabel displayLabel = contact->detail<QContactDisplayLabel>();
    displayLabel.setLabel(label(*contact));
    save(contact, displayLabel);

    contact->setType(QContactType::TypeContact);

    QContactTimestamp times;
    times.setCreated(QDateTime::fromMSecsSinceEpoch(facts.created, Qt::UTC));
    times.setLastModified(QDateTime::fromMSecsSinceEpoch(facts.modified, Qt::UTC));
    save(contact, times);

    QContactStatusFlags flags;
    flags.setFlagsValue(quint64(contentFlags(*contact) | facts.changeFlags));
    save(contact, flags);
}
