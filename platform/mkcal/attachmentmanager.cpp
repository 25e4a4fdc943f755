// SPDX-License-Identifier: LGPL-2.1-or-later
#include "attachmentmanager.h"

#include "internal/attachmenturi.h"
#include "internal/storelocation.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

namespace mKCal {

AttachmentManager::AttachmentManager() = default;

AttachmentManager::AttachmentManager(const KCalendarCore::Attachment &attachment)
    : mItems(AttachmentUri::items(attachment.uri()))
    , mOriginal(attachment)
{
}

void AttachmentManager::setFileName(const QString &name)
{
    setItem(AttachmentUri::nameKey(), name);
}

void AttachmentManager::setEstimatedSize(qint64 bytes)
{
    setItem(AttachmentUri::sizeKey(), QString::number(bytes));
}

void AttachmentManager::setServiceProperty(const QString &key, const QString &value)
{
    setItem(key, value);
}

void AttachmentManager::setItem(const QString &key, const QString &value)
{
    if (value.isEmpty())
        mItems.remove(key);
    else
        mItems.insert(key, value);
}

KCalendarCore::Attachment AttachmentManager::attachment() const
{
    KCalendarCore::Attachment result = mOriginal;
    if (mItems.isEmpty())
        return result;
    result.setUri(AttachmentUri::uri(mItems));
    if (result.label().isEmpty())
        result.setLabel(mItems.value(AttachmentUri::nameKey()));
    return result;
}

bool AttachmentManager::saveData(const QByteArray &data, QString *errorText)
{
    const QString path = StoreLocation::attachmentFile(attachment().uri());
    QDir().mkpath(QFileInfo(path).path());
    QSaveFile file(path);
    const bool saved = file.open(QIODevice::WriteOnly) && file.write(data) == data.size() && file.commit();
    if (!saved && errorText)
        *errorText = file.errorString();
    return saved;
}

} // namespace mKCal
