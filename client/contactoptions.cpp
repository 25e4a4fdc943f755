// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/contactoptions.h"

#include "client/contactfieldtable.h"
#include "client/contactview.h"
#include "client/output.h"
#include "client/plaindetail.h"

#include <QtContacts/QContactAnniversary>
#include <QtContacts/QContactAvatar>
#include <QtContacts/QContactBirthday>
#include <QtContacts/QContactEmailAddress>
#include <QtContacts/QContactName>
#include <QtContacts/QContactTag>

#include <QDate>
#include <QFileInfo>
#include <QUrl>

#include <algorithm>

QTCONTACTS_USE_NAMESPACE

namespace {

const auto FullName = QStringLiteral("name");
const auto Email = QStringLiteral("email");
const auto Birthday = QStringLiteral("birthday");
const auto Anniversary = QStringLiteral("anniversary");
const auto Category = QStringLiteral("category");
const auto Picture = QStringLiteral("picture");

/** The options for the second and third address alone; the first has none beside --email. */
QString emailOption(int index)
{
    return index == 0 ? Email : Email + QString::number(index + 1);
}

/** Whether the detail tells anything of the person; its context, subtype and URI do not. */
bool saysNothing(const QContactDetail &detail)
{
    const QMap<int, QVariant> values = detail.values();
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        if (it.key() < QContactDetail::FieldContext && it.value().canConvert<QStringList>()
            && !it.value().toStringList().join(QString()).isEmpty())
            return false;
    }
    return true;
}

/** Takes away the detail that was saved under this one's key. */
void removeSaved(QContact &contact, const QContactDetail &detail)
{
    // Only a detail that is as it was saved can be removed.
    const QList<QContactDetail> saved = contact.details(detail.type());
    for (QContactDetail one : saved) {
        if (one.key() == detail.key())
            contact.removeDetail(&one);
    }
}

/** Saves the detail, or takes it away if it says nothing any more. */
void put(QContact &contact, QContactDetail &detail)
{
    if (saysNothing(detail))
        removeSaved(contact, detail);
    else
        contact.saveDetail(&detail);
}

void setText(QContactDetail &detail, int field, const QString &text, bool isList = false)
{
    if (text.isEmpty())
        detail.removeValue(field);
    else
        detail.setValue(field, isList ? QVariant(QStringList(text)) : QVariant(text));
}

/** The detail that keeps the field; a new one if the contact has none. */
QContactDetail detailOf(const QContact &contact, const ContactTextField &field)
{
    const QList<QContactDetail> details = contact.details(field.type);
    for (const QContactDetail &detail : details) {
        const bool isThere =
            field.context == ContactTextField::AnyContext || detail.contexts().contains(field.context);
        if (detail.detailUri().isEmpty() && isThere)
            return detail;
    }
    QContactDetail made(field.type);
    if (field.context != ContactTextField::AnyContext)
        made.setContexts(field.context);
    return made;
}

/** The addresses by the server's three fields; those without a mark take the fields that are free. */
QVector<QContactEmailAddress> emailsOf(const QContact &contact)
{
    const QStringList &uris = PlainDetail::emailUris();
    QVector<QContactEmailAddress> fields(uris.size());
    QVector<QContactEmailAddress> unmarked;
    const QList<QContactEmailAddress> details = contact.details<QContactEmailAddress>();
    for (const QContactEmailAddress &detail : details) {
        const int index = detail.detailUri().isEmpty() ? -1 : uris.indexOf(detail.detailUri());
        if (index >= 0)
            fields[index] = detail;
        else
            unmarked.append(detail);
    }
    for (QContactEmailAddress &field : fields) {
        if (field.isEmpty() && !unmarked.isEmpty())
            field = unmarked.takeFirst();
    }
    return fields;
}

/** A number without a subtype, or one to be talked to, is a landline. */
bool isOfKind(const QContactPhoneNumber &number, const ContactPhoneField &field)
{
    QList<int> types = number.subTypes();
    types.removeAll(QContactPhoneNumber::SubTypeVoice);
    if (types.isEmpty())
        types.append(QContactPhoneNumber::SubTypeLandline);
    return number.contexts().contains(field.context) && types.contains(field.type);
}

QContactPhoneNumber phoneOf(const QContact &contact, const ContactPhoneField &field)
{
    const QList<QContactPhoneNumber> numbers = contact.details<QContactPhoneNumber>();
    const auto found = std::find_if(numbers.cbegin(), numbers.cend(),
        [&field](const QContactPhoneNumber &number) { return isOfKind(number, field); });
    if (found != numbers.cend())
        return *found;
    QContactPhoneNumber made;
    made.setContexts(field.context);
    made.setSubTypes({ field.type });
    return made;
}

} // namespace

ContactOptions::ContactOptions(QCommandLineParser &parser)
    : mParser(parser)
    , mNames { FullName, Birthday, Anniversary, Category, Picture }
{
    for (int i = 0; i < PlainDetail::emailUris().size(); ++i)
        mNames.append(emailOption(i));
    for (const ContactTextField &field : ContactFieldTable::texts())
        mNames.append(QLatin1String(field.option));
    for (const ContactPhoneField &field : ContactFieldTable::phones())
        mNames.append(QLatin1String(field.option));
    for (const QString &name : qAsConst(mNames))
        parser.addOption(QCommandLineOption(name, QString(), QStringLiteral("value")));
}

