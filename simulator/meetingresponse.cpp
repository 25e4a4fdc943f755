// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/command.h"
#include "simulator/datetext.h"
#include "simulator/itemfetch.h"
#include "simulator/meetings.h"

namespace Simulator {
namespace {

enum Status { Success = 1, InvalidRequest = 2 };

/** "2024-05-01T10:00:00.000Z" and "20240501T100000Z": the only forms of the two kinds of times. */
const int instanceIdLength = 24;
const int proposalLength = 16;

QDateTime timeOf(const CommandContext &context, const WbxmlNode &node, const QString &element, int length)
{
    const QString text = node.text(element);
    const QDateTime time = DateText::parse(text);
    if (text.size() != length || !time.isValid())
        context.failures.append(QStringLiteral("no time of its form: ") + element + QLatin1Char(' ') + text);
    return time;
}

QString userAddress(const CommandContext &context, const Event &meeting)
{
    const QString user = context.request.user.section(QLatin1Char('@'), 0, 0);
    for (const EventAttendee &attendee : meeting.attendees) {
        if (attendee.email.section(QLatin1Char('@'), 0, 0).compare(user, Qt::CaseInsensitive) == 0)
            return attendee.email;
    }
    return user + QStringLiteral("@example.com");
}

void sendReply(const CommandContext &context, const WbxmlNode &sendResponse, const Meetings::Answer &answer,
    const Event &meeting)
{
    Meetings::Reply reply;
    reply.address = userAddress(context, meeting);
    reply.comment = sendResponse.text(QStringLiteral("AirSyncBase:Body/Data"));
    if (sendResponse.has(QStringLiteral("ProposedStartTime"))) {
        reply.proposedStart = DateText::compact(
            timeOf(context, sendResponse, QStringLiteral("ProposedStartTime"), proposalLength));
        reply.proposedEnd = DateText::compact(
            timeOf(context, sendResponse, QStringLiteral("ProposedEndTime"), proposalLength));
    }
    const QByteArray message = Meetings::replyMail(meeting, answer, reply);
    context.mailbox.deliver(context.mailbox.folderOfType(SentItemsFolder).id, message);
    context.post.deliver({ meeting.organizerEmail }, message);
}

/** What the request is about; empty if it does not say so in one way. */
QString itemIdOf(const CommandContext &context, const WbxmlNode &request)
{
    const QString longId = request.text(QStringLiteral("Search:LongId"));
    const QString requestId = request.text(QStringLiteral("RequestId"));
    const QString folderId = request.text(QStringLiteral("CollectionId"));
    if (longId.isEmpty())
        return requestId.section(QLatin1Char(':'), 0, 0) == folderId ? requestId : QString();
    if (requestId.isEmpty() && folderId.isEmpty())
        return serverIdOfLongId(longId);
    context.failures.append(QStringLiteral("a long identifier beside a folder or an item"));
    return QString();
}

int answerOne(const CommandContext &context, const WbxmlNode &request, QString *calendarId)
{
    const QString itemId = itemIdOf(context, request);
    if (context.answer.mItemStatus.applies(itemId))
        return context.answer.mItemStatus.value;
    Meetings::Answer answer;
    answer.response = request.text(QStringLiteral("UserResponse")).toInt();
    if (request.has(QStringLiteral("InstanceId")))
        answer.instance = timeOf(context, request, QStringLiteral("InstanceId"), instanceIdLength);
    if (answer.response < Meetings::Accepted || answer.response > Meetings::Declined)
        return InvalidRequest;
    const std::optional<Meetings::Outcome> outcome = Meetings::answer(context.mailbox, itemId, answer);
    if (!outcome)
        return InvalidRequest;
    *calendarId = outcome->calendarId;
    if (request.has(QStringLiteral("SendResponse")))
        sendReply(context, request.at(QStringLiteral("SendResponse")), answer, outcome->meeting);
    return Success;
}

} // namespace

CommandReply handleMeetingResponse(const CommandContext &context)
{
    WbxmlNode root(QStringLiteral("MeetingResponse:MeetingResponse"));
    const QVector<WbxmlNode> requests = context.request.document.all(QStringLiteral("Request"));
    for (const WbxmlNode &request : requests) {
        QString calendarId;
        const int status = answerOne(context, request, &calendarId);
        WbxmlNode &result = root.append(QStringLiteral("Result"));
        for (const QString &name : { QStringLiteral("RequestId"), QStringLiteral("Search:LongId") }) {
            if (request.has(name))
                result.append(name, request.text(name));
        }
        result.append(QStringLiteral("Status"), status);
        if (!calendarId.isEmpty())
            result.append(QStringLiteral("CalendarId"), calendarId);
    }
    return CommandReply::of(root);
}

} // namespace Simulator
