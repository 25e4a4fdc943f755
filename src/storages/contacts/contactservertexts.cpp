// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactservertexts.h"

#include "application/base/logging.h"

#include <QtContacts/QContactExtendedDetail>

#include <QDate>

QTCONTACTS_USE_NAMESPACE

namespace {

struct ServerText
{
    const char *name;
    QString (EasContactsItem::*get)() const;
    void (EasContactsItem::*set)(const QString &);
    /** What the text depends on; with another one it no longer holds. */
    QString (*basis)(const EasContactsItem &item);
};

QString day(const QString &text)
{
    return QDate::fromString(text, Qt::ISODate).toString(Qt::ISODate);
}

/** Servers make the name to sort by of these, unless the user has chosen another one. */
QString names(const EasContactsItem &item)
{
    return QStringList { item.firstName(), item.middleName(), item.lastName(), item.companyName() }.join(
        QLatin1Char('\n'));
}

const ServerText serverTexts[] = {
    { "FileAs", &EasContactsItem::fileAs, &EasContactsItem::setFileAs, names },
    { "Birthday", &EasContactsItem::birthday, &EasContactsItem::setBirthday,
        [](const EasContactsItem &item) {
            return day(item.birthday());
        } },
    { "Anniversary", &EasContactsItem::anniversary, &EasContactsItem::setAnniversary,
        [](const EasContactsItem &item) {
            return day(item.anniversary());
        } },
};

QString nameOfBasis(const ServerText &text)
{
    return QLatin1String(text.name) + QLatin1String("Of");
}

void saveExtended(QContact &contact, const QString &name, const QString &data)
{
    QContactExtendedDetail detail;
    detail.setName(name);
    detail.setData(data);
    if (!contact.saveDetail(&detail))
        qCWarning(eas()) << "Failed to save" << name;
}

} // namespace

void ContactServerTexts::save(QContact &contact, const EasContactsItem &item)
{
    for (const ServerText &text : serverTexts) {
        const QString value = (item.*text.get)();
        if (value.isEmpty() || text.basis(item).isEmpty())
            continue;
        saveExtended(contact, QLatin1String(text.name), value);
        saveExtended(contact, nameOfBasis(text), text.basis(item));
    }
}

void ContactServerTexts::restore(const QContact &contact, EasContactsItem &item)
{
    QMap<QString, QString> kept;
    const QList<QContactExtendedDetail> details = contact.details<QContactExtendedDetail>();
    for (const QContactExtendedDetail &detail : details)
        kept.insert(detail.name(), detail.data().toString());
    for (const ServerText &text : serverTexts) {
        const QString value = kept.value(QLatin1String(text.name));
        if (!value.isEmpty() && text.basis(item) == kept.value(nameOfBasis(text)))
            (item.*text.set)(value);
    }
}

bool ContactServerTexts::isKept(const QString &name)
{
    for (const ServerText &text : serverTexts) {
        if (name == QLatin1String(text.name) || name == nameOfBasis(text))
            return true;
    }
    return false;
}
