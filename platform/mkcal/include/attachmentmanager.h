// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <mkcalexport.h>

#include <KCalendarCore/Attachment>

#include <QByteArray>
#include <QMap>
#include <QString>

namespace mKCal {

/**
 * Builds an attachment whose bytes are elsewhere: name, size and the properties of the service that has the
 * bytes stand in its URI, so that the URI alone tells them. The URI does not change when the bytes arrive.
 */
class MKCAL_EXPORT AttachmentManager
{
public:
    AttachmentManager();
    explicit AttachmentManager(const KCalendarCore::Attachment &attachment);

    void setFileName(const QString &name);
    void setEstimatedSize(qint64 bytes);
    /** An empty value removes the property. */
    void setServiceProperty(const QString &key, const QString &value);
    KCalendarCore::Attachment attachment() const;
    /** Puts the bytes into the local file of the attachment, whole or not at all. */
    bool saveData(const QByteArray &data, QString *errorText);

private:
    void setItem(const QString &key, const QString &value);

    QMap<QString, QString> mItems;
    KCalendarCore::Attachment mOriginal;
};

} // namespace mKCal
