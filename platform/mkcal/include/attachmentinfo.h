// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <mkcalexport.h>

#include <KCalendarCore/Attachment>

#include <QString>

namespace mKCal {

/** Reads what an attachment's URI tells, and where its bytes are. */
class MKCAL_EXPORT AttachmentInfo
{
public:
    explicit AttachmentInfo(const KCalendarCore::Attachment &attachment);
    explicit AttachmentInfo(const QString &uri);

    QString fileName() const;
    /** Of the local file if it is there, otherwise as estimated, otherwise -1. */
    qint64 fileSize() const;
    /** URL of the local file once the bytes are there, the path for a file: URI, otherwise empty. */
    QString contentLocation() const;
    QString uri() const;
    /** Null when absent. */
    QString extractServiceProperty(const QString &key) const;
    static QString extractServiceProperty(const QString &uri, const QString &key);

private:
    QString mUri;
};

} // namespace mKCal
