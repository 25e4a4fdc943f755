// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/commandtable.h"

#include "client/accountcommands.h"
#include "client/attachmentcommands.h"
#include "client/availabilitycommand.h"
#include "client/awaycommands.h"
#include "client/contactcommands.h"
#include "client/eventcommands.h"
#include "client/foldercommands.h"
#include "client/mailcommands.h"
#include "client/outboxcommand.h"
#include "client/peoplecommand.h"
#include "client/policycommands.h"
#include "client/pushcommands.h"
#include "client/respondcommand.h"
#include "client/searchcommand.h"
#include "client/sendcommands.h"
#include "client/statuscommand.h"
#include "client/synccommands.h"
#include "client/wipecommands.h"

#include <QJsonObject>
#include <QVector>

#include <algorithm>
#include <numeric>

namespace {

QStringList wordsOf(const Command &command)
{
    return QString::fromLatin1(command.name).split(QLatin1Char(' '));
}

/** How many letters have to be put in, taken out or changed to make one word of the other. */
int distance(const QString &one, const QString &other)
{
    QVector<int> row(other.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (int i = 1; i <= one.size(); ++i) {
        int diagonal = row.at(0);
        row[0] = i;
        for (int j = 1; j <= other.size(); ++j) {
            const int change = diagonal + (one.at(i - 1) == other.at(j - 1) ? 0 : 1);
            diagonal = row.at(j);
            row[j] = std::min({ change, row.at(j) + 1, row.at(j - 1) + 1 });
        }
    }
    return row.last();
}

/** The first word of a command that differs by two letters at most; empty if there is none such. */
QString nearest(const QString &word)
{
    // Of a short word too little would be left to know it by.
    const int farthest = qMin(2, word.size() / 2);
    QString best;
    int least = farthest + 1;
    for (const Command &command : CommandTable::commands()) {
        const QString known = wordsOf(command).first();
        const int letters = distance(word, known);
        if (letters < least) {
            least = letters;
            best = known;
        }
    }
    return best;
}

} // namespace

const QList<Command> &CommandTable::commands()
{
    static const QList<Command> table {
        { "account add",
            "ADDRESS [--server HOST|URL] [--user NAME] [--domain NAME] [--name TEXT] "
            "[--folders all|inbox|marked] [--protocol-version V] [--past-time 0-8] "
            "[--without mail|calendar|contacts ...] [--accept-all-certificates] "
            "[--password-fd N|--password-command COMMAND]",
            "add an account; the password is asked for", AccountCommands::add },
        { "account edit", "[ACCOUNT] [the options of account add] [--without nothing] [--check-certificates]",
            "change the settings of an account", AccountCommands::edit },
        { "account list", "", "the accounts", AccountCommands::list },
        { "account show", "[ACCOUNT]", "the settings of an account", AccountCommands::show },
        { "account enable", "[ACCOUNT]", "let the engine work for an account", AccountCommands::enable },
        { "account disable", "[ACCOUNT]", "stop it", AccountCommands::disable },
        { "account remove", "ACCOUNT", "remove an account and its mail from the device",
            AccountCommands::remove },
        { "password", "[ACCOUNT] [--password-fd N|--password-command COMMAND]", "store a new password",
            AccountCommands::password },
        { "sync",
            "[--folder FOLDER ... [--kind mail|calendar|contacts]] [--service mail|calendar|contacts] "
            "[--folders-only]",
            "bring device and server in step, all enabled accounts unless one is named", SyncCommands::sync },
        { "push on", "[ACCOUNT]", "keep accounts in step by themselves, all enabled ones unless one is named",
            PushCommands::on },
        { "push off", "[ACCOUNT]", "synchronise only when told to", PushCommands::off },
        { "push status", "[ACCOUNT]", "whether push is on, what the server said last and what comes next",
            PushCommands::status },
        { "policy show", "[ACCOUNT]", "what the server asks of the device, and what the device does not meet",
            PolicyCommands::show },
        { "wipe-status", "[ACCOUNT]",
            "which accounts their servers have ordered to be wiped, and how far that is",
            WipeCommands::status },
        { "folders", "[--kind mail|calendar|contacts]", "the folders of one kind", FolderCommands::list },
        { "folder create", "NAME [--kind mail|calendar|contacts] [--parent FOLDER]",
            "create a folder on the server", FolderCommands::create },
        { "folder rename", "FOLDER NAME [--kind mail|calendar|contacts] [--parent FOLDER|--to-root]",
            "rename a folder, or move it", FolderCommands::rename },
        { "folder delete", "FOLDER [--kind mail|calendar|contacts] [--yes]",
            "delete a folder with everything in it", FolderCommands::remove },
        { "mail list", "[FOLDER] [--unread] [--from TEXT] [--subject TEXT] [--since DAY] [--limit N|all]",
            "the messages, newest first", MailCommands::list },
        { "mail show", "MESSAGE", "a message with its text and parts", MailCommands::show },
        { "mail get", "MESSAGE ... [--attachments]", "download whole messages", MailCommands::get },
        { "mail export", "MESSAGE [FILE] [--force]", "write a message as it is on the device",
            MailCommands::exportMessage },
        { "mail send",
            "[MESSAGE] [--to ADDRESS ...] [--cc ADDRESS ...] [--bcc ADDRESS ...] [--subject TEXT] "
            "[--body FILE|--text TEXT] [--attach FILE ...] [--draft]",
            "write and send a message, or send a draft", SendCommands::send },
        { "mail reply", "MESSAGE [--reply-all] [--whole] [the options of mail send]", "answer a message",
            SendCommands::reply },
        { "mail forward", "MESSAGE [--whole] [the options of mail send]", "pass a message on with its files",
            SendCommands::forward },
        { "mail outbox", "[MESSAGE ...] [--retry|--to-drafts]",
            "what waits to be sent and why; try again, or take it back", OutboxCommand::outbox },
        { "attachment save", "MESSAGE PART|--all [FILE|FOLDER|-] [--force]",
            "download and save an attachment, or all of them", AttachmentCommands::save },
        { "mark read", "MESSAGE ...|--folder FOLDER", "mark messages as read, or all of a folder",
            MailCommands::markRead },
        { "mark unread", "MESSAGE ...|--folder FOLDER", "mark messages as unread, or all of a folder",
            MailCommands::markUnread },
        { "move", "MESSAGE ... FOLDER", "move messages", MailCommands::move },
        { "delete", "MESSAGE ...", "delete messages", MailCommands::remove },
        { "search", "[TEXT ...] [--folder FOLDER] [--from DAY] [--to DAY] [--limit N] [--find]",
            "the messages on the server that hold a text; mail get fetches them whole",
            SearchCommand::search },
        { "people", "TEXT ... [--limit N] [--pictures FOLDER]",
            "people in the server's address list, by parts of their names", PeopleCommand::people },
        { "event list", "[--from DAY] [--to DAY] [--calendar NAME]", "what takes place, by time",
            EventCommands::list },
        { "event month", "[YYYY-MM] [--calendar NAME]", "a month as a sheet", EventCommands::month },
        { "event show", "EVENT [--occurrence START]", "an event with people, rule and text",
            EventCommands::show },
        { "event add",
            "SUBJECT --start TIME|DAY [--end TIME|DAY|--duration MINUTES] [--zone ZONE] [--location TEXT] "
            "[--note TEXT] [--category NAME ...] [--reminder MINUTES|none] [--attendee ADDRESS ...] "
            "[--repeat daily|weekly|monthly|yearly [--every N] [--until DAY|--count N]] [--calendar NAME]",
            "add an event; a start that is a day lasts whole days", EventCommands::add },
        { "event edit", "EVENT [--occurrence START] [--subject TEXT] [the options of event add]",
            "change an event, or one occurrence of a series", EventCommands::edit },
        { "event delete", "EVENT [--occurrence START]", "delete an event, or one occurrence of a series",
            EventCommands::remove },
        { "event export", "[FILE] [--calendar NAME] [--force]", "write events as iCalendar",
            EventCommands::exportCalendar },
        { "event import", "FILE [--calendar NAME]",
            "add the events of an iCalendar file; - reads standard input", EventCommands::importCalendar },
        { "respond",
            "MESSAGE|EVENT accept|tentative|decline [--occurrence START] [--propose START END] "
            "[--comment TEXT]",
            "answer an invitation, for the whole series or one occurrence", RespondCommand::run },
        { "contact list", "[TEXT] [--folder NAME]", "the contacts, or those that match a text",
            ContactCommands::list },
        { "contact show", "CONTACT", "a contact with everything that is known", ContactCommands::show },
        { "contact add",
            "[--name TEXT] [--first-name|--middle-name|--last-name|--suffix|--nickname TEXT] "
            "[--company|--title|--department|--office|--assistant TEXT] "
            "[--email ADDRESS ...] [--email2|--email3 ADDRESS] "
            "[--mobile|--home-phone|--home-phone2|--work-phone|--work-phone2|--fax|--home-fax|--pager|"
            "--car-phone NUMBER] "
            "[--home-street|--home-postcode|--home-city|--home-region|--home-country TEXT] "
            "[--work-street|--work-postcode|--work-city|--work-region|--work-country TEXT] "
            "[--birthday|--anniversary DAY] [--spouse TEXT] [--web URL] [--category NAME ...] "
            "[--picture FILE] [--note TEXT] [--folder NAME]",
            "add a contact", ContactCommands::add },
        { "contact edit", "CONTACT [the options of contact add]", "change a contact; an empty text removes",
            ContactCommands::edit },
        { "contact delete", "CONTACT ...", "delete contacts", ContactCommands::remove },
        { "contact export", "[FILE] [--folder NAME] [--force]", "write contacts as vCard",
            ContactCommands::exportCards },
        { "contact import", "FILE [--folder NAME]",
            "add the contacts of a vCard file; - reads standard input", ContactCommands::importCards },
        { "away show", "[ACCOUNT]", "whether the server answers mail in your absence, and what",
            AwayCommands::show },
        { "away set",
            "[--from TIME|DAY] [--to TIME|DAY] [--message TEXT|--message-file FILE] "
            "[--external known|all|off] [--external-message TEXT|--external-message-file FILE]",
            "have the server answer mail in your absence; - as FILE reads standard input",
            AwayCommands::set },
        { "away off", "[ACCOUNT]", "stop that", AwayCommands::off },
        { "availability", "ADDRESS ... [--from TIME|DAY] [--to TIME|DAY]",
            "when people are free and when not; today unless told otherwise", AvailabilityCommand::show },
        { "status", "", "the accounts, what the device holds of them, and whether the daemon runs",
            StatusCommand::print },
        { "watch", "", "print every signal of the daemon as it comes", SyncCommands::watch },
        { "cancel", "REQUEST", "cancel a request by its number", SyncCommands::cancel },
        { "log", "debug|info|warning|critical", "what the daemon logs from now on", SyncCommands::log },
        { "quit", "", "end the daemon", SyncCommands::quit },
    };
    return table;
}

const Command *CommandTable::take(QStringList &arguments)
{
    for (const Command &command : commands()) {
        const QStringList words = wordsOf(command);
        if (arguments.mid(0, words.size()) == words) {
            arguments = arguments.mid(words.size());
            return &command;
        }
    }
    return nullptr;
}

QList<Command> CommandTable::beginningWith(const QStringList &words)
{
    QList<Command> found;
    for (const Command &command : commands()) {
        if (wordsOf(command).mid(0, words.size()) == words)
            found.append(command);
    }
    return found;
}

QString CommandTable::usage(const Command &command)
{
    return QStringLiteral("usage: fennel-easctl %1 %2")
        .arg(QLatin1String(command.name), QLatin1String(command.arguments))
        .trimmed();
}

QString CommandTable::help(const QList<Command> &commands, bool isWhole)
{
    QString text;
    if (isWhole)
        text = QStringLiteral("usage: fennel-easctl [--json] [--progress] [--account ACCOUNT] COMMAND\n\n");
    for (const Command &command : commands)
        text += QStringLiteral("  %1 %2\n        %3\n")
                    .arg(QLatin1String(command.name), QLatin1String(command.arguments),
                        QLatin1String(command.purpose));
    if (isWhole)
        text +=
            QStringLiteral("\nExit status: 0 done, 1 failed, 2 wrong usage, 3 not found, 4 a service cannot "
                           "be reached, 5 cancelled.\n");
    return text.chopped(1);
}

QJsonArray CommandTable::describe(const QList<Command> &commands)
{
    QJsonArray rows;
    for (const Command &command : commands)
        rows.append(QJsonObject { { QStringLiteral("command"), QLatin1String(command.name) },
            { QStringLiteral("arguments"), QLatin1String(command.arguments) },
            { QStringLiteral("purpose"), QLatin1String(command.purpose) } });
    return rows;
}

QString CommandTable::unknown(const QStringList &arguments)
{
    const auto seeHelp = QStringLiteral("; see fennel-easctl help");
    if (arguments.isEmpty())
        return QStringLiteral("which command?") + seeHelp.mid(1);
    const QList<Command> group = beginningWith(arguments.mid(0, 1));
    if (!group.isEmpty()) {
        QStringList words;
        for (const Command &command : group)
            words.append(wordsOf(command).value(1));
        return arguments.size() == 1
            ? QStringLiteral("\"%1\" needs one of: %2")
                  .arg(arguments.first(), words.join(QStringLiteral(", ")))
            : QStringLiteral("there is no command \"%1 %2\"; \"%1\" needs one of: %3")
                  .arg(arguments.first(), arguments.at(1), words.join(QStringLiteral(", ")));
    }
    const QString near = nearest(arguments.first());
    return QStringLiteral("there is no command \"%1\"%2")
        .arg(
            arguments.first(), near.isEmpty() ? seeHelp : QStringLiteral("; did you mean \"%1\"?").arg(near));
}
