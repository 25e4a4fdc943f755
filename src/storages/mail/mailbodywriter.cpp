// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailbodywriter.h"

#include "application/base/logging.h"
#include "easitems/containers/easbodycontainer.h"
#include "storages/mail/mailcontentkind.h"

#include <qmailmessage.h>

#include <optional>

namespace {

bool isCalendarPart(const QMailMessagePartContainer &part)
{
    return part.contentType().matches("text", "calendar");
}

/** The first calendar part of the container, or null. */
template <typename Container> Container *firstCalendarPart(Container &container)
{
    if (isCalendarPart(container) && container.hasBody())
        return &container;
    for (uint i = 0; i < container.partCount(); ++i) {
        if (Container *const found = firstCalendarPart<Container>(container.partAt(i)))
            return found;
    }
    return nullptr;
}

/** The multipart in this container that holds a calendar part, or null. */
QMailMessagePartContainer *calendarAlternative(QMailMessagePartContainer &container)
{
    for (uint i = 0; i < container.partCount(); ++i) {
        if (isCalendarPart(container.partAt(i)))
            return &container;
    }
    for (uint i = 0; i < container.partCount(); ++i) {
        if (QMailMessagePartContainer *found = calendarAlternative(container.partAt(i)))
            return found;
    }
    return nullptr;
}

std::optional<QMailMessagePart> calendarPart(QMailMessage &message)
{
    if (const QMailMessagePartContainer *alternative = calendarAlternative(message)) {
        for (uint i = 0; i < alternative->partCount(); ++i) {
            if (isCalendarPart(alternative->partAt(i)))
                return alternative->partAt(i);
        }
    }
    return std::nullopt;
}

/** A body set on an alternative takes the place of all of it, so the calendar part's neighbour gets it. */
QMailMessagePartContainer &textTarget(QMailMessage &message)
{
    QMailMessagePartContainer *alternative = calendarAlternative(message);
    if (alternative && alternative->partCount() > 1 && !isCalendarPart(alternative->partAt(0)))
        return alternative->partAt(0);
    return message;
}

QMailMessagePart madeCalendarPart(const QByteArray &iCalendar, const QByteArray &type)
{
    return QMailMessagePart::fromData(
        iCalendar, QMailMessageContentDisposition(), QMailMessageContentType(type), QMailMessageBody::Base64);
}

void appendCalendarPart(QMailMessage &message, const QMailMessagePart &calendar)
{
    QMailMessagePart content;
    if (message.multipartType() != QMailMessage::MultipartNone) {
        content.setMultipartType(message.multipartType());
        for (uint i = 0; i < message.partCount(); ++i)
            content.appendPart(message.partAt(i));
    } else if (message.hasBody()) {
        content.setBody(message.body());
    }
    message.clearParts();
    message.setMultipartType(QMailMessage::MultipartAlternative);
    message.appendPart(content);
    message.appendPart(calendar);
}

void setMimeBody(QMailMessage &message, const QByteArray &mime)
{
    qCInfo(eas()) << "handling MIME body";
    const QMailMessageMetaData kept(message);
    const QMailMessage parsed = QMailMessage::fromRfc2822(mime);
    const bool hasAttachments = (parsed.status() & QMailMessage::HasAttachments) != 0;

    message = parsed;
    message.setId(kept.id());
    message.setParentAccountId(kept.parentAccountId());
    message.setParentFolderId(kept.parentFolderId());
    message.setParentThreadId(kept.parentThreadId());
    message.setInResponseTo(kept.inResponseTo());
    message.setRestoreFolderId(kept.restoreFolderId());
    message.setServerUid(kept.serverUid());
    message.setStatus(kept.status());
    message.setStatus(QMailMessage::HasAttachments, hasAttachments);
    message.setContentScheme(kept.contentScheme());
    message.setContentIdentifier(kept.contentIdentifier());
    // MIME text knows nothing of these; a move that waits for its upload would be forgotten with the first.
    message.setPreviousParentFolderId(kept.previousParentFolderId());
    message.setResponseType(kept.responseType());
    message.setSize(kept.size());
    if (!parsed.receivedDate().isValid())
        message.setReceivedDate(kept.receivedDate());
    if (!parsed.date().isValid())
        message.setDate(kept.date());
}

struct TextForm
{
    EasBodyContainer::BodyType type;
    const char *subType;
    MailContentKind::Kind content;
};

constexpr TextForm textForms[] = {
    { EasBodyContainer::PlainTextBodyType, "plain", QMailMessageMetaData::PlainTextContent },
    { EasBodyContainer::HTMLBodyType, "html", QMailMessageMetaData::HtmlContent },
    { EasBodyContainer::RTFBodyType, "plain", QMailMessageMetaData::RichTextContent },
};

void setTextBody(QMailMessage &message, const EasBodyContainer &body)
{
    qCInfo(eas()) << "handling non-MIME email body";
    if (body.data().isEmpty())
        return;
    QMailMessageContentType type;
    type.setType("text");
    type.setSubType("plain");
    type.setCharset("UTF-8");
    MailContentKind::Kind content = QMailMessageMetaData::UnknownContent;
    bool known = false;
    for (const TextForm &form : textForms) {
        if (form.type == body.type()) {
            type.setSubType(form.subType);
            content = form.content;
            known = true;
        }
    }
    if (body.type() == EasBodyContainer::UnspecifiedBodyType)
        type.setType("");
    else if (!known)
        qCWarning(eas()) << "unhandled body type" << static_cast<int>(body.type());
    MailContentKind::set(message, content);
    // The call only sets the text body; the type of the body makes it an HTML one.
    textTarget(message).setPlainTextBody(
        QMailMessageBody::fromData(body.data(), type, QMailMessageBody::EightBit));
}

} // namespace

