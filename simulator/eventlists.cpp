// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/eventlists.h"

#include "simulator/datetext.h"
#include "simulator/filereference.h"
#include "simulator/protocolversion.h"

#include <algorithm>

namespace Simulator {
namespace {

const int mostCategories = 300;
const int ordinaryAttachment = 1;

bool isAttendeeStatus(int status)
{
    return status == 0 || (status >= 2 && status <= 5);
}

const EventAttendee *byEmail(const QVector<EventAttendee> &attendees, const QString &email)
{
    const auto found =
        std::find_if(attendees.begin(), attendees.end(), [&email](const EventAttendee &attendee) {
            return attendee.email.compare(email, Qt::CaseInsensitive) == 0;
        });
    return found == attendees.end() ? nullptr : &*found;
}

/** @p known is what the server knows of the person. */
bool readAttendee(const WbxmlNode &node, const EventAttendee *known, int version, EventAttendee &attendee)
{
    if (known)
        attendee = *known;
    attendee.email = node.text(QStringLiteral("Email"));
    attendee.name = node.text(QStringLiteral("Name"));
    const QString status = node.text(QStringLiteral("AttendeeStatus"));
    if (!status.isEmpty() && version >= Version160)
        return false;
    if (!status.isEmpty())
        attendee.status = status.toInt();
    if (node.has(QStringLiteral("AttendeeType")))
        attendee.type = node.text(QStringLiteral("AttendeeType")).toInt();
    return !attendee.email.isEmpty() && isAttendeeStatus(attendee.status) && attendee.type >= 1
        && attendee.type <= 3;
}

void appendTime(WbxmlNode &node, const char *element, const QDateTime &time)
{
    if (time.isValid())
        node.append(QLatin1String(element), DateText::compact(time));
}

QByteArray contentOf(const WbxmlNode &content)
{
    return content.isOpaque() ? content.opaqueBytes() : QByteArray::fromBase64(content.bytes());
}

bool isThere(const QVector<EventAttachment> &attachments, const EventAttachment &sent)
{
    return std::any_of(attachments.begin(), attachments.end(), [&sent](const EventAttachment &attachment) {
        return attachment.clientId == sent.clientId && attachment.name == sent.name
            && attachment.bytes == sent.bytes;
    });
}

/** A file that is sent once more, because the device lost the answer, is there once. */
bool addAttachment(const WbxmlNode &node, EventDetails &details, const EventContext &context)
{
    EventAttachment attachment;
    attachment.name = node.text(QStringLiteral("DisplayName"));
    attachment.clientId = node.text(QStringLiteral("ClientId"));
    attachment.contentId = node.text(QStringLiteral("ContentId"));
    attachment.contentType = node.text(QStringLiteral("ContentType")).toLatin1();
    attachment.isInline = node.has(QStringLiteral("IsInline"));
    attachment.bytes = contentOf(node.at(QStringLiteral("Content")));
    if (!isThere(details.attachments, attachment)) {
        attachment.number = ++*context.lastAttachment;
        details.attachments.append(attachment);
    }
    return !attachment.name.isEmpty() && !attachment.clientId.isEmpty() && node.has(QStringLiteral("Content"))
        && node.has(QStringLiteral("Method"));
}

bool deleteAttachment(const WbxmlNode &node, EventDetails &details)
{
    const int number = FileReference::parse(node.text(QStringLiteral("FileReference"))).attachment;
    const auto gone = std::remove_if(details.attachments.begin(), details.attachments.end(),
        [number](const EventAttachment &attachment) { return attachment.number == number; });
    const bool found = gone != details.attachments.end();
    details.attachments.erase(gone, details.attachments.end());
    return found;
}

} // namespace

bool EventLists::readAttendees(const WbxmlNode &node, EventDetails &details, const EventContext &context)
{
    QVector<EventAttendee> attendees;
    const QVector<WbxmlNode> nodes = node.all(QStringLiteral("Attendee"));
    for (const WbxmlNode &entry : nodes) {
        EventAttendee attendee;
        const EventAttendee *known = byEmail(details.attendees, entry.text(QStringLiteral("Email")));
        if (!readAttendee(entry, known, context.version, attendee))
            return false;
        attendees.append(attendee);
    }
    details.attendees = attendees;
    return true;
}

QVector<WbxmlNode> EventLists::writeAttendees(
    const QString &element, const EventDetails &details, const EventContext &context)
{
    WbxmlNode list(element);
    for (const EventAttendee &attendee : details.attendees) {
        WbxmlNode &node = list.append(QStringLiteral("Attendee"));
        node.append(QStringLiteral("Email"), attendee.email);
        node.append(QStringLiteral("Name"), attendee.name);
        node.append(QStringLiteral("AttendeeStatus"), attendee.status);
        node.append(QStringLiteral("AttendeeType"), attendee.type);
        if (context.version < Version161)
            continue;
        appendTime(node, "MeetingResponse:ProposedStartTime", attendee.proposedStart);
        appendTime(node, "MeetingResponse:ProposedEndTime", attendee.proposedEnd);
    }
    return list.children().isEmpty() ? QVector<WbxmlNode>() : QVector<WbxmlNode> { list };
}

bool EventLists::readCategories(const WbxmlNode &node, EventDetails &details, const EventContext &)
{
    details.categories.clear();
    const QVector<WbxmlNode> nodes = node.all(QStringLiteral("Category"));
    for (const WbxmlNode &category : nodes)
        details.categories.append(category.text());
    return details.categories.size() <= mostCategories;
}

QVector<WbxmlNode> EventLists::writeCategories(
    const QString &element, const EventDetails &details, const EventContext &)
{
    WbxmlNode list(element);
    for (const QString &category : details.categories)
        list.append(QStringLiteral("Category"), category);
    return list.children().isEmpty() ? QVector<WbxmlNode>() : QVector<WbxmlNode> { list };
}

bool EventLists::readAttachments(const WbxmlNode &node, EventDetails &details, const EventContext &context)
{
    return std::all_of(node.children().begin(), node.children().end(), [&](const WbxmlNode &entry) {
        if (entry.tag() == QLatin1String("Add"))
            return addAttachment(entry, details, context);
        return entry.tag() == QLatin1String("Delete") && deleteAttachment(entry, details);
    });
}

QVector<WbxmlNode> EventLists::writeAttachments(
    const QString &element, const EventDetails &details, const EventContext &context)
{
    WbxmlNode list(element);
    for (const EventAttachment &attachment : details.attachments) {
        WbxmlNode &node = list.append(QStringLiteral("Attachment"));
        node.append(QStringLiteral("DisplayName"), attachment.name);
        node.append(
            QStringLiteral("FileReference"), FileReference::text(context.shape.serverId, attachment.number));
        if (!attachment.clientId.isEmpty())
            node.append(QStringLiteral("ClientId"), attachment.clientId);
        node.append(QStringLiteral("Method"), ordinaryAttachment);
        node.append(QStringLiteral("EstimatedDataSize"), attachment.bytes.size());
        if (!attachment.contentId.isEmpty())
            node.append(QStringLiteral("ContentId"), attachment.contentId);
        if (attachment.isInline)
            node.append(QStringLiteral("IsInline"), 1);
    }
    return list.children().isEmpty() ? QVector<WbxmlNode>() : QVector<WbxmlNode> { list };
}

} // namespace Simulator
