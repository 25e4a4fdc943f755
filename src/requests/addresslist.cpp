// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/addresslist.h"

#include <QSet>

#include <algorithm>

namespace {

bool isSeparator(QChar character)
{
    return character == QLatin1Char(',') || character == QLatin1Char(';') || character == QLatin1Char('\n')
        || character == QLatin1Char('\r');
}

/**
 * Calls visit(position) for each character outside quotes, in order, and quotes are no such characters. One
 * that nothing closes is a character as any other, and so are those behind it.
 */
template <typename Visit> void visitUnquoted(const QString &text, Visit visit)
{
    bool quotesCount = true;
    int opening = -1;
    for (int i = 0; i < text.size() || opening >= 0; ++i) {
        if (i >= text.size()) {
            i = opening;
            opening = -1;
            quotesCount = false;
        } else if (opening >= 0) {
            if (text.at(i) == QLatin1Char('\\'))
                ++i;
            else if (text.at(i) == QLatin1Char('"'))
                opening = -1;
        } else if (quotesCount && text.at(i) == QLatin1Char('"')) {
            opening = i;
        } else {
            visit(i);
        }
    }
}

QStringList entriesOf(const QString &text)
{
    QStringList entries;
    int start = 0;
    visitUnquoted(text, [&](int position) {
        if (!isSeparator(text.at(position)))
            return;
        entries.append(text.mid(start, position - start));
        start = position + 1;
    });
    entries.append(text.mid(start));
    return entries;
}

QString bareAddress(const QString &entry)
{
    int opening = -1;
    visitUnquoted(entry, [&](int position) {
        if (opening < 0 && entry.at(position) == QLatin1Char('<'))
            opening = position;
    });
    if (opening < 0)
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
    QSet<QString> known;
    for (const QString &entry : entriesOf(text)) {
        const QString address = bareAddress(entry);
        if (address.isEmpty() || hasControls(address) || known.contains(address.toLower()))
            continue;
        known.insert(address.toLower());
        found.append(address);
    }
    return found;
}
