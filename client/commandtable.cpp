// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/commandtable.h"

#include "client/accountcommands.h"
#include "client/contactcommands.h"
#include "client/eventcommands.h"
#include "client/foldercommands.h"
#include "client/mailcommands.h"
#include "client/synccommands.h"

const QList<Command> &CommandTable::commands()
{
    static const QList<Command> table {
        { "account add",
            "ADDRESS [--server HOST|URL] [--user NAME] [--domain NAME] [--name TEXT] "
            "[--folders all|inbox|marked] [--protocol-version V] [--past-time 0-8] "
            "[--without mail|calendar|contacts ...] [--accept-all-certificates] [--password-fd N]",
            "add an account; the password is asked for", AccountCommands::add },
        { "account list", "", "the accounts", AccountCommands::list },
        { "account show", "[ACCOUNT]", "the settings of an account", AccountCommands::show },
        { "account enable", "[ACCOUNT]", "let the engine work for an account", AccountCommands::enable },
        { "account disable", "[ACCOUNT]", "stop it", AccountCommands::disable },
        { "account remove", "ACCOUNT", "remove an account and its mail from the device",
            AccountCommands::remove },
        { "password", "[ACCOUNT] [--password-fd N]", "store a new password", AccountCommands::password },
        { "sync", "[--folder FOLDER ...] [--service mail|calendar|contacts] [--folders-only]",
            "bring device and server in step", SyncCommands::sync },
        { "folders", "[--kind mail|calendar|contacts]", "the folders of one kind", MailCommands::folders },
        { "folder create", "NAME [--kind mail|calendar|contacts] [--parent FOLDER]",
            "create a folder on the server", FolderCommands::create },
        { "folder rename", "FOLDER NAME [--kind mail|calendar|contacts] [--parent FOLDER|--to-root]",
            "rename a folder, or move it", FolderCommands::rename },
        { "folder delete", "FOLDER [--kind mail|calendar|contacts]", "delete a folder with everything in it",
            FolderCommands::remove },
        { "mail list", "[FOLDER] [--limit N]", "the messages, newest first", MailCommands::list },
        { "mail show", "MESSAGE", "a message with its text and parts", MailCommands::show },
        { "mail get", "MESSAGE ... [--attachments]", "download whole messages", MailCommands::get },
        { "attachment save", "MESSAGE PART [FILE|FOLDER] [--force]", "download and save an attachment",
            MailCommands::saveAttachment },
        { "mark read", "MESSAGE ...", "mark messages as read", MailCommands::markRead },
        { "mark unread", "MESSAGE ...", "mark messages as unread", MailCommands::markUnread },
        { "move", "MESSAGE ... FOLDER", "move messages", MailCommands::move },
        { "delete", "MESSAGE ...", "delete messages", MailCommands::remove },
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
        { "contact list", "[TEXT] [--folder NAME]", "the contacts, or those that match a text",
            ContactCommands::list },
        { "contact show", "CONTACT", "a contact with everything that is known", ContactCommands::show },
        { "contact add",
            "[--name TEXT] [--first-name|--middle-name|--last-name|--suffix|--nickname TEXT] "
            "[--company|--title|--department|--office|--assistant TEXT] "
            "[--email ADDRESS ...] [--email2|--email3 ADDRESS] "
            "[--mobile|--home-phone|--home-phone2|--work-phone|--work-phone2|--fax|--home-fax|--pager|"
            "--car-phone NUMBER] "
            "[--home-|--work-street|postcode|city|region|country TEXT] "
            "[--birthday|--anniversary DAY] [--spouse TEXT] [--web URL] [--category NAME ...] "
            "[--picture FILE] [--note TEXT] [--folder NAME]",
            "add a contact", ContactCommands::add },
        { "contact edit", "CONTACT [the options of contact add]", "change a contact; an empty text removes",
            ContactCommands::edit },
        { "contact delete", "CONTACT", "delete a contact", ContactCommands::remove },
        { "contact export", "[FILE] [--folder NAME] [--force]", "write contacts as vCard",
            ContactCommands::exportCards },
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
        const QStringList words = QString::fromLatin1(command.name).split(QLatin1Char(' '));
        if (arguments.mid(0, words.size()) == words) {
            arguments = arguments.mid(words.size());
            return &command;
        }
    }
    return nullptr;
}

QString CommandTable::help()
{
    QString text =
        QStringLiteral("usage: fennel-easctl [--json] [--progress] [--account ACCOUNT] COMMAND\n\n");
    for (const Command &command : commands())
        text += QStringLiteral("  %1 %2\n        %3\n")
                    .arg(QLatin1String(command.name), QLatin1String(command.arguments),
                        QLatin1String(command.purpose));
    return text
        + QStringLiteral("\nExit status: 0 done, 1 failed, 2 wrong usage, 3 not found, 4 a service cannot be "
                         "reached, 5 cancelled.\n");
}