namespace MailBodyWriter {

void setMessageBody(QMailMessage &message, const EasBodyContainer &body, bool setPreview)
{
    const QString data = body.data();
    if (!body.truncated()) {
        if (body.type() != EasBodyContainer::MIMEBodyType)
            setTextBody(message, body);
        else if (!data.isEmpty())
            setMimeBody(message, data.toUtf8());
    }
    message.setStatus(QMailMessage::ContentAvailable, !body.truncated());
    message.setStatus(QMailMessage::PartialContentAvailable, !data.isEmpty());

    // A body that has been stored is previewed from its text; what stands in for it elsewhere comes from
    // here.
    if (setPreview && !body.preview().isEmpty())
        MailBodyWriter::setPreview(message, body.preview());
    else if (setPreview && body.truncated() && !data.isEmpty())
        MailBodyWriter::setPreview(message, data);
}

bool isFullerThan(const QMailMessage &message, const EasBodyContainer &body)
{
    if (!(message.status() & QMailMessage::ContentAvailable))
        return false;
    const bool isPlain =
        body.type() != EasBodyContainer::HTMLBodyType && body.type() != EasBodyContainer::MIMEBodyType;
    return body.truncated() || (body.data().isEmpty() && !bodyText(message).isEmpty())
        || (isPlain && message.findHtmlContainer());
}

void setPreview(QMailMessage &message, const QString &preview)
{
    // A new body makes the preview stale; asking once computes it, and only what is set after that stays.
    message.preview();
    message.setPreview(preview);
}

QString bodyText(const QMailMessage &message)
{
    const QMailMessagePartContainer *text = message.findPlainTextContainer();
    if (!text)
        text = message.findHtmlContainer();
    return text && text->hasBody() ? text->body().data() : QString();
}

void addCalendarPart(QMailMessage &message, const QByteArray &iCalendar)
{
    appendCalendarPart(message, madeCalendarPart(iCalendar, "text/calendar;method=REQUEST;charset=UTF-8"));
}

std::optional<QMailMessageBody> calendarBody(const QMailMessage &message)
{
    const auto *const part = firstCalendarPart<const QMailMessagePartContainer>(message);
    return part ? std::make_optional(part->body()) : std::nullopt;
}

void setCalendarReply(QMailMessage &message, const QByteArray &iCalendar)
{
    const QMailMessagePart reply = madeCalendarPart(iCalendar, "text/calendar;method=REPLY;charset=UTF-8");
    if (auto *const part = firstCalendarPart<QMailMessagePartContainer>(message))
        part->setBody(reply.body());
    else
        appendCalendarPart(message, reply);
}

void rebuildWithoutAttachments(QMailMessage &message)
{
    const std::optional<QMailMessagePart> calendar = calendarPart(message);
    const QMailMessagePartContainer *text = message.findHtmlContainer();
    if (!text)
        text = message.findPlainTextContainer();
    std::optional<QMailMessageBody> body;
    if (text && text->hasBody())
        body = text->body();

    message.clearParts();
    message.setMultipartType(QMailMessage::MultipartNone);
    if (body)
        message.setBody(*body);
    if (calendar)
        appendCalendarPart(message, *calendar);
}

} // namespace MailBodyWriter
