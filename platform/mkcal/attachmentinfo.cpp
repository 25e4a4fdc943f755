// SPDX-License-Identifier: LGPL-2.1-or-later
#include "attachmentinfo.h"

#include "internal/attachmenturi.h"
#include "internal/storelocation.h"

#include <QFileInfo>
#include <QUrl>

namespace mKCal {

namespace {

bool isLocalFile(const QString &uri)
{
    return uri.startsWith(QLatin1String("file:"), Qt::CaseInsensitive);
}

} // namespace

AttachmentInfo::AttachmentInfo(const KCalendarCore::Attachment &attachment)
    : mUri(attachment.uri())
{
}

AttachmentInfo::AttachmentInfo(const QString &uri)
    : mUri(uri)
{
}

QString AttachmentInfo::fileName() const
{
    if (isLocalFile(mUri))
        return QFileInfo(QUrl(mUri).toLocalFile()).fileName();
    return AttachmentUri::items(mUri).value(AttachmentUri::nameKey());
}

qint64 AttachmentInfo::fileSize() const
{
    const QFileInfo file(isLocalFile(mUri) ? QUrl(mUri).toLocalFile() : StoreLocation::attachmentFile(mUri));
    if (file.isFile())
        return file.size();
    bool ok = false;
    const qint64 estimated = AttachmentUri::items(mUri).value(AttachmentUri::sizeKey()).toLongLong(&ok);
    return ok ? estimated : -1;
}

QString AttachmentInfo::contentLocation() const
{
    if (isLocalFile(mUri))
        return QUrl(mUri).toLocalFile();
    const QString file = StoreLocation::attachmentFile(mUri);
    return QFileInfo(file).isFile() ? QUrl::fromLocalFile(file).toString(QUrl::FullyEncoded) : QString();
}

QString AttachmentInfo::uri() const
{
    return mUri;
}

QString AttachmentInfo::extractServiceProperty(const QString &key) const
{
    return extractServiceProperty(mUri, key);
}

QString AttachmentInfo::extractServiceProperty(const QString &uri, const QString &key)
{
    return AttachmentUri::items(uri).value(key);
}

} // namespace mKCal
