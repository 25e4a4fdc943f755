// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/headertext.h"

#include <qmailmessageheaderfield.h>

#include <KMime/Headers>

#include <QRegularExpression>

namespace {

const int maxPreviewLength = 280;
const int maxLineLength = 78;

QByteArray encodedAddress(const QMailAddress &address)
{
    const QString name = address.name();
    if (address.isGroup())
        return QMailMessageHeaderField::encodeWord(name) + ": " + encodedAddresses(address.groupMembers())
            + ';';
    const QString text = address.toString();
    if (QMailMessageHeaderField::encodeWord(text) == text.toLatin1())
        return text.toLatin1();
    // Quotes do not hold in encoded words, so a name with commas goes into them as a whole.
    static const QRegularExpression harmless(QStringLiteral("^[^()<>\\[\\]:;@\\\\,.\"]*$"));
    const QByteArray encodedName =
        harmless.match(name).hasMatch() ? QMailMessageHeaderField::encodeWord(name) : encodedWords(name);
    return encodedName + " <" + QMailMessageHeaderField::encodeWord(address.address()) + '>';
}

QString entityText(const QString &entity)
{
    static const QHash<QString, QString> named {
        { QStringLiteral("amp"), QStringLiteral("&") },
        { QStringLiteral("lt"), QStringLiteral("<") },
        { QStringLiteral("gt"), QStringLiteral(">") },
        { QStringLiteral("quot"), QStringLiteral("\"") },
        { QStringLiteral("apos"), QStringLiteral("'") },
        { QStringLiteral("nbsp"), QStringLiteral(" ") },
    };
    if (!entity.startsWith(QLatin1Char('#')))
        return named.value(entity, QLatin1Char('&') + entity + QLatin1Char(';'));
    const bool hexadecimal = entity.mid(1, 1).toLower() == QLatin1String("x");
    const uint code = hexadecimal ? entity.mid(2).toUInt(nullptr, 16) : entity.mid(1).toUInt();
    if (code == 0 || code > 0x10ffff || (code >= 0xd800 && code < 0xe000))
        return QString();
    return QString::fromUcs4(&code, 1);
}

QString withoutEntities(const QString &text)
{
    static const QRegularExpression pattern(QStringLiteral("&(#?[0-9A-Za-z]{1,8});"));
    QString out;
    int last = 0;
    for (auto it = pattern.globalMatch(text); it.hasNext();) {
        const QRegularExpressionMatch match = it.next();
        out += text.mid(last, match.capturedStart() - last) + entityText(match.captured(1));
        last = match.capturedEnd();
    }
    return out + text.mid(last);
}

/** The end of an element whose content is no text, or -1. */
int endOfHidden(const QString &html, int open)
{
    for (const char *name : { "style", "script", "head", "title" }) {
        const QLatin1String tag(name);
        const int afterName = open + 1 + tag.size();
        if (html.midRef(open + 1, tag.size()).compare(tag, Qt::CaseInsensitive) == 0
            && afterName < html.size() && !html.at(afterName).isLetterOrNumber()) {
            const int end = html.indexOf(QLatin1String("</") + tag, afterName, Qt::CaseInsensitive);
            return end < 0 ? html.size() : end;
        }
    }
    return html.midRef(open, 4) == QLatin1String("<!--") ? html.indexOf(QLatin1String("-->"), open + 4) : -1;
}

} // namespace

QByteArray encodedWords(QStringView text)
{
    const int maxOctets = 45;
    QByteArrayList words;
    QByteArray octets;
    const auto flush = [&] {
        if (!octets.isEmpty())
            words.append("=?UTF-8?B?" + octets.toBase64() + "?=");
        octets.clear();
    };
    for (int i = 0; i < text.size();) {
        const int length = text.at(i).isHighSurrogate() && i + 1 < text.size() ? 2 : 1;
        const QByteArray character = text.mid(i, length).toUtf8();
        if (octets.size() + character.size() > maxOctets)
            flush();
        octets += character;
        i += length;
    }
    flush();
    return words.join(' ');
}

QByteArray encodedAddresses(const QList<QMailAddress> &addresses)
{
    QByteArrayList texts;
    for (const QMailAddress &address : addresses)
        texts.append(encodedAddress(address));
    return texts.join(", ");
}

QList<QMailAddress> decodedAddresses(const QByteArray &value)
{
    const QList<QMailAddress> plain = QMailAddress::fromStringList(QString::fromUtf8(value));
    QList<QMailAddress> addresses;
    for (const QMailAddress &address : plain) {
        if (address.isGroup() || address.name() == address.address()) {
            addresses.append(address);
            continue;
        }
        const QString name = QMailMessageHeaderField::decodeWord(address.name().toUtf8());
        // Keep quotes that are there; a name that gains specials by decoding gets its quotes when it is
        // shown.
        addresses.append(name == address.name() ? address : QMailAddress(name, address.address()));
    }
    return addresses;
}

QByteArray foldedHeader(const QByteArray &name, const QByteArray &value)
{
    QByteArray line = name + ": " + value;
    for (char &c : line) {
        if (c == '\r' || c == '\n' || c == '\0')
            c = ' ';
    }
    QByteArray out;
    // Nothing breaks before the first blank of the value, so that no line is empty but for blanks.
    int searchFrom = name.size() + 2;
    while (line.size() > maxLineLength) {
        int blank = line.lastIndexOf(", ", maxLineLength - 1);
        blank = blank >= searchFrom ? blank + 1 : line.lastIndexOf(' ', maxLineLength);
        if (blank < searchFrom)
            blank = line.indexOf(' ', qMax(searchFrom, maxLineLength));
        if (blank < 0 || line.mid(blank).trimmed().isEmpty())
            break;
        out += line.left(blank) + "\r\n";
        line.remove(0, blank);
        searchFrom = 1;
    }
    return out + line + "\r\n";
}

QString previewOfPlainText(const QString &text)
{
    return text.left(maxPreviewLength);
}

QString previewOfHtml(const QString &html)
{
    QString text;
    for (int i = 0; i < html.size() && text.size() < 4 * maxPreviewLength;) {
        if (html.at(i) != QLatin1Char('<')) {
            text += html.at(i++);
            continue;
        }
        const int hidden = endOfHidden(html, i);
        const int close = html.indexOf(QLatin1Char('>'), hidden < 0 ? i : hidden);
        text += QLatin1Char(' ');
        i = close < 0 ? html.size() : close + 1;
    }
    return withoutEntities(text).simplified().left(maxPreviewLength);
}
