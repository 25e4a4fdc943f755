// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactservertexts.h"

#include "application/base/logging.h"
#include "storages/contacts/contactdates.h"
#include "storages/contacts/contactwriter.h"

#include <QtContacts/QContactExtendedDetail>

#include <QCryptographicHash>

QTCONTACTS_USE_NAMESPACE

namespace {

using Contact = EasContactsItem;
using TextOf = QString (*)(const Contact &item);

struct ServerText
{
    const char *name;
    /** Empty if there is nothing to be kept. */
    TextOf get;
    void (*restore)(Contact &item, const QString &text);
    /** What the text depends on; with another one it no longer holds. */
    TextOf basis;
};

template <QString (Contact::*get)() const, void (Contact::*set)(const QString &)>
ServerText text(const char *name, TextOf basis)
{
    return { name, [](const Contact &item) { return (item.*get)(); },
        [](Contact &item, const QString &text) { (item.*set)(text); }, basis };
}

/** A date with its time of the day. */
template <QString (Contact::*get)() const, void (Contact::*set)(const QString &)>
ServerText date(const char *name)
{
    return text<get, set>(
        name, [](const Contact &item) { return ContactDates::day((item.*get)()).toString(Qt::ISODate); });
}

/** An address with the name beside it. */
template <QString (Contact::*get)() const, void (Contact::*set)(const QString &)>
ServerText address(const char *name)
{
    ServerText kept = text<get, set>(
        name, [](const Contact &item) { return ContactWriter::getRawEmailAddress((item.*get)()); });
    kept.get = [](const Contact &item) {
        const QString whole = (item.*get)();
        return whole == ContactWriter::getRawEmailAddress(whole) ? QString() : whole;
    };
    return kept;
}

/** Servers make the name to sort by of these, unless the user has chosen another one. */
QString names(const Contact &item)
{
    return QStringList { item.firstName(), item.middleName(), item.lastName(), item.companyName() }.join(
        QLatin1Char('\n'));
}

QString cutOf(const Contact &item)
{
    return item.body().truncated() ? QStringLiteral("cut") : QString();
}

/** A body that is left out of a change stays with the server, which has all of it. */
void leaveBodyOut(Contact &item, const QString &)
{
    item.setBody(EasBodyContainer());
}

QString digestOfNote(const Contact &item)
{
    const QByteArray note = item.body().data().toUtf8();
    return QString::fromLatin1(QCryptographicHash::hash(note, QCryptographicHash::Sha256).toHex());
}

const ServerText serverTexts[] = {
    text<&Contact::fileAs, &Contact::setFileAs>("FileAs", names),
    date<&Contact::birthday, &Contact::setBirthday>("Birthday"),
    date<&Contact::anniversary, &Contact::setAnniversary>("Anniversary"),
    address<&Contact::email1Address, &Contact::setEmail1Address>("Email1Address"),
    address<&Contact::email2Address, &Contact::setEmail2Address>("Email2Address"),
    address<&Contact::email3Address, &Contact::setEmail3Address>("Email3Address"),
    { "CutNote", cutOf, leaveBodyOut, digestOfNote },
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
        const QString value = text.get(item);
        const QString basis = text.basis(item);
        if (value.isEmpty() || basis.isEmpty())
            continue;
        saveExtended(contact, QLatin1String(text.name), value);
        saveExtended(contact, nameOfBasis(text), basis);
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
            text.restore(item, value);
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
