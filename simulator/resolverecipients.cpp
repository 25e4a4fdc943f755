// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/command.h"
#include "simulator/datetext.h"
#include "simulator/freebusy.h"

#include <optional>

namespace Simulator {
namespace {

enum Status {
    Success = 1,
    Ambiguous = 2,
    NotFound = 4,
    ProtocolError = 5,
    TooManyRecipients = 160,
    NoAvailability = 163,
};

constexpr int MostRecipients = 100;
/** Digits of half hours. */
constexpr int LongestAvailability = 32 * 1024;
constexpr int SlotSeconds = 30 * 60;

const QString statusName = QStringLiteral("Status");
const QString availabilityPath = QStringLiteral("Options/Availability");

WbxmlNode statusReply(int status)
{
    WbxmlNode root(QStringLiteral("ResolveRecipients:ResolveRecipients"));
    root.append(statusName, status);
    return root;
}

/** What the request wants to know beside the people themselves. */
struct Span
{
    QDateTime start;
    QDateTime end;

    static Span of(const WbxmlNode &availability)
    {
        return { DateText::parse(availability.text(QStringLiteral("StartTime"))),
            DateText::parse(availability.text(QStringLiteral("EndTime"))) };
    }
    bool isValid() const
    {
        return start.isValid() && end.isValid() && start < end
            && start.secsTo(end) <= qint64(LongestAvailability) * SlotSeconds;
    }
};

/** The people of the directory whom an address or a name means. */
QVector<Person> peopleOf(const Directory &directory, const QString &text)
{
    for (const Person &person : directory.people()) {
        if (person.text(QStringLiteral("EmailAddress")).compare(text, Qt::CaseInsensitive) == 0)
            return { person };
    }
    return text.contains(QLatin1Char('@')) ? QVector<Person>() : directory.matching(text);
}

WbxmlNode &appendRecipient(WbxmlNode &response, const Person &person)
{
    WbxmlNode &recipient = response.append(QStringLiteral("Recipient"));
    recipient.append(QStringLiteral("Type"), 1);
    for (const char *field : { "DisplayName", "EmailAddress" })
        recipient.append(QLatin1String(field), person.text(QLatin1String(field)));
    return recipient;
}

void appendAvailability(WbxmlNode &recipient, const Mailbox *mailbox, const Span &span, bool areTooMany)
{
    WbxmlNode &availability = recipient.append(QStringLiteral("Availability"));
    if (areTooMany || !mailbox) {
        availability.append(statusName, areTooMany ? TooManyRecipients : NoAvailability);
        return;
    }
    availability.append(statusName, Success);
    availability.append(QStringLiteral("MergedFreeBusy"), FreeBusy::merged(*mailbox, span.start, span.end));
}

void appendResponse(const CommandContext &context, const QString &text, const std::optional<Span> &span,
    bool areTooMany, WbxmlNode &response)
{
    const QVector<Person> people = peopleOf(context.settings.directory, text);
    response.append(QStringLiteral("To"), text);
    const int status = people.isEmpty() ? NotFound : people.size() == 1 ? Success : Ambiguous;
    response.append(statusName, status);
    if (people.isEmpty())
        return;
    response.append(QStringLiteral("RecipientCount"), people.size());
    for (const Person &person : people) {
        WbxmlNode &recipient = appendRecipient(response, person);
        if (span && status == Success)
            appendAvailability(recipient, context.post.mailboxOf(person.text(QStringLiteral("EmailAddress"))),
                *span, areTooMany);
    }
}

} // namespace

CommandReply handleResolveRecipients(const CommandContext &context)
{
    const WbxmlNode &request = context.request.document;
    const QVector<WbxmlNode> people = request.all(QStringLiteral("To"));
    if (request.name() != QLatin1String("ResolveRecipients:ResolveRecipients") || people.isEmpty())
        return CommandReply::of(statusReply(ProtocolError));
    std::optional<Span> span;
    if (request.has(availabilityPath))
        span = Span::of(request.at(availabilityPath));
    if (span && !span->isValid())
        return CommandReply::of(statusReply(ProtocolError));
    WbxmlNode reply = statusReply(Success);
    for (const WbxmlNode &person : people) {
        appendResponse(context, person.text(), span, people.size() > MostRecipients,
            reply.append(QStringLiteral("Response")));
    }
    return CommandReply::of(reply);
}

} // namespace Simulator
