// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/addresslist.h"

#include <algorithm>

namespace {

bool isSeparator(QChar character)
{
    return character == QLatin1Char(',') || character == QLatin1Char(';') || character == QLatin1Char('\n')
        || character == QLatin1Char('\r');
}

/** The position behind the quotes that begin at `start`; behind the one quote if nothing closes them. */
int afterQuotes(const QString &text, int start)
{
    for (int i = start + 1; i < text.size(); ++i) {
        if (text.at(i) == QLatin1Char('\\'))
            ++i;
        else if (text.at(i) == QLatin1Char('"'))
            return i + 1;
    }
    return start + 1;
}

/** The first position from `start` on, outside quotes, of which the function is true; else the size. */
template <typename Wanted> int find(const QString &text, int start, Wanted isWanted)
{
    int i = start;
    while (i < text.size() && !isWanted(text.at(i)))
        i = text.at(i) == QLatin1Char('"') ? afterQuotes(text, i) : i + 1;
    return qMin(i, text.size());
}

QString bareAddress(const QString &entry)
{
    const int opening = find(entry, 0, [](QChar character) { return character == QLatin1Char('<'); });
    if (opening == entry.size())
        return entry.trimmed();
    const int closing = entry.indexOf(QLatin1Char('>'), opening);
    return entry.mid(opening + 1, closing < 0 ? -1 : closing - opening - 1).trimmed();
}

bool hasControls(const QString &text)
{
    return std::any_of(text.cbegin(), text.cend(),
        [](QChar character) { return character.category() == QChar::Other_Control; });
}

} // namespace

QStringList AddressList::addresses(const QString &text)
{
    QStringList found;
    for (int start = 0; start < text.size();) {
        const int end = find(text, start, isSeparator);
        const QString address = bareAddress(text.mid(start, end - start));
        if (!address.isEmpty() && !hasControls(address) && !found.contains(address, Qt::CaseInsensitive))
            found.append(address);
        start = end + 1;
    }
    return found;
}
