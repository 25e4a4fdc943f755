// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/mailcommands.h"

#include "client/eventtime.h"
#include "client/mailselection.h"
#include "client/mailview.h"
#include "client/outputfile.h"
#include "client/requestrun.h"
#include "common/easdbusinterfaceproxy.h"

namespace {

const auto NextSync = QStringLiteral("; the next sync tells the server");

int reportChange(CommandContext &context, const MailSelection &mail, const QString &what)
{
    context.output().done(QStringLiteral("%1 message(s) %2").arg(mail.messages().size()).arg(what) + NextSync,
        { { QStringLiteral("messages"), mail.numbers() } });
    return ExitSuccess;
}

/** Marks the messages that the arguments name, or those of a folder. */
int markMessages(CommandContext &context, const QString &what, bool read)
{
    MailSelection mail(context);
    const QCommandLineOption folder(QStringLiteral("folder"), QString(), QStringLiteral("folder"));
    mail.parser().addOption(folder);
    if (!mail.parse(0, -1))
        return mail.exitStatus();
    const bool isFolder = mail.parser().isSet(folder);
    if (isFolder != mail.arguments().isEmpty()) {
        Output::error(QStringLiteral("give messages or --folder"));
        return ExitUsage;
    }
    if (!mail.openStore()
        || !(isFolder ? mail.selectOfFolder(mail.parser().value(folder), read)
                      : mail.select(mail.arguments())))
        return mail.exitStatus();
    if (!mail.messages().isEmpty() && !mail.store().setStatus(mail.messages(), QMailMessage::Read, read))
        return ExitFailure;
    return reportChange(context, mail, what);
}

/** The options that choose messages for a list. */
class FilterOptions
{
public:
    explicit FilterOptions(QCommandLineParser &parser)
        : mParser(parser)
    {
        for (const QString &name : { From, Subject, Since, Limit })
            parser.addOption(QCommandLineOption(name, QString(), QStringLiteral("value")));
        parser.addOption(QCommandLineOption(Unread));
    }

    /** False, after an error was printed, if one cannot be understood. */
    bool read(MailFilter *filter, int *limit) const
    {
        constexpr int UsualLimit = 50;
        filter->isUnreadOnly = mParser.isSet(Unread);
        filter->from = mParser.value(From);
        filter->subject = mParser.value(Subject);
        if (mParser.isSet(Since) && !EventTime::readDay(mParser.value(Since), Since, &filter->since))
            return false;
        if (mParser.value(Limit) == QLatin1String("all")) {
            *limit = INT_MAX;
            return true;
        }
        const std::optional<int> number = CommandContext::number(mParser, Limit, UsualLimit, 1, INT_MAX);
        *limit = number.value_or(0);
        return number.has_value();
    }

private:
    const QString From = QStringLiteral("from");
    const QString Subject = QStringLiteral("subject");
    const QString Since = QStringLiteral("since");
    const QString Limit = QStringLiteral("limit");
    const QString Unread = QStringLiteral("unread");

    QCommandLineParser &mParser;
};

void printForPeople(Output &output, const QJsonObject &message)
{
    static const Columns heads { { "from", "from" }, { "to", "to" }, { "cc", "cc" }, { "bcc", "bcc" },
        { "date", "date" }, { "subject", "subject" }, { "folder", "folder" }, { "original", "original" } };
    output.object(heads, message);
    const QString text = message.value(QStringLiteral("text")).toString();
    output.message(QLatin1Char('\n')
        + (text.isEmpty() ? QStringLiteral("(the text is not on the device; fetch it with mail get)")
                          : text));
    const QJsonArray parts = message.value(QStringLiteral("parts")).toArray();
    if (parts.isEmpty())
        return;
    output.message(QString());
    output.rows(MailView::partColumns(), parts);
}

} // namespace

