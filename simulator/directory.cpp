// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/directory.h"

#include "simulator/contactfile.h"

#include <algorithm>
#include <iterator>

namespace Simulator {
namespace {

const QString emailAddress = QStringLiteral("EmailAddress");
const QString displayName = QStringLiteral("DisplayName");

} // namespace

void Directory::add(const Person &person)
{
    const auto known = std::find_if(mPeople.begin(), mPeople.end(), [&person](const Person &other) {
        return !person.text(emailAddress).isEmpty()
            && other.text(emailAddress).compare(person.text(emailAddress), Qt::CaseInsensitive) == 0;
    });
    if (known == mPeople.end())
        mPeople.append(person);
    else
        *known = person;
}

bool Directory::addCards(const QByteArray &cards)
{
    const QVector<Contact> contacts = ContactFile::read(cards);
    for (const Contact &contact : contacts)
        add(Person::fromContact(contact));
    return !contacts.isEmpty();
}

QVector<Person> Directory::matching(const QString &text) const
{
    const QStringList words = text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    QVector<Person> found;
    std::copy_if(mPeople.cbegin(), mPeople.cend(), std::back_inserter(found),
        [&words](const Person &person) { return !words.isEmpty() && person.matches(words); });
    std::stable_sort(found.begin(), found.end(), [](const Person &left, const Person &right) {
        return left.text(displayName).localeAwareCompare(right.text(displayName)) < 0;
    });
    return found;
}

} // namespace Simulator
