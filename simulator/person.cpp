// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/person.h"

#include <QRegularExpression>

#include <algorithm>

namespace Simulator {
namespace {

const QString emailAddress = QStringLiteral("EmailAddress");
const QString displayName = QStringLiteral("DisplayName");

/** What of a contact an entry has. */
const QMap<QString, QString> &contactFields()
{
    static const QMap<QString, QString> fields {
        { QStringLiteral("FirstName"), QStringLiteral("FirstName") },
        { QStringLiteral("LastName"), QStringLiteral("LastName") },
        { QStringLiteral("Email1Address"), emailAddress },
        { QStringLiteral("BusinessPhoneNumber"), QStringLiteral("Phone") },
        { QStringLiteral("HomePhoneNumber"), QStringLiteral("HomePhone") },
        { QStringLiteral("MobilePhoneNumber"), QStringLiteral("MobilePhone") },
        { QStringLiteral("CompanyName"), QStringLiteral("Company") },
        { QStringLiteral("JobTitle"), QStringLiteral("Title") },
        { QStringLiteral("OfficeLocation"), QStringLiteral("Office") },
    };
    return fields;
}

QStringList wordsOf(const QString &text)
{
    static const QRegularExpression separators(QStringLiteral("[\\s.,-]+"));
    return text.split(separators, Qt::SkipEmptyParts);
}

} // namespace

const QStringList &Person::textFields()
{
    static const QStringList fields { displayName, QStringLiteral("Phone"), QStringLiteral("Office"),
        QStringLiteral("Title"), QStringLiteral("Company"), QStringLiteral("Alias"),
        QStringLiteral("FirstName"), QStringLiteral("LastName"), QStringLiteral("HomePhone"),
        QStringLiteral("MobilePhone"), emailAddress };
    return fields;
}

Person Person::user(const QString &name)
{
    return Person()
        .setText(displayName, name)
        .setText(QStringLiteral("Alias"), name)
        .setText(emailAddress, name.section(QLatin1Char('@'), 0, 0) + QStringLiteral("@example.com"));
}

Person Person::fromContact(const Contact &contact)
{
    Person person;
    for (auto field = contactFields().cbegin(); field != contactFields().cend(); ++field)
        person.setText(field.value(), contact.text(field.key()));
    const QString name = contact.text(QStringLiteral("FirstName")) + QLatin1Char(' ')
        + contact.text(QStringLiteral("LastName"));
    person.setText(
        displayName, name.trimmed().isEmpty() ? contact.text(QStringLiteral("FileAs")) : name.trimmed());
    person.setText(QStringLiteral("Alias"), person.text(emailAddress).section(QLatin1Char('@'), 0, 0));
    return person.setPicture(contact.picture());
}

Person &Person::setText(const QString &field, const QString &text)
{
    Q_ASSERT(textFields().contains(field));
    mTexts.insert(field, text);
    return *this;
}

Person &Person::setPicture(const QByteArray &picture)
{
    mPicture = picture;
    return *this;
}

bool Person::matches(const QStringList &words) const
{
    QStringList own { text(emailAddress) };
    own += wordsOf(text(emailAddress).section(QLatin1Char('@'), 0, 0));
    for (const char *field : { "DisplayName", "FirstName", "LastName", "Alias" })
        own += wordsOf(text(QLatin1String(field)));
    return std::all_of(words.cbegin(), words.cend(), [&own](const QString &word) {
        return std::any_of(own.cbegin(), own.cend(),
            [&word](const QString &part) { return part.startsWith(word, Qt::CaseInsensitive); });
    });
}

} // namespace Simulator
