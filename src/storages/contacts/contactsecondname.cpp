// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactsecondname.h"

#include "storages/contacts/contactdetailuris.h"

#include <QtContacts/QContactExtendedDetail>
#include <QtContacts/QContactName>

QTCONTACTS_USE_NAMESPACE

namespace {

const auto firstNameText = QStringLiteral("YomiFirstName");
const auto lastNameText = QStringLiteral("YomiLastName");

void addText(QContact &contact, const QString &name, const QString &text)
{
    if (text.isEmpty())
        return;
    QContactExtendedDetail detail;
    detail.setName(name);
    detail.setData(text);
    contact.saveDetail(&detail);
}

void nameAsText(QContact &contact)
{
    const QList<QContactName> names = contact.details<QContactName>();
    for (QContactName name : names) {
        if (name.detailUri() != QLatin1String(ContactDetailUris::yomiName))
            continue;
        addText(contact, firstNameText, name.firstName());
        addText(contact, lastNameText, name.lastName());
        contact.removeDetail(&name);
    }
}

} // namespace

QList<QContact> ContactSecondName::asTexts(QList<QContact> contacts)
{
    for (QContact &contact : contacts)
        nameAsText(contact);
    return contacts;
}

void ContactSecondName::read(const QContact &contact, EasContactsItem &item)
{
    if (!item.yomiFirstName().isEmpty() || !item.yomiLastName().isEmpty())
        return;
    const QList<QContactExtendedDetail> details = contact.details<QContactExtendedDetail>();
    for (const QContactExtendedDetail &detail : details) {
        if (detail.name() == firstNameText)
            item.setYomiFirstName(detail.data().toString());
        else if (detail.name() == lastNameText)
            item.setYomiLastName(detail.data().toString());
    }
}

bool ContactSecondName::isText(const QString &name)
{
    return name == firstNameText || name == lastNameText;
}
