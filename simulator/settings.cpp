// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/command.h"
#include "simulator/datetext.h"

#include <QSet>

namespace Simulator {
namespace {

enum Status {
    Success = 1,
    ProtocolError = 2,
    InvalidArguments = 5,
    ConflictingArguments = 6,
};
enum State { Off = 0, On = 1, OnForATime = 2 };

const QString statusName = QStringLiteral("Status");

/** A group of senders and the answer that it gets. */
struct Group
{
    const char *element;
    OutOfOfficeAnswer OutOfOffice::*answer;
};

constexpr Group groups[] = {
    { "AppliesToInternal", &OutOfOffice::internal },
    { "AppliesToExternalKnown", &OutOfOffice::knownExternal },
    { "AppliesToExternalUnknown", &OutOfOffice::unknownExternal },
};

WbxmlNode statusReply(int status)
{
    WbxmlNode root(QStringLiteral("Settings:Settings"));
    root.append(statusName, status);
    return root;
}

void appendAnswer(WbxmlNode &settings, const Group &group, const OutOfOfficeAnswer &answer)
{
    WbxmlNode &message = settings.append(QStringLiteral("OofMessage"));
    message.append(QLatin1String(group.element));
    message.append(QStringLiteral("Enabled"), answer.isEnabled ? 1 : 0);
    if (answer.text.isEmpty())
        return;
    message.append(QStringLiteral("ReplyMessage"), answer.text);
    message.append(QStringLiteral("BodyType"), answer.type);
}

void appendSettings(WbxmlNode &part, const OutOfOffice &state)
{
    WbxmlNode &settings = part.append(QStringLiteral("Get"));
    settings.append(QStringLiteral("OofState"), state.state);
    if (state.start.isValid())
        settings.append(QStringLiteral("StartTime"), DateText::withDashes(state.start));
    if (state.end.isValid())
        settings.append(QStringLiteral("EndTime"), DateText::withDashes(state.end));
    for (const Group &group : groups)
        appendAnswer(settings, group, state.*group.answer);
}

int applyState(const WbxmlNode &settings, OutOfOffice &state)
{
    if (!settings.has(QStringLiteral("OofState")))
        return Success;
    bool isNumber = false;
    state.state = settings.text(QStringLiteral("OofState")).toInt(&isNumber);
    if (!isNumber || state.state < Off || state.state > OnForATime)
        return ProtocolError;
    const bool hasStart = settings.has(QStringLiteral("StartTime"));
    const bool hasEnd = settings.has(QStringLiteral("EndTime"));
    if (hasStart != hasEnd || (state.state == OnForATime && !hasStart))
        return InvalidArguments;
    if (!hasStart)
        return Success;
    state.start = DateText::parse(settings.text(QStringLiteral("StartTime")));
    state.end = DateText::parse(settings.text(QStringLiteral("EndTime")));
    return state.start.isValid() && state.end.isValid() && state.start < state.end ? Success
                                                                                   : InvalidArguments;
}

int applyMessage(const WbxmlNode &message, OutOfOffice &state, QSet<QString> &seen)
{
    int count = 0;
    for (const Group &group : groups) {
        const QString element = QLatin1String(group.element);
        if (!message.has(element))
            continue;
        ++count;
        if (seen.contains(element))
            return ConflictingArguments;
        seen.insert(element);
        OutOfOfficeAnswer &answer = state.*group.answer;
        answer.isEnabled = message.text(QStringLiteral("Enabled")) == QLatin1String("1");
        if (message.has(QStringLiteral("ReplyMessage")))
            answer.text = message.text(QStringLiteral("ReplyMessage"));
        if (message.has(QStringLiteral("BodyType")))
            answer.type = message.text(QStringLiteral("BodyType"));
    }
    return count == 0 ? int(ProtocolError) : int(Success);
}

int apply(const WbxmlNode &settings, OutOfOffice &state)
{
    const int status = applyState(settings, state);
    if (status != Success)
        return status;
    QSet<QString> seen;
    for (const WbxmlNode &message : settings.all(QStringLiteral("OofMessage"))) {
        const int ofMessage = applyMessage(message, state, seen);
        if (ofMessage != Success)
            return ofMessage;
    }
    return Success;
}

void answerOof(const CommandContext &context, const WbxmlNode &request, WbxmlNode &part)
{
    if (request.has(QStringLiteral("Get"))) {
        if (!request.has(QStringLiteral("Get/BodyType")))
            context.failures.append(QStringLiteral("out-of-office settings without a wish for a body type"));
        part.append(statusName, Success);
        appendSettings(part, context.mailbox.outOfOffice());
        return;
    }
    if (!request.has(QStringLiteral("Set"))) {
        part.append(statusName, ProtocolError);
        return;
    }
    OutOfOffice state = context.mailbox.outOfOffice();
    const int status = apply(request.at(QStringLiteral("Set")), state);
    if (status == Success)
        context.mailbox.setOutOfOffice(state);
    part.append(statusName, status);
}

} // namespace

CommandReply handleSettings(const CommandContext &context)
{
    const WbxmlNode &request = context.request.document;
    if (request.name() != QLatin1String("Settings:Settings") || request.children().isEmpty())
        return CommandReply::of(statusReply(ProtocolError));
    WbxmlNode reply = statusReply(Success);
    for (const WbxmlNode &part : request.children()) {
        if (part.tag() == QLatin1String("Oof"))
            answerOof(context, part, reply.append(part.name()));
        else if (part.tag() == QLatin1String("DeviceInformation"))
            reply.append(part.name()).append(statusName, Success);
        else
            return CommandReply::of(statusReply(ProtocolError));
    }
    return CommandReply::of(reply);
}

} // namespace Simulator
