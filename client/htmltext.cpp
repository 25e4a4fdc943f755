// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/htmltext.h"

#include <QHash>
#include <QRegularExpression>

namespace {

/** The names of the characters from U+00A0 on, in their order. */
constexpr const char *LatinNames[] = { "nbsp", "iexcl", "cent", "pound", "curren", "yen", "brvbar", "sect",
    "uml", "copy", "ordf", "laquo", "not", "shy", "reg", "macr", "deg", "plusmn", "sup2", "sup3", "acute",
    "micro", "para", "middot", "cedil", "sup1", "ordm", "raquo", "frac14", "frac12", "frac34", "iquest",
    "Agrave", "Aacute", "Acirc", "Atilde", "Auml", "Aring", "AElig", "Ccedil", "Egrave", "Eacute", "Ecirc",
    "Euml", "Igrave", "Iacute", "Icirc", "Iuml", "ETH", "Ntilde", "Ograve", "Oacute", "Ocirc", "Otilde",
    "Ouml", "times", "Oslash", "Ugrave", "Uacute", "Ucirc", "Uuml", "Yacute", "THORN", "szlig", "agrave",
    "aacute", "acirc", "atilde", "auml", "aring", "aelig", "ccedil", "egrave", "eacute", "ecirc", "euml",
    "igrave", "iacute", "icirc", "iuml", "eth", "ntilde", "ograve", "oacute", "ocirc", "otilde", "ouml",
    "divide", "oslash", "ugrave", "uacute", "ucirc", "uuml", "yacute", "thorn", "yuml" };

struct Name
{
    const char *name;
    uint character;
};

constexpr Name OtherNames[] = { { "amp", '&' }, { "lt", '<' }, { "gt", '>' }, { "quot", '"' },
    { "apos", '\'' }, { "ensp", ' ' }, { "emsp", ' ' }, { "thinsp", ' ' }, { "zwnj", 0x200C },
    { "zwj", 0x200D }, { "ndash", 0x2013 }, { "mdash", 0x2014 }, { "lsquo", 0x2018 }, { "rsquo", 0x2019 },
    { "sbquo", 0x201A }, { "ldquo", 0x201C }, { "rdquo", 0x201D }, { "bdquo", 0x201E }, { "dagger", 0x2020 },
    { "bull", 0x2022 }, { "hellip", 0x2026 }, { "permil", 0x2030 }, { "lsaquo", 0x2039 },
    { "rsaquo", 0x203A }, { "euro", 0x20AC }, { "trade", 0x2122 }, { "larr", 0x2190 }, { "rarr", 0x2192 },
    { "minus", 0x2212 }, { "asymp", 0x2248 }, { "ne", 0x2260 }, { "le", 0x2264 }, { "ge", 0x2265 },
    { "OElig", 0x0152 }, { "oelig", 0x0153 }, { "Scaron", 0x0160 }, { "scaron", 0x0161 } };

const QHash<QString, uint> &characters()
{
    static const QHash<QString, uint> byName = [] {
        QHash<QString, uint> table;
        uint character = 0xA0;
        for (const char *name : LatinNames)
            table.insert(QLatin1String(name), character++);
        for (const Name &other : OtherNames)
            table.insert(QLatin1String(other.name), other.character);
        table.insert(QStringLiteral("nbsp"), ' ');
        // Where a word may be parted; a terminal would show it.
        table.insert(QStringLiteral("shy"), 0);
        return table;
    }();
    return byName;
}

/** The character that a reference without its "&" and ";" names; the reference as it is for an unknown one.
 */
QString resolved(const QString &reference)
{
    uint character = 0;
    bool isKnown = false;
    if (reference.startsWith(QLatin1String("#x"), Qt::CaseInsensitive))
        character = reference.mid(2).toUInt(&isKnown, 16);
    else if (reference.startsWith(QLatin1Char('#')))
        character = reference.mid(1).toUInt(&isKnown);
    else if ((isKnown = characters().contains(reference)))
        character = characters().value(reference);
    if (!isKnown || character > QChar::LastValidCodePoint)
        return QLatin1Char('&') + reference + QLatin1Char(';');
    if (character == 0)
        return {};
    return character == QChar::Nbsp ? QStringLiteral(" ") : QString::fromUcs4(&character, 1);
}

QString withReferencesResolved(const QString &text)
{
    static const QRegularExpression reference(
        QStringLiteral("&(#[0-9]{1,7}|#[xX][0-9a-fA-F]{1,6}|[A-Za-z0-9]+);"));
    QString result;
    int end = 0;
    auto matches = reference.globalMatch(text);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        result += text.mid(end, match.capturedStart() - end) + resolved(match.captured(1));
        end = match.capturedEnd();
    }
    return result + text.mid(end);
}

/** Puts together what stands between tags, line by line. */
class Lines
{
public:
    void add(const QString &text, bool isPreformatted)
    {
        if (isPreformatted) {
            mText += text;
            return;
        }
        for (const QChar character : text) {
            const bool isBlank = character.isSpace();
            if (!isBlank)
                mText += character;
            else if (!mText.isEmpty() && !mText.back().isSpace())
                mText += QLatin1Char(' ');
        }
    }
    void breakLine()
    {
        dropBlanks();
        mText += QLatin1Char('\n');
    }
    /** A block stands on lines of its own. */
    void endBlock()
    {
        dropBlanks();
        if (!mText.isEmpty() && !mText.endsWith(QLatin1Char('\n')))
            mText += QLatin1Char('\n');
    }
    QString text() const { return mText.trimmed(); }

private:
    void dropBlanks()
    {
        while (mText.endsWith(QLatin1Char(' ')))
            mText.chop(1);
    }

    QString mText;
};

bool isBlock(const QString &tag)
{
    static const QStringList blocks { QStringLiteral("p"), QStringLiteral("div"), QStringLiteral("tr"),
        QStringLiteral("li"), QStringLiteral("ul"), QStringLiteral("ol"), QStringLiteral("table"),
        QStringLiteral("blockquote"), QStringLiteral("pre"), QStringLiteral("hr"), QStringLiteral("h1"),
        QStringLiteral("h2"), QStringLiteral("h3"), QStringLiteral("h4"), QStringLiteral("h5"),
        QStringLiteral("h6") };
    return blocks.contains(tag);
}

} // namespace

QString HtmlText::toPlain(const QString &html)
{
    static const QRegularExpression hidden(
        QStringLiteral("<!--.*?-->|<(style|script|head|title)\\b[^>]*>.*?</\\1\\s*>"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression tag(QStringLiteral("<(/?)([a-zA-Z!?][a-zA-Z0-9]*)[^>]*>"));
    QString visible = html;
    visible.remove(hidden);

    Lines lines;
    int preformatted = 0;
    int end = 0;
    auto matches = tag.globalMatch(visible);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        lines.add(withReferencesResolved(visible.mid(end, match.capturedStart() - end)), preformatted > 0);
        end = match.capturedEnd();
        const QString name = match.captured(2).toLower();
        if (name == QLatin1String("br"))
            lines.breakLine();
        else if (isBlock(name))
            lines.endBlock();
        if (name == QLatin1String("td") || name == QLatin1String("th"))
            lines.add(QStringLiteral(" "), false);
        if (name == QLatin1String("pre"))
            preformatted = qMax(0, preformatted + (match.captured(1).isEmpty() ? 1 : -1));
    }
    lines.add(withReferencesResolved(visible.mid(end)), preformatted > 0);
    return lines.text();
}
