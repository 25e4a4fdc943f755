// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/item.h"

#include <QDateTime>
#include <QStringList>

namespace Simulator {

struct EmailHeaders
{
    QString from;
    QString sender;
    QString to;
    QString cc;
    QString bcc;
    QString replyTo;
    QString displayTo;
    QString subject;
    QString threadTopic;
    QString messageClass;
    int importance = 1;
};

/** Name, type and size of an attachment, without its bytes. */
struct AttachmentInfo
{
    QString name;
    int size = 0;
    QString contentId;
    QString contentLocation;
    bool isInline = false;
    bool isMessage = false;
};

struct EmailBodies
{
    QString plain; ///< derived from the HTML if the message has none
    QString html; ///< empty if the message has none
};

/**
 * A message as it arrived: the bytes and what can be read from them.
 *
 * Headers are read once; bodies and attachments each time they are asked for, so that a large mailbox stays
 * small.
 */
class EmailContent
{
public:
    EmailContent(const QByteArray &message, const QDateTime &received);

    /** Differs from that of any other content. */
    quint64 serial() const { return mSerial; }
    const QByteArray &message() const { return mMessage; }
    const QDateTime &received() const { return mReceived; }
    const EmailHeaders &headers() const { return mHeaders; }
    const QVector<AttachmentInfo> &attachmentInfos() const { return mAttachmentInfos; }
    /** The iCalendar part of a meeting request or a cancellation, empty for all others. */
    const QByteArray &meetingRequest() const { return mMeetingRequest; }
    bool isSmime() const;
    EmailBodies bodies() const;
    /** Those of the last message that was asked are kept: files are fetched in many ranges. */
    QVector<ItemAttachment> attachments() const;

private:
    quint64 mSerial;
    QByteArray mMessage;
    QDateTime mReceived;
    EmailHeaders mHeaders;
    QVector<AttachmentInfo> mAttachmentInfos;
    QByteArray mMeetingRequest;
};

} // namespace Simulator
