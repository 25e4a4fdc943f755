// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/outboxcommand.h"

#include "client/delivery.h"
#include "client/mailselection.h"
#include "client/timetext.h"

#include <QJsonArray>

#include <algorithm>

namespace {

const QCommandLineOption Retry(QStringLiteral("retry"));
const QCommandLineOption ToDrafts(QStringLiteral("to-drafts"));

int fail(int exitStatus, const QString &error)
{
    Output::error(error);
    return exitStatus;
}

QJsonObject describe(const QMailMessageId &id)
{
    const QMailMessageMetaData message(id);
    const Outbox::Try last = Outbox::lastTry(message);
    return {
        { QStringLiteral("id"), QString::number(id.toULongLong()) },
        { QStringLiteral("date"), TimeText::forPrograms(message.date().toUTC()) },
        { QStringLiteral("to"), QMailAddress::toStringList(message.recipients()).join(QStringLiteral(", ")) },
        { QStringLiteral("subject"), message.subject() },
        { QStringLiteral("tried"), TimeText::forPrograms(last.time) },
        { QStringLiteral("failure"), last.error },
    };
}

void list(Output &output, const QMailMessageIdList &waiting)
{
    static const Columns columns { { "id", "ID" }, { "to", "TO" }, { "subject", "SUBJECT" },
        { "tried", "LAST TRY" } };
    if (waiting.isEmpty() && !output.isJson())
        return output.message(QStringLiteral("nothing waits to be sent"));
    QJsonArray rows;
    for (const QMailMessageId &id : waiting)
        rows.append(describe(id));
    output.rows(columns, rows);
    // Below the table, which would cut them off.
    for (const QJsonValue &row : qAsConst(rows)) {
        const QString failure = row.toObject().value(QStringLiteral("failure")).toString();
        if (!failure.isEmpty())
            output.message(QStringLiteral("\nmessage %1 was not sent: %2")
                               .arg(row.toObject().value(QStringLiteral("id")).toString(), failure));
    }
}

int retry(CommandContext &context, const MailSelection &mail, const QMailMessageIdList &ids)
{
    const int enabled = context.requireEnabled({ mail.account() });
    if (enabled != ExitSuccess)
        return enabled;
    if (!ids.isEmpty())
        return Delivery(context, mail.account()).send(ids);
    context.output().done(QStringLiteral("nothing waits to be sent"));
    return ExitSuccess;
}

int takeBack(CommandContext &context, MailSelection &mail)
{
    Outbox outbox(mail.account());
    const bool isMoved = std::all_of(mail.messages().cbegin(), mail.messages().cend(),
        [&outbox](const QMailMessageId &id) { return outbox.moveToDrafts(id); });
    if (!isMoved)
        return ExitFailure;
    context.output().done(QStringLiteral("%1 message(s) moved to Drafts").arg(mail.messages().size()),
        { { QStringLiteral("drafts"), mail.numbers() } });
    return ExitSuccess;
}

} // namespace

int OutboxCommand::outbox(CommandContext &context)
{
    MailSelection mail(context);
    mail.parser().addOptions({ Retry, ToDrafts });
    if (!mail.open(0, -1) || !mail.select(mail.arguments()))
        return mail.exitStatus();
    const bool isRetry = mail.parser().isSet(Retry);
    const bool isToDrafts = mail.parser().isSet(ToDrafts);
    if (isRetry && isToDrafts)
        return fail(ExitUsage, QStringLiteral("give --retry or --to-drafts"));
    if (isToDrafts && mail.messages().isEmpty())
        return fail(ExitUsage, QStringLiteral("--to-drafts needs a message"));
    const QMailMessageIdList waiting = Outbox(mail.account()).messages();
    for (const QMailMessageId &id : mail.messages()) {
        if (!waiting.contains(id))
            return fail(
                ExitNotFound, QStringLiteral("message %1 is not in the Outbox").arg(id.toULongLong()));
    }
    const QMailMessageIdList &chosen = mail.messages().isEmpty() ? waiting : mail.messages();
    if (isToDrafts)
        return takeBack(context, mail);
    if (isRetry)
        return retry(context, mail, chosen);
    list(context.output(), chosen);
    return ExitSuccess;
}