int MailCommands::list(CommandContext &context)
{
    MailSelection mail(context);
    const FilterOptions options(mail.parser());
    MailFilter filter;
    int limit = 0;
    if (!mail.parse(0, 1))
        return mail.exitStatus();
    if (!options.read(&filter, &limit))
        return ExitUsage;
    if (!mail.openStore()
        || (!mail.argument().isEmpty() && !mail.findFolder(mail.argument(), &filter.folder)))
        return mail.exitStatus();
    const QMailMessageIdList found = mail.store().messages(filter);
    QJsonArray rows;
    const QMailMessageIdList shown = found.mid(0, limit);
    for (const QMailMessageId &id : shown)
        rows.append(MailView::describeMessage(QMailMessageMetaData(id)));
    context.output().rows(MailView::messageColumns(), rows);
    if (shown.size() < found.size())
        Output::note(QStringLiteral("%1 of %2 messages; --limit all shows the others")
                         .arg(shown.size())
                         .arg(found.size()));
    return ExitSuccess;
}

int MailCommands::show(CommandContext &context)
{
    MailSelection mail(context);
    if (!mail.open(1, 1) || !mail.select(mail.arguments()))
        return mail.exitStatus();
    const QJsonObject message = MailView::describeWhole(QMailMessage(mail.message()));
    if (context.output().isJson())
        context.output().object({}, message);
    else
        printForPeople(context.output(), message);
    return ExitSuccess;
}

int MailCommands::get(CommandContext &context)
{
    MailSelection mail(context);
    const QCommandLineOption attachments(QStringLiteral("attachments"));
    mail.parser().addOption(attachments);
    if (!mail.open(1, -1) || !mail.select(mail.arguments()))
        return mail.exitStatus();
    QList<qulonglong> numbers;
    for (const QMailMessageId &id : mail.messages())
        numbers.append(id.toULongLong());
    RequestRun run(context);
    run.add(mail.account(), [&](EasDBusInterfaceProxy &daemon) {
        return daemon.downloadMessages(mail.account(), numbers, mail.parser().isSet(attachments));
    });
    const int result = run.exec();
    context.output().addFacts(run.first().describe());
    if (result == ExitSuccess)
        context.output().done(QStringLiteral("%1 message(s) downloaded").arg(numbers.size()),
            { { QStringLiteral("messages"), mail.numbers() } });
    return result;
}

int MailCommands::exportMessage(CommandContext &context)
{
    MailSelection mail(context);
    const QCommandLineOption force(QStringLiteral("force"));
    mail.parser().addOption(force);
    if (!mail.open(1, 2) || !mail.select({ mail.argument() }))
        return mail.exitStatus();
    const QMailMessage message(mail.message());
    if (!message.contentAvailable())
        Output::note(QStringLiteral(
            "parts of the message are not on the device; mail get --attachments fetches them"));
    return OutputFile(context.output(), mail.parser().isSet(force))
        .write(mail.argument(1), message.toRfc2822(), "message/rfc822");
}

int MailCommands::markRead(CommandContext &context)
{
    return markMessages(context, QStringLiteral("marked as read"), true);
}

int MailCommands::markUnread(CommandContext &context)
{
    return markMessages(context, QStringLiteral("marked as unread"), false);
}

int MailCommands::move(CommandContext &context)
{
    MailSelection mail(context);
    QMailFolderId folder;
    if (!mail.open(2, -1) || !mail.findFolder(mail.arguments().constLast(), &folder)
        || !mail.select(mail.arguments().mid(0, mail.arguments().size() - 1)))
        return mail.exitStatus();
    if (!mail.store().move(mail.messages(), folder))
        return ExitFailure;
    context.output().done(
        QStringLiteral("%1 message(s) moved to %2").arg(mail.messages().size()).arg(MailBox::path(folder))
            + NextSync,
        { { QStringLiteral("messages"), mail.numbers() },
            { QStringLiteral("folder"), MailBox::path(folder) } });
    return ExitSuccess;
}

int MailCommands::remove(CommandContext &context)
{
    MailSelection mail(context);
    if (!mail.open(1, -1) || !mail.select(mail.arguments()))
        return mail.exitStatus();
    return mail.store().remove(mail.messages()) ? reportChange(context, mail, QStringLiteral("deleted"))
                                                : int(ExitFailure);
}
