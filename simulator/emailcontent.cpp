// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/emailcontent.h"

#include "simulator/mimereader.h"
#include "simulator/plaintext.h"

#include <atomic>

namespace Simulator {
namespace {

QDateTime receivedOf(const QDateTime &wanted, const QDateTime &written)
{
    const QDateTime time = wanted.isValid() ? wanted : written;
    return time.isValid() ? time.toUTC() : QDateTime::currentDateTimeUtc();
}

/** The attachments of the content with this serial number. */
struct DecodedAttachments
{
    quint64 serial = 0;
    QVector<ItemAttachment> items;
};

std::atomic<quint64> lastSerial { 0 };

} // namespace

EmailContent::EmailContent(const QByteArray &message, const QDateTime &received)
    : mSerial(++lastSerial)
    , mMessage(message)
{
    const MimeReader reader(message);
    mHeaders = reader.headers();
    mReceived = receivedOf(received, reader.date());
    mMeetingRequest = reader.calendar();
    const QVector<MimeAttachment> attachments = reader.attachments();
    for (const MimeAttachment &attachment : attachments) {
        const ItemAttachment &item = attachment.item;
        mAttachmentInfos.append({ item.name, item.bytes.size(), item.contentId, attachment.contentLocation,
            item.isInline, item.isMessage });
    }
}

bool EmailContent::isSmime() const
{
    return mHeaders.messageClass.startsWith(QLatin1String("IPM.Note.SMIME"));
}

EmailBodies EmailContent::bodies() const
{
    const MimeReader reader(mMessage);
    EmailBodies bodies { reader.plainText(), reader.htmlText() };
    if (bodies.plain.isEmpty() && !bodies.html.isEmpty())
        bodies.plain = PlainText::fromHtml(bodies.html);
    return bodies;
}

QVector<ItemAttachment> EmailContent::attachments() const
{
    thread_local DecodedAttachments last;
    if (last.serial != mSerial) {
        last = { mSerial, {} };
        const QVector<MimeAttachment> found = MimeReader(mMessage).attachments();
        for (const MimeAttachment &attachment : found)
            last.items.append(attachment.item);
    }
    return last.items;
}

} // namespace Simulator
