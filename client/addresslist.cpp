// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/addresslist.h"

#include "client/output.h"

#include <QRegularExpression>
#include <QUrl>

#include <algorithm>

namespace {

/** What servers take, with room to spare. */
constexpr int LongestAddress = 320;

bool refuse(const QString &error)
{
    Output::error(error);
    return false;
}

/** The addresses of groups in their place. */
QList<QMailAddress> withoutGroups(const QList<QMailAddress> &addresses)
{
    QList<QMailAddress> all;
    for (const QMailAddress &address : addresses)
        all.append(address.isGroup() ? address.groupMembers() : QList<QMailAddress> { address });
    return all;
}

QString nameOf(const QMailAddress &address)
{
    return address.name() == address.address() ? QString() : address.name();
}

bool isAscii(const QString &text)
{
    return std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c.unicode() < 0x80; });
}

/** Why no mail can be sent to an address; an empty text if it can, and then the domain is as it travels. */
QString normalise(QMailAddress *address)
{
    static const QRegularExpression wellFormed(
        QStringLiteral("^(\"[^\"\\\\]+\"|[^\\s@<>(),;:\"\\\\\\[\\]]+)@([^\\s@<>(),;:\"\\\\]+)$"));
    const QRegularExpressionMatch match = wellFormed.match(address->address());
    const QString domain = match.captured(2);
    const QString travelling = isAscii(domain) ? domain : QString::fromLatin1(QUrl::toAce(domain));
    if (travelling.isEmpty() || address->address().size() > LongestAddress)
        return QStringLiteral("\"%1\" is no mail address").arg(address->toString());
    if (!isAscii(match.captured(1)))
        return QStringLiteral("\"%1\": what stands before the @ can have no letters but a to z")
            .arg(address->address());
    *address = QMailAddress(nameOf(*address), match.captured(1) + QLatin1Char('@') + travelling);
    return {};
}

bool readList(const QString &list, const QString &option, QList<QMailAddress> *addresses)
{
    if (AddressList::hasControlCharacters(list))
        return refuse(QStringLiteral("--%1 holds a line break or another control character").arg(option));
    QList<QMailAddress> found = withoutGroups(QMailAddress::fromStringList(list));
    if (found.isEmpty())
        return refuse(QStringLiteral("--%1 needs a mail address").arg(option));
    // Two addresses without a comma between them are read as one, and one of them would get nothing.
    int signs = 0;
    for (const QMailAddress &address : qAsConst(found))
        signs += (nameOf(address) + address.address()).count(QLatin1Char('@'));
    if (signs != list.count(QLatin1Char('@')))
        return refuse(QStringLiteral("--%1: part addresses with commas: %2").arg(option, list));
    for (QMailAddress &address : found) {
        const QString fault = normalise(&address);
        if (!fault.isEmpty())
            return refuse(fault);
        AddressList::addOnce(address, addresses);
    }
    return true;
}

bool controls(QChar c)
{
    return c.category() == QChar::Other_Control || c.category() == QChar::Separator_Line
        || c.category() == QChar::Separator_Paragraph;
}

} // namespace

bool AddressList::read(const QStringList &lists, const QString &option, QList<QMailAddress> *addresses)
{
    return std::all_of(
        lists.cbegin(), lists.cend(), [&](const QString &list) { return readList(list, option, addresses); });
}

QList<QMailAddress> AddressList::sendable(const QList<QMailAddress> &received)
{
    QList<QMailAddress> addresses;
    const QList<QMailAddress> all = withoutGroups(received);
    for (const QMailAddress &address : all) {
        QMailAddress clean(withoutControlCharacters(nameOf(address)), address.address());
        if (normalise(&clean).isEmpty())
            addOnce(clean, &addresses);
    }
    return addresses;
}

bool AddressList::hasControlCharacters(const QString &text)
{
    return std::any_of(text.cbegin(), text.cend(), controls);
}

QString AddressList::withoutControlCharacters(const QString &text)
{
    QString clean = text;
    std::replace_if(clean.begin(), clean.end(), controls, QLatin1Char(' '));
    return clean;
}

bool AddressList::isSame(const QMailAddress &one, const QMailAddress &other)
{
    return one.address().compare(other.address(), Qt::CaseInsensitive) == 0;
}

void AddressList::addOnce(
    const QMailAddress &address, QList<QMailAddress> *list, const QList<QMailAddress> &others)
{
    const auto isIt = [&address](const QMailAddress &other) {
        return isSame(address, other);
    };
    if (std::none_of(list->cbegin(), list->cend(), isIt)
        && std::none_of(others.cbegin(), others.cend(), isIt))
        list->append(address);
}
