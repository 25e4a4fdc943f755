// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailoutgoingmime.h"

#include "application/base/logging.h"
#include "common/exchangeactivesync.h"

#include <algorithm>

namespace {

constexpr char LineEnd[] = "\r\n";

bool isContinuation(const QByteArray &line)
{
    return line.startsWith(' ') || line.startsWith('\t');
}

bool isBcc(const QByteArray &line)
{
    return qstrnicmp(line.constData(), "Bcc:", 4) == 0;
}

/** Where the header ends: behind the last of its lines, before the empty one. */
int headerSize(const QByteArray &mime)
{
    const int end = mime.indexOf("\r\n\r\n");
    return end < 0 ? mime.size() : end + 2;
}

/** The lines of a header, without their ends, that belong to Bcc or do not. */
QByteArray linesOf(const QByteArray &header, bool ofBcc)
{
    QByteArray picked;
    bool inBcc = false;
    const QList<QByteArray> lines = header.split('\n');
    for (QByteArray line : lines) {
        if (line.endsWith('\r'))
            line.chop(1);
        if (line.isEmpty())
            break;
        inBcc = isContinuation(line) ? inBcc : isBcc(line);
        if (inBcc == ofBcc)
            picked += line + LineEnd;
    }
    return picked;
}

QByteArray withoutBcc(const QByteArray &mime)
{
    const int size = headerSize(mime);
    const QByteArray header = mime.left(size);
    const QByteArray kept = linesOf(header, false);
    return kept.size() == header.size() ? mime : kept + mime.mid(size);
}

/** Whether a line ends, at this place, in something other than CR LF. */
bool endsWrongly(const QByteArray &text, int i)
{
    if (text.at(i) == '\n')
        return i == 0 || text.at(i - 1) != '\r';
    return text.at(i) == '\r' && (i + 1 == text.size() || text.at(i + 1) != '\n');
}

QByteArray withNetworkLines(const QByteArray &text)
{
    int wrong = 0;
    for (int i = 0; i < text.size(); ++i)
        wrong += endsWrongly(text, i) ? 1 : 0;
    if (wrong == 0)
        return text;
    QByteArray lines;
    lines.reserve(text.size() + wrong);
    for (int i = 0; i < text.size(); ++i) {
        if (endsWrongly(text, i))
            lines += LineEnd;
        else
            lines += text.at(i);
    }
    return lines;
}

bool isResponseToMeeting(const QMailMessageMetaData &message)
{
    const QString messageClass = message.customField(ExchangeActiveSync::MESSAGE_CLASS_FIELD);
    const bool isRequest = (message.status() & QMailMessage::CalendarInvitation)
        && messageClass == ExchangeActiveSync::MESSAGE_CLASS_MEETING_REQUEST;
    return isRequest || messageClass == ExchangeActiveSync::MESSAGE_CLASS_MEETING_REQUEST_CANCELLED;
}

/** The number of the part that is the source message by reference, or -1. */
int referencePart(const QMailMessage &message, const QMailMessageId &source)
{
    for (uint i = 0; i < message.partCount(); ++i) {
        const QMailMessagePart &part = message.partAt(i);
        if (part.contentType().content().toLower() == "message/rfc822"
            && part.referenceType() == QMailMessagePart::MessageReference
            && part.messageReference() == source)
            return int(i);
    }
    return -1;
}

} // namespace

MailOutgoingMime::MailOutgoingMime(const QMailMessage &message)
    : mMessage(message)
{
}

QByteArray MailOutgoingMime::bccHeader(const QMailMessage &message)
{
    return linesOf(message.toRfc2822(QMailMessage::HeaderOnlyFormat), true);
}

QByteArray MailOutgoingMime::rendered(const QMailMessage &message)
{
    // Some stores write the header into this form, too. A message may be large: it is copied only where it
    // has to be changed.
    QByteArray mime = withoutBcc(withNetworkLines(message.toRfc2822(QMailMessage::TransmissionFormat)));
    const QByteArray bcc = bccHeader(message);
    if (!bcc.isEmpty())
        mime.prepend(bcc);
    return mime;
}

QByteArray MailOutgoingMime::whole() const
{
    return rendered(mMessage);
}

bool MailOutgoingMime::isMeetingResponse() const
{
    return isResponseToMeeting(mMessage)
        || isResponseToMeeting(QMailMessageMetaData(mMessage.inResponseTo()));
}

MailOutgoingMime::Smart MailOutgoingMime::smart() const
{
    const QMailMessageId source = mMessage.inResponseTo();
    if (!source.isValid()) {
        qCWarning(eas()) << "invalid response message id" << source.toULongLong();
        return { whole(), false };
    }
    const int part = referencePart(mMessage, source);
    if (part < 0) {
        const bool isForced = isMeetingResponse();
        qCWarning(eas()) << "Tried to get a smart mime, but response message part is not found."
                            "Force smart mime is"
                         << (isForced ? "true" : "false");
        return { whole(), isForced };
    }
    QMailMessage withoutSource(mMessage);
    withoutSource.removePartAt(uint(part));
    return { rendered(withoutSource), true };
}
