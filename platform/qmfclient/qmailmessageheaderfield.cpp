// SPDX-License-Identifier: LGPL-2.1-or-later
#include <qmailmessageheaderfield.h>

#include "internal/headerparameters.h"
#include "internal/headertext.h"

#include <KCodecs>

namespace {

/** A line of a header ends after 998 letters, and is broken at blanks alone. */
const int longestWord = 900;

bool fitsHeader(QStringView word)
{
    if (word.size() > longestWord)
        return false;
    for (const QChar c : word) {
        if (c < QLatin1Char(' ') || c > QLatin1Char('~'))
            return false;
    }
    return !word.startsWith(QLatin1String("=?"));
}

} // namespace

QMailMessageHeaderField::QMailMessageHeaderField(const QByteArray &id, const QByteArray &text, FieldType type)
    : mId(id)
{
    if (type == StructuredField)
        HeaderParameters::parse(text, &mContent, &mParameters);
    else
        mContent = text;
}

QMailMessageHeaderField::~QMailMessageHeaderField() = default;

bool QMailMessageHeaderField::isNull() const
{
    return mId.isEmpty() || (mContent.isEmpty() && mParameters.isEmpty());
}

QByteArray QMailMessageHeaderField::id() const
{
    return mId;
}

QByteArray QMailMessageHeaderField::content() const
{
    return mContent;
}

void QMailMessageHeaderField::setContent(const QByteArray &content)
{
    mContent = content;
}

QByteArray QMailMessageHeaderField::parameter(const QByteArray &name) const
{
    for (const ParameterType &parameter : mParameters) {
        if (qstricmp(parameter.first.constData(), name.constData()) == 0)
            return parameter.second;
    }
    return QByteArray();
}

void QMailMessageHeaderField::setParameter(const QByteArray &name, const QByteArray &value)
{
    for (ParameterType &parameter : mParameters) {
        if (qstricmp(parameter.first.constData(), name.constData()) == 0) {
            parameter.second = value;
            return;
        }
    }
    mParameters.append({ name, value });
}

QList<QMailMessageHeaderField::ParameterType> QMailMessageHeaderField::parameters() const
{
    return mParameters;
}

QByteArray QMailMessageHeaderField::toString(bool includeName, bool presentable) const
{
    QByteArray text = includeName ? mId + ": " + mContent : mContent;
    for (const ParameterType &parameter : mParameters)
        text += "; "
            + (presentable ? HeaderParameters::quoted(parameter.first, parameter.second)
                           : HeaderParameters::encoded(parameter.first, parameter.second));
    return text;
}

QByteArray QMailMessageHeaderField::encodeWord(const QString &text, const QByteArray &charset)
{
    if (fitsHeader(text))
        return text.toLatin1();
    if (!charset.isEmpty() && qstricmp(charset.constData(), "UTF-8") != 0)
        return KCodecs::encodeRFC2047String(text, charset);
    // Neighbours that both need it go together: a blank between two encoded words is not part of the text.
    const QVector<QStringRef> words = text.splitRef(QLatin1Char(' '));
    QByteArrayList out;
    for (int i = 0; i < words.size();) {
        if (fitsHeader(words.at(i))) {
            out.append(words.at(i++).toLatin1());
            continue;
        }
        int end = i + 1;
        while (end < words.size() && (words.at(end).isEmpty() || !fitsHeader(words.at(end))))
            ++end; // Blanks in a row, too: readers drop those around encoded words.
        const int start = words.at(i).position();
        const int length = (end < words.size() ? words.at(end).position() - 1 : text.size()) - start;
        out.append(encodedWords(QStringView(text).mid(start, length)));
        i = end;
    }
    return out.join(' ');
}

QString QMailMessageHeaderField::decodeWord(const QByteArray &text)
{
    if (!text.contains("=?"))
        return QString::fromUtf8(text);
    QByteArray usedCharset;
    return KCodecs::decodeRFC2047String(text, &usedCharset, QByteArrayLiteral("UTF-8"));
}

QMailMessageContentType::QMailMessageContentType()
    : QMailMessageContentType(QByteArray())
{
}

QMailMessageContentType::QMailMessageContentType(const QByteArray &type)
    : QMailMessageHeaderField(QByteArrayLiteral("Content-Type"), type)
{
}

QByteArray QMailMessageContentType::type() const
{
    const int slash = mContent.indexOf('/');
    return (slash < 0 ? mContent : mContent.left(slash)).trimmed();
}

void QMailMessageContentType::setType(const QByteArray &type)
{
    const QByteArray sub = subType();
    if (type.isEmpty())
        mContent.clear();
    else
        mContent = sub.isEmpty() ? type : type + '/' + sub;
}

QByteArray QMailMessageContentType::subType() const
{
    const int slash = mContent.indexOf('/');
    return slash < 0 ? QByteArray() : mContent.mid(slash + 1).trimmed();
}

void QMailMessageContentType::setSubType(const QByteArray &subType)
{
    const QByteArray primary = type();
    if (!primary.isEmpty())
        mContent = subType.isEmpty() ? primary : primary + '/' + subType;
}

QByteArray QMailMessageContentType::name() const
{
    return parameter("name");
}

void QMailMessageContentType::setName(const QByteArray &name)
{
    setParameter("name", name);
}

QByteArray QMailMessageContentType::charset() const
{
    return parameter("charset");
}

void QMailMessageContentType::setCharset(const QByteArray &charset)
{
    setParameter("charset", charset);
}

QByteArray QMailMessageContentType::boundary() const
{
    return parameter("boundary");
}

void QMailMessageContentType::setBoundary(const QByteArray &boundary)
{
    setParameter("boundary", boundary);
}

bool QMailMessageContentType::matches(const QByteArray &primary, const QByteArray &sub) const
{
    return qstricmp(type().constData(), primary.constData()) == 0
        && (sub.isEmpty() || qstricmp(subType().constData(), sub.constData()) == 0);
}

QMailMessageContentDisposition::QMailMessageContentDisposition()
    : QMailMessageContentDisposition(QByteArray())
{
}

QMailMessageContentDisposition::QMailMessageContentDisposition(const QByteArray &type)
    : QMailMessageHeaderField(QByteArrayLiteral("Content-Disposition"), type)
{
}

QMailMessageContentDisposition::QMailMessageContentDisposition(DispositionType type)
    : QMailMessageContentDisposition()
{
    setType(type);
}

QMailMessageContentDisposition::DispositionType QMailMessageContentDisposition::type() const
{
    if (mContent.isEmpty())
        return None;
    // What is not known is to be treated as an attachment (RFC 2183, 2.8).
    return qstricmp(mContent.constData(), "inline") == 0 ? Inline : Attachment;
}

void QMailMessageContentDisposition::setType(DispositionType type)
{
    mContent = type == Inline ? "inline" : type == Attachment ? "attachment" : "";
}

QByteArray QMailMessageContentDisposition::filename() const
{
    return parameter("filename");
}

void QMailMessageContentDisposition::setFilename(const QByteArray &filename)
{
    setParameter("filename", filename);
}

int QMailMessageContentDisposition::size() const
{
    bool ok = false;
    const int size = parameter("size").toInt(&ok);
    return ok ? size : -1;
}

void QMailMessageContentDisposition::setSize(int size)
{
    setParameter("size", QByteArray::number(size));
}
