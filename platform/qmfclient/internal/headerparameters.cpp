// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/headerparameters.h"

#include <QMap>
#include <QTextCodec>

#include <algorithm>

namespace {

bool isTokenCharacter(char c)
{
    return c > ' ' && c < 127 && !strchr("()<>@,;:\\\"/[]?=", c);
}

/** One value from pos on, quoted or not; pos ends behind it. */
QByteArray takeValue(const QByteArray &text, int &pos)
{
    QByteArray value;
    if (pos < text.size() && text.at(pos) == '"') {
        for (++pos; pos < text.size() && text.at(pos) != '"'; ++pos) {
            if (text.at(pos) == '\\' && pos + 1 < text.size())
                ++pos;
            value += text.at(pos);
        }
        const int semicolon = text.indexOf(';', pos);
        pos = semicolon < 0 ? text.size() : semicolon;
        return value;
    }
    const int semicolon = text.indexOf(';', pos);
    const int end = semicolon < 0 ? text.size() : semicolon;
    value = text.mid(pos, end - pos).trimmed();
    pos = end;
    return value;
}

/** charset'language'octets, the octets percent-encoded. */
QByteArray utf8OfExtended(const QByteArray &value)
{
    const int first = value.indexOf('\'');
    const int second = first < 0 ? -1 : value.indexOf('\'', first + 1);
    if (second < 0)
        return QByteArray::fromPercentEncoding(value);
    const QByteArray octets = QByteArray::fromPercentEncoding(value.mid(second + 1));
    const QTextCodec *codec = QTextCodec::codecForName(value.left(first));
    return codec ? codec->toUnicode(octets).toUtf8() : octets;
}

struct Pieces
{
    QMap<int, QByteArray> values;
    bool extended = false;
};

/** "name", "name*", "name*0", "name*0*" come down to the name, the number and whether the value is encoded.
 */
struct PieceName
{
    explicit PieceName(const QByteArray &text)
        : name(text)
    {
        const int star = text.indexOf('*');
        if (star <= 0)
            return;
        QByteArray rest = text.mid(star + 1);
        extended = rest.isEmpty() || rest.endsWith('*');
        if (rest.endsWith('*'))
            rest.chop(1);
        bool ok = rest.isEmpty();
        number = rest.isEmpty() ? 0 : rest.toInt(&ok);
        if (ok && number >= 0)
            name = text.left(star);
        else
            number = -1;
    }
    QByteArray name;
    int number = -1;
    bool extended = false;
};

bool isAscii(const QByteArray &text)
{
    return std::all_of(text.cbegin(), text.cend(), [](char c) { return uchar(c) < 0x80; });
}

/** An encoded word of the bytes as they are, whatever they stand for. */
QByteArray wordOf(const QByteArray &bytes)
{
    QByteArray word = "=?ISO-8859-1?Q?";
    for (const char c : bytes) {
        const bool isPlain = isTokenCharacter(c) && c != '.' && c != '=' && c != '_' && c != '?';
        word += isPlain || c == ':' ? QByteArray(1, c) : '=' + QByteArray(1, c).toHex().toUpper();
    }
    return word + "?=";
}

/** A line ends after 998 letters, and an octet may take three of them. */
const int longestValue = 300;

/** A value in pieces (RFC 2231, 3), each of which goes into a line. */
QByteArray inSections(const QByteArray &name, const QByteArray &value, bool plain)
{
    QByteArrayList sections;
    for (int begin = 0; begin < value.size(); begin += longestValue) {
        const QByteArray section = name + '*' + QByteArray::number(sections.size());
        const QByteArray piece = value.mid(begin, longestValue);
        if (plain)
            sections.append(HeaderParameters::quoted(section, piece));
        else
            sections.append(section + (begin == 0 ? "*=UTF-8''" : "*=") + piece.toPercentEncoding());
    }
    return sections.join("; ");
}

bool needsQuotes(const QByteArray &value)
{
    return !std::all_of(value.cbegin(), value.cend(),
        [](char c) { return isTokenCharacter(c) || uchar(c) >= 0x80 || c == '"'; });
}

} // namespace

namespace HeaderParameters {

void parse(
    const QByteArray &text, QByteArray *content, QList<QMailMessageHeaderField::ParameterType> *parameters)
{
    const int first = text.indexOf(';');
    *content = (first < 0 ? text : text.left(first)).trimmed();
    QMap<QByteArray, Pieces> pieces;
    for (int pos = first < 0 ? text.size() : first; pos < text.size();) {
        ++pos; // the semicolon
        const int equals = text.indexOf('=', pos);
        const int semicolon = text.indexOf(';', pos);
        if (equals < 0 || (semicolon >= 0 && semicolon < equals)) {
            pos = semicolon < 0 ? text.size() : semicolon;
            continue;
        }
        const PieceName name(text.mid(pos, equals - pos).trimmed());
        pos = equals + 1;
        while (pos < text.size() && (text.at(pos) == ' ' || text.at(pos) == '\t'))
            ++pos;
        const QByteArray value = takeValue(text, pos);
        if (name.number < 0) {
            parameters->append({ name.name, value });
        } else {
            Pieces &entry = pieces[name.name.toLower()];
            entry.values.insert(name.number, value);
            entry.extended = entry.extended || name.extended;
        }
    }
    for (auto it = pieces.cbegin(); it != pieces.cend(); ++it) {
        const QByteArray joined = QByteArrayList(it->values.values()).join();
        const QByteArray value = it->extended ? utf8OfExtended(joined) : joined;
        // The extended notation wins over a plain one beside it (RFC 6266, 4.3; mail does the same).
        const auto same = std::find_if(parameters->begin(), parameters->end(),
            [&](const auto &parameter) { return parameter.first.toLower() == it.key(); });
        if (same == parameters->end())
            parameters->append({ it.key(), value });
        else
            same->second = value;
    }
}

QByteArray quoted(const QByteArray &name, const QByteArray &value)
{
    if (!value.isEmpty() && std::all_of(value.cbegin(), value.cend(), isTokenCharacter))
        return name + '=' + value;
    QByteArray escaped = value;
    escaped.replace('\\', "\\\\").replace('"', "\\\"");
    return name + "=\"" + escaped + '"';
}

QByteArray keptInPart(const QMailMessageHeaderField &field)
{
    QByteArray text = field.content();
    const QList<QMailMessageHeaderField::ParameterType> parameters = field.parameters();
    for (int i = 0; i < parameters.size(); ++i) {
        const QByteArray name = parameters.at(i).first;
        const QByteArray value = parameters.at(i).second;
        QByteArray behind;
        for (int k = i + 1; k < parameters.size(); ++k)
            behind += "; " + quoted(parameters.at(k).first, parameters.at(k).second);
        if (value.contains('"')) // nothing closes it before the end of the field
            return text + "; " + quoted(name, value + behind);
        if (!isAscii(value) && !needsQuotes(value))
            return text + "; " + wordOf(name + '=' + value + ';') + behind.mid(1);
        text += "; " + quoted(name, isAscii(value) ? value : wordOf(value));
    }
    return text;
}

QByteArray encoded(const QByteArray &name, const QByteArray &value)
{
    const bool plain = std::all_of(value.cbegin(), value.cend(), [](char c) { return c >= ' ' && c < 127; });
    if (value.size() > longestValue)
        return inSections(name, value, plain);
    if (plain)
        return quoted(name, value);
    return name + "*=UTF-8''" + value.toPercentEncoding();
}

} // namespace HeaderParameters
