// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/emailcontent.h"

#include <memory>

namespace Simulator {

struct MimeAttachment
{
    ItemAttachment item;
    QString contentLocation;
};

/** Takes a message apart as a mail server does when it arrives. Short-lived. */
class MimeReader
{
public:
    explicit MimeReader(const QByteArray &message);
    ~MimeReader();

    EmailHeaders headers() const;
    /** Addresses of To, Cc and Bcc, without names. */
    QStringList recipients() const;
    /** As the header tells; invalid if there is none. */
    QDateTime date() const;
    QString plainText() const;
    QString htmlText() const;
    /** The iCalendar text that asks for a meeting or cancels one. */
    QByteArray calendar() const;
    QVector<MimeAttachment> attachments() const;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Simulator
