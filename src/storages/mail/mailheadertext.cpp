// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailheadertext.h"

namespace {

bool breaksHeader(QChar character)
{
    return character.category() == QChar::Other_Control || character == QChar::LineSeparator
        || character == QChar::ParagraphSeparator;
}

/** Where the quoted text that opens at this position ends, or -1: a lone quote is an ordinary character. */
int closingQuote(const QString &text, int opening)
{
    for (int i = opening + 1; i < text.size(); ++i) {
        if (text.at(i) == QLatin1Char('\\'))
            ++i;
        else if (text.at(i) == QLatin1Char('"'))
            return i;
    }
    return -1;
}

} // namespace

namespace MailHeaderText {

QString singleLine(const QString &text)
{
    QString line;
    line.reserve(text.size());
    bool inRun = false;
    for (const QChar character : text) {
        const bool breaks = breaksHeader(character);
        if (!breaks)
            line.append(character);
        else if (!inRun)
            line.append(QLatin1Char(' '));
        inRun = breaks;
    }
    return line;
}

QStringList splitMailList(const QString &text, char separator)
{
    if (text.isEmpty())
        return {};
    QStringList entries;
    int start = 0;
    bool quotesEnd = true;
    for (int i = 0; i < text.size(); ++i) {
        if (quotesEnd && text.at(i) == QLatin1Char('"')) {
            const int closing = closingQuote(text, i);
            quotesEnd = closing >= 0;
            i = quotesEnd ? closing : i;
        } else if (text.at(i) == QLatin1Char(separator)) {
            entries.append(text.mid(start, i - start).trimmed());
            start = i + 1;
        }
    }
    entries.append(text.mid(start).trimmed());
    return entries;
}

QList<QMailAddress> addresses(const QString &text, char separator)
{
    QList<QMailAddress> list;
    const QStringList entries = splitMailList(singleLine(text), separator);
    for (const QString &entry : entries) {
        if (!entry.isEmpty())
            list.append(QMailAddress(entry));
    }
    return list;
}

} // namespace MailHeaderText
