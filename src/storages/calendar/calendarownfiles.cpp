// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarownfiles.h"

#include "application/base/logging.h"

#include <attachmentinfo.h>
#include <attachmentmanager.h>

#include <QCryptographicHash>
#include <QFile>
#include <QUrl>

#include <stdexcept>

using KCalendarCore::Attachment;
using mKCal::AttachmentInfo;
using mKCal::AttachmentManager;

namespace {

QString localPath(const QString &location)
{
    const QUrl url(location);
    return url.isLocalFile() ? url.toLocalFile() : location;
}

} // namespace

bool CalendarOwnFiles::isFile(const Attachment &attachment)
{
    return attachment.isUri() && !AttachmentInfo(attachment).contentLocation().isEmpty();
}

QString CalendarOwnFiles::contentHash(const QString &location, const QString &eventId)
{
    QFile file(localPath(location));
    QCryptographicHash hash(QCryptographicHash::Md5);
    if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file)) {
        throw std::runtime_error(QStringLiteral("Failed to get attachment hash for event: %1. Error: %2.")
                                     .arg(eventId, file.errorString())
                                     .toStdString());
    }
    return QString::fromLatin1(hash.result().toHex());
}

void CalendarOwnFiles::add(const Attachment &attachment, const QString &eventId)
{
    try {
        if (isFile(attachment)) {
            mByHash.insert(contentHash(AttachmentInfo(attachment).contentLocation(), eventId), attachment);
            return;
        }
    } catch (const std::runtime_error &error) {
        qCWarning(eas()) << error.what();
    }
    mOthers.append(attachment);
}

void CalendarOwnFiles::handOver(const AttachmentEntity &entity, const Attachment &attachment)
{
    const auto own = mByHash.find(entity.contentId());
    if (own == mByHash.end())
        return;
    QFile file(localPath(AttachmentInfo(*own).contentLocation()));
    QString error;
    if (!file.open(QIODevice::ReadOnly) || !AttachmentManager(attachment).saveData(file.readAll(), &error))
        qCWarning(eas()) << "cannot keep the bytes of" << entity.displayName() << error;
    mByHash.erase(own);
}

Attachment::List CalendarOwnFiles::notHandedOver() const
{
    return mByHash.values().toVector() + mOthers;
}