bool ContactOptions::saysSomething() const
{
    return std::any_of(
        mNames.cbegin(), mNames.cend(), [this](const QString &name) { return mParser.isSet(name); });
}

bool ContactOptions::apply(QContact &contact) const
{
    applyName(contact);
    applyTexts(contact);
    applyPhones(contact);
    applyCategories(contact);
    return applyEmails(contact) && applyDates(contact) && applyPicture(contact);
}

void ContactOptions::applyName(QContact &contact) const
{
    if (!mParser.isSet(FullName))
        return;
    const QString full = mParser.value(FullName).simplified();
    auto name = PlainDetail::plain<QContactName>(contact);
    // The name as it is shown says nothing of which word is which.
    if (full == ContactView::fullName(name).simplified())
        return;
    const int last = full.lastIndexOf(QLatin1Char(' '));
    setText(name, QContactName::FieldFirstName, last < 0 ? full : full.left(last));
    setText(name, QContactName::FieldLastName, last < 0 ? QString() : full.mid(last + 1));
    setText(name, QContactName::FieldMiddleName, QString());
    setText(name, QContactName::FieldSuffix, QString());
    put(contact, name);
}

void ContactOptions::applyTexts(QContact &contact) const
{
    for (const ContactTextField &field : ContactFieldTable::texts()) {
        const QString option = QLatin1String(field.option);
        if (!mParser.isSet(option))
            continue;
        QContactDetail detail = detailOf(contact, field);
        setText(detail, field.field, mParser.value(option), field.isList);
        put(contact, detail);
    }
}

bool ContactOptions::applyEmails(QContact &contact) const
{
    QVector<QContactEmailAddress> fields = emailsOf(contact);
    const QStringList &uris = PlainDetail::emailUris();
    const QStringList inOrder = mParser.values(Email);
    if (inOrder.size() > uris.size()) {
        Output::error(QStringLiteral("a contact has at most %1 mail addresses").arg(uris.size()));
        return false;
    }
    for (int i = 0; i < uris.size(); ++i) {
        const bool isNamed = i > 0 && mParser.isSet(emailOption(i));
        if (!isNamed && i >= inOrder.size())
            continue;
        setText(fields[i], QContactEmailAddress::FieldEmailAddress,
            isNamed ? mParser.value(emailOption(i)) : inOrder.at(i));
        if (i > 0)
            fields[i].setDetailUri(uris.at(i));
        put(contact, fields[i]);
    }
    return true;
}

void ContactOptions::applyPhones(QContact &contact) const
{
    for (const ContactPhoneField &field : ContactFieldTable::phones()) {
        const QString option = QLatin1String(field.option);
        if (!mParser.isSet(option))
            continue;
        QContactPhoneNumber number = phoneOf(contact, field);
        setText(number, QContactPhoneNumber::FieldNumber, mParser.value(option));
        put(contact, number);
    }
}

bool ContactOptions::applyDates(QContact &contact) const
{
    for (const QString &option : { Birthday, Anniversary }) {
        if (!mParser.isSet(option))
            continue;
        const QDate date = QDate::fromString(mParser.value(option), Qt::ISODate);
        if (!date.isValid() && !mParser.value(option).isEmpty()) {
            Output::error(QStringLiteral("--%1 needs a day, such as 1980-05-01").arg(option));
            return false;
        }
        QContactBirthday birthday = contact.detail<QContactBirthday>();
        QContactAnniversary anniversary = contact.detail<QContactAnniversary>();
        birthday.setDate(date);
        anniversary.setOriginalDate(date);
        QContactDetail &detail = option == Birthday ? static_cast<QContactDetail &>(birthday) : anniversary;
        if (date.isValid())
            contact.saveDetail(&detail);
        else
            removeSaved(contact, detail);
    }
    return true;
}

void ContactOptions::applyCategories(QContact &contact) const
{
    if (!mParser.isSet(Category))
        return;
    QList<QContactTag> old = contact.details<QContactTag>();
    for (QContactTag &tag : old)
        contact.removeDetail(&tag);
    QStringList categories = mParser.values(Category);
    categories.removeAll(QString());
    for (const QString &category : qAsConst(categories)) {
        QContactTag tag;
        tag.setTag(category);
        contact.saveDetail(&tag);
    }
}

bool ContactOptions::applyPicture(QContact &contact) const
{
    if (!mParser.isSet(Picture))
        return true;
    auto avatar = contact.detail<QContactAvatar>();
    const QFileInfo file(mParser.value(Picture));
    if (mParser.value(Picture).isEmpty()) {
        removeSaved(contact, avatar);
        return true;
    }
    if (!file.isFile() || !file.isReadable()) {
        Output::error(QStringLiteral("there is no picture %1").arg(mParser.value(Picture)));
        return false;
    }
    avatar.setImageUrl(QUrl::fromLocalFile(file.absoluteFilePath()));
    contact.saveDetail(&avatar);
    return true;
}
