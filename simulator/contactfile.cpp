// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/contactfile.h"

#include <QtVersit/QVersitDocument>
#include <QtVersit/QVersitProperty>
#include <QtVersit/QVersitReader>

#include <algorithm>

QTVERSIT_USE_NAMESPACE

namespace Simulator {
namespace {

/** Where the values of a property go; each further property of the kind takes the next field. */
struct TextRow
{
    const char *property;
    QStringList types; ///< all of these have to be there
    QStringList fields; ///< the first that is still free
};

const QVector<TextRow> &textRows()
{
    static const QVector<TextRow> rows {
        { "FN", {}, { QStringLiteral("FileAs") } },
        { "NICKNAME", {}, { QStringLiteral("NickName") } },
        { "TITLE", {}, { QStringLiteral("JobTitle") } },
        { "URL", {}, { QStringLiteral("WebPage") } },
        { "EMAIL", {},
            { QStringLiteral("Email1Address"), QStringLiteral("Email2Address"),
                QStringLiteral("Email3Address") } },
        { "IMPP", {},
            { QStringLiteral("IMAddress"), QStringLiteral("IMAddress2"), QStringLiteral("IMAddress3") } },
        { "X-SPOUSE", {}, { QStringLiteral("Spouse") } },
        { "X-ASSISTANT", {}, { QStringLiteral("AssistantName") } },
        { "X-MANAGER", {}, { QStringLiteral("ManagerName") } },
        { "TEL", { QStringLiteral("FAX"), QStringLiteral("HOME") }, { QStringLiteral("HomeFaxNumber") } },
        { "TEL", { QStringLiteral("FAX") }, { QStringLiteral("BusinessFaxNumber") } },
        { "TEL", { QStringLiteral("PAGER") }, { QStringLiteral("PagerNumber") } },
        { "TEL", { QStringLiteral("CAR") }, { QStringLiteral("CarPhoneNumber") } },
        { "TEL", { QStringLiteral("CELL") }, { QStringLiteral("MobilePhoneNumber") } },
        { "TEL", { QStringLiteral("WORK") },
            { QStringLiteral("BusinessPhoneNumber"), QStringLiteral("Business2PhoneNumber") } },
        { "TEL", {}, { QStringLiteral("HomePhoneNumber"), QStringLiteral("Home2PhoneNumber") } },
    };
    return rows;
}

QStringList typesOf(const QVersitProperty &property)
{
    QStringList types;
    const QStringList values = property.parameters().values(QStringLiteral("TYPE"));
    for (const QString &value : values)
        types += value.toUpper().split(QLatin1Char(','));
    return types;
}

QString part(const QVersitProperty &property, int index)
{
    return property.value<QStringList>().value(index);
}

void takeText(const QVersitProperty &property, Contact &contact)
{
    const QStringList types = typesOf(property);
    const QString value = property.valueType() == QVersitProperty::ListType
        ? property.value<QStringList>().join(QStringLiteral(", "))
        : property.value();
    for (const TextRow &row : textRows()) {
        const bool fits = property.name() == QLatin1String(row.property)
            && std::all_of(row.types.begin(), row.types.end(),
                [&types](const QString &type) { return types.contains(type); });
        if (!fits)
            continue;
        for (const QString &field : row.fields) {
            if (!contact.text(field).isEmpty())
                continue;
            contact.setText(field, value);
            break;
        }
        return;
    }
}

void takeName(const QVersitProperty &property, Contact &contact)
{
    static const char *const fields[] = { "LastName", "FirstName", "MiddleName", "Title", "Suffix" };
    int index = 0;
    for (const char *field : fields)
        contact.setText(QLatin1String(field), part(property, index++));
}

void takeAddress(const QVersitProperty &property, Contact &contact)
{
    const QStringList types = typesOf(property);
    const QString kind = types.contains(QStringLiteral("WORK")) ? QStringLiteral("Business")
        : types.contains(QStringLiteral("HOME"))                ? QStringLiteral("Home")
                                                                : QStringLiteral("Other");
    // After the post office box and the extension.
    static const char *const parts[] = { "Street", "City", "State", "PostalCode", "Country" };
    int index = 2;
    for (const char *name : parts)
        contact.setText(kind + QStringLiteral("Address") + QLatin1String(name), part(property, index++));
}

void takeDate(const QString &field, const QString &value, Contact &contact)
{
    const QString digits = QString(value).remove(QLatin1Char('-')).left(8);
    contact.setDate(field, QDate::fromString(digits, QStringLiteral("yyyyMMdd")));
}

void take(const QVersitProperty &property, Contact &contact)
{
    const QString name = property.name();
    if (name == QLatin1String("N")) {
        takeName(property, contact);
    } else if (name == QLatin1String("ADR")) {
        takeAddress(property, contact);
    } else if (name == QLatin1String("ORG")) {
        contact.setText(QStringLiteral("CompanyName"), part(property, 0));
        contact.setText(QStringLiteral("Department"), part(property, 1));
    } else if (name == QLatin1String("BDAY")) {
        takeDate(QStringLiteral("Birthday"), property.value(), contact);
    } else if (name == QLatin1String("ANNIVERSARY") || name == QLatin1String("X-ANNIVERSARY")) {
        takeDate(QStringLiteral("Anniversary"), property.value(), contact);
    } else if (name == QLatin1String("CATEGORIES")) {
        contact.setCategories(property.value<QStringList>());
    } else if (name == QLatin1String("NOTE")) {
        contact.setNote(property.value());
    } else if (name == QLatin1String("PHOTO")) {
        contact.setPicture(property.variantValue().toByteArray());
    } else {
        takeText(property, contact);
    }
}

} // namespace

QVector<Contact> ContactFile::read(const QByteArray &text)
{
    QVersitReader reader(text);
    QVector<Contact> contacts;
    if (!reader.startReading() || !reader.waitForFinished())
        return contacts;
    const QList<QVersitDocument> documents = reader.results();
    for (const QVersitDocument &document : documents) {
        Contact contact;
        const QList<QVersitProperty> properties = document.properties();
        for (const QVersitProperty &property : properties)
            take(property, contact);
        contacts.append(contact);
    }
    return contacts;
}

} // namespace Simulator
