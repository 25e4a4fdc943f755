// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/icaltext.h"

#include "application/base/logging.h"
#include "common/exchangeactivesync.h"

#include <QRegularExpression>

#include <cstdlib>

namespace {

bool isControl(QChar character)
{
    return character < QLatin1Char(' ') || character == QChar(0x7f);
}

/** Long lines are folded, also in the middle of what begins a component. */
QByteArray unfolded(QByteArray document)
{
    return document.replace("\n ", "").replace("\n\t", "");
}

bool startsWith(const QByteArray &document, int position, const char *word)
{
    return qstrnicmp(document.constData() + position, word, qstrlen(word)) == 0;
}

/** What stands against reading the document; null if nothing does. */
const char *refusal(const QByteArray &document)
{
    int lines = 0;
    int components = 0;
    for (int start = 0; start < document.size();) {
        if (++lines > ICalText::MostLines)
            return "they have too many properties";
        if (startsWith(document, start, "BEGIN") && ++components > ICalText::MostComponents)
            return "they have too many components";
        const int lineEnd = document.indexOf('\n', start);
        start = lineEnd < 0 ? document.size() : lineEnd + 1;
    }
    return nullptr;
}

} // namespace

namespace ICalText {

ICalComponent parsed(const QString &text)
{
    const auto refused = [](const char *reason) {
        qCWarning(eas()) << "iCalendar data are not read:" << reason;
        return nullptr;
    };
    if (text.contains(QChar::Null))
        return refused("they hold a NUL");
    if (text.size() > LargestDocument)
        return refused("they are too large");
    const QByteArray document = unfolded(lines(text));
    if (const char *const reason = refusal(document))
        return refused(reason);
    return ICalComponent(icalparser_parse_string(document.constData()));
}

QString written(const ICalComponent &document)
{
    const std::unique_ptr<char, decltype(&std::free)> text(
        icalcomponent_as_ical_string_r(document.get()), &std::free);
    return QString::fromUtf8(text.get());
}

QByteArray lines(const QString &text)
{
    QString kept;
    kept.reserve(text.size());
    for (const QChar character : text) {
        if (!isControl(character) || character == QLatin1Char('\n') || character == QLatin1Char('\t'))
            kept.append(character);
    }
    return kept.toUtf8();
}

QByteArray singleLine(const QString &text)
{
    static const QRegularExpression controls(QStringLiteral("[\\x00-\\x1f\\x7f]+"));
    return QString(text).replace(controls, QStringLiteral(" ")).trimmed().toUtf8();
}

icaltimetype utcTime(const QDateTime &time)
{
    const QByteArray text = ExchangeActiveSync::dateTimeToString(time).toLatin1();
    return text.isEmpty() ? icaltime_null_time() : icaltime_from_string(text.constData());
}

icaltimetype day(const QDate &date)
{
    icaltimetype day = icaltime_null_date();
    day.year = date.year();
    day.month = date.month();
    day.day = date.day();
    return day;
}

} // namespace ICalText
