// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/attachedfile.h"

#include "client/output.h"

#include <QFile>
#include <QFileInfo>
#include <QMimeDatabase>

#include <algorithm>

namespace {

/** More than any server takes, and less than a message in memory can have. */
constexpr qint64 LargestFile = 512 * 1024 * 1024;

bool refuse(const QString &error)
{
    Output::error(error);
    return false;
}

bool isHarmless(QChar c)
{
    return c >= QLatin1Char(' ') && c <= QLatin1Char('~') && c != QLatin1Char('"') && c != QLatin1Char('\\');
}

/** A name as a parameter of a header: what the store would damage there goes as encoded words. */
QByteArray parameterText(const QString &name)
{
    constexpr int LongestWord = 45;
    if (std::all_of(name.cbegin(), name.cend(), isHarmless) && !name.startsWith(QLatin1String("=?")))
        return name.toLatin1();
    QByteArrayList words;
    QByteArray octets;
    const auto endWord = [&] {
        words.append("=?UTF-8?B?" + octets.toBase64() + "?=");
    };
    const QVector<uint> characters = name.toUcs4();
    for (const uint &character : characters) {
        const QByteArray next = QString::fromUcs4(&character, 1).toUtf8();
        if (octets.size() + next.size() > LongestWord) {
            endWord();
            octets.clear();
        }
        octets += next;
    }
    endWord();
    return words.join(' ');
}

/** The type by name and content; of composed types, which may not be encoded, none that readers look into. */
QByteArray contentType(const QString &path)
{
    const QByteArray type = QMimeDatabase().mimeTypeForFile(path).name().toLatin1();
    return type.startsWith("message/") || type.startsWith("multipart/") ? "application/octet-stream" : type;
}

} // namespace

bool AttachedFile::isThere() const
{
    const QFileInfo info(mPath);
    if (!info.exists())
        return refuse(QStringLiteral("there is no file %1").arg(mPath));
    if (!info.isFile())
        return refuse(QStringLiteral("%1 is no file that can be attached").arg(mPath));
    if (info.size() > LargestFile)
        return refuse(QStringLiteral("%1 is larger than any server takes").arg(mPath));
    QFile file(mPath);
    return file.open(QIODevice::ReadOnly)
        || refuse(QStringLiteral("cannot read %1: %2").arg(mPath, file.errorString()));
}

std::optional<QMailMessagePart> AttachedFile::part() const
{
    if (!isThere())
        return std::nullopt;
    const QFileInfo info(mPath);
    const QByteArray name = parameterText(info.fileName());
    QMailMessageContentDisposition disposition(QMailMessageContentDisposition::Attachment);
    disposition.setFilename(name);
    disposition.setSize(int(info.size()));
    QMailMessageContentType type(contentType(mPath));
    type.setName(name);
    QMailMessagePart part = QMailMessagePart::fromFile(mPath, disposition, type, QMailMessageBody::Base64);
    if (info.size() == 0 || part.hasBody())
        return part;
    refuse(QStringLiteral("cannot read %1").arg(mPath));
    return std::nullopt;
}
