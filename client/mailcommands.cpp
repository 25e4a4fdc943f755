// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/mailcommands.h"

#include "client/commandcontext.h"
#include "client/daemonrequest.h"
#include "client/exitstatus.h"
#include "client/mailview.h"
#include "common/easdbusinterfaceproxy.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>
#include <qmaildisconnected.h>
#include <qmailmessagekey.h>
#include <qmailstore.h>

namespace {

using Columns = QList<QPair<QString, QString>>;

/** The account, once the mail store is usable too; 0 and an exit status otherwise. */
EasAccountId accountWithStore(const CommandContext &context, int *exitStatus)
{
    const EasAccountId id = context.accountId();
    *exitStatus = ExitNotFound;
    if (id != 0 && !QMailStore::instance()) {
        *exitStatus = ExitUnavailable;
        return 0;
    }
    if (id != 0 && QMailStore::initializationState() != QMailStore::Initialized) {
        Output::error(QStringLiteral("the mail store cannot be opened"));
        *exitStatus = ExitUnavailable;
        return 0;
    }
    return id;
}

bool findMessages(EasAccountId accountId, const QStringList &numbers, QMailMessageIdList *ids)
{
    for (const QString &number : numbers) {
        const QMailMessageId id = MailView::findMessage(accountId, number);
        if (!id.isValid()) {
            Output::error(QStringLiteral("there is no message %1").arg(number));
            return false;
        }
        ids->append(id);
    }
    return true;
}

/** Finds the messages that the arguments name and changes them; what the server learns, the next sync tells.
 */
template <typename Change> int changeMessages(const CommandContext &context, const char *done, Change change)
{
    QCommandLineParser parser;
    if (!context.parse(parser, 1, -1))
        return ExitUsage;
    int exitStatus = ExitSuccess;
    const EasAccountId account = accountWithStore(context, &exitStatus);
    QMailMessageIdList ids;
    if (account == 0)
        return exitStatus;
    if (!findMessages(account, parser.positionalArguments(), &ids))
        return ExitNotFound;
    if (!change(ids)) {
        Output::error(QStringLiteral("the mail store refused the change"));
        return ExitFailure;
    }
    QMailStore::instance()->flushIpcNotifications();
    context.output().message(QStringLiteral("%1 message(s) %2; the next sync tells the server")
                                 .arg(ids.size())
                                 .arg(QLatin1String(done)));
    return ExitSuccess;
}

bool writeFile(const QString &path, const QByteArray &data, bool overwrite)
{
    if (QFileInfo::exists(path) && !overwrite) {
        Output::error(QStringLiteral("%1 exists; use --force to replace it").arg(path));
        return false;
    }
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(data) == data.size() && file.commit())
        return true;
    Output::error(QStringLiteral("cannot write %1: %2").arg(path, file.errorString()));
    return false;
}

} // namespace

int MailCommands::folders(const CommandContext &context)
{
    QCommandLineParser parser;
    if (!context.parse(parser, 0, 0))
        return ExitUsage;
    int exitStatus = ExitSuccess;
    const EasAccountId account = accountWithStore(context, &exitStatus);
    if (account == 0)
        return exitStatus;
    QJsonArray rows;
    const QMailFolderIdList ids = MailView::folders(account);
    for (const QMailFolderId &id : ids) {
        QJsonObject row = MailView::describeFolder(id);
        row[QStringLiteral("tree")] = QString(2 * row[QStringLiteral("depth")].toInt(), QChar(0x00B7))
            + row[QStringLiteral("name")].toString();
        rows.append(row);
    }
    const Columns columns { { QStringLiteral("id"), QStringLiteral("ID") },
        { QStringLiteral("messages"), QStringLiteral("MESSAGES") },
        { QStringLiteral("unread"), QStringLiteral("UNREAD") },
        { QStringLiteral("tree"), QStringLiteral("FOLDER") } };
    context.output().rows(columns, rows);
    return ExitSuccess;
}

int MailCommands::list(const CommandContext &context)
{
    QCommandLineParser parser;
    const QCommandLineOption limit(
        QStringLiteral("limit"), QString(), QStringLiteral("n"), QStringLiteral("50"));
    parser.addOption(limit);
    if (!context.parse(parser, 0, 1))
        return ExitUsage;
    int exitStatus = ExitSuccess;
    const EasAccountId account = accountWithStore(context, &exitStatus);
    if (account == 0)
        return exitStatus;
    QMailFolderId folder;
    if (!parser.positionalArguments().isEmpty()) {
        folder = MailView::findFolder(account, parser.positionalArguments().first());
        if (!folder.isValid()) {
            Output::error(
                QStringLiteral("there is no folder \"%1\"").arg(parser.positionalArguments().first()));
            return ExitNotFound;
        }
    }
    QJsonArray rows;
    const QMailMessageIdList ids = MailView::messages(account, folder).mid(0, parser.value(limit).toInt());
    for (const QMailMessageId &id : ids)
        rows.append(MailView::describeMessage(QMailMessageMetaData(id)));
    const Columns columns { { QStringLiteral("id"), QStringLiteral("ID") },
        { QStringLiteral("date"), QStringLiteral("DATE") },
        { QStringLiteral("read"), QStringLiteral("READ") },
        { QStringLiteral("from"), QStringLiteral("FROM") },
        { QStringLiteral("subject"), QStringLiteral("SUBJECT") },
        { QStringLiteral("folder"), QStringLiteral("FOLDER") } };
    context.output().rows(columns, rows);
    return ExitSuccess;
}

int MailCommands::show(const CommandContext &context)
{
    QCommandLineParser parser;
    if (!context.parse(parser, 1, 1))
        return ExitUsage;
    int exitStatus = ExitSuccess;
    const EasAccountId account = accountWithStore(context, &exitStatus);
    QMailMessageIdList ids;
    if (account == 0)
        return exitStatus;
    if (!findMessages(account, parser.positionalArguments(), &ids))
        return ExitNotFound;
    const QJsonObject message = MailView::describeWhole(QMailMessage(ids.first()));
    if (context.output().isJson()) {
        context.output().object(message);
        return ExitSuccess;
    }
    for (const char *key : { "from", "to", "cc", "date", "subject", "folder" }) {
        const QString value = message.value(QLatin1String(key)).toString();
        if (!value.isEmpty())
            context.output().message(QStringLiteral("%1: %2").arg(QLatin1String(key), value.simplified()));
    }
    const QString text = message.value(QStringLiteral("text")).toString();
    context.output().message(QLatin1Char('\n')
        + (text.isEmpty() ? QStringLiteral("(the text is not on the device; fetch it with mail get)")
                          : text));
    const QJsonArray parts = message.value(QStringLiteral("parts")).toArray();
    if (!parts.isEmpty()) {
        const Columns columns { { QStringLiteral("location"), QStringLiteral("PART") },
            { QStringLiteral("name"), QStringLiteral("NAME") },
            { QStringLiteral("size"), QStringLiteral("SIZE") },
            { QStringLiteral("downloaded"), QStringLiteral("DOWNLOADED") } };
        context.output().message(QString());
        context.output().rows(columns, parts);
    }
    return ExitSuccess;
}

int MailCommands::get(const CommandContext &context)
{
    QCommandLineParser parser;
    const QCommandLineOption attachments(QStringLiteral("attachments"));
    parser.addOption(attachments);
    if (!context.parse(parser, 1, -1))
        return ExitUsage;
    int exitStatus = ExitSuccess;
    const EasAccountId account = accountWithStore(context, &exitStatus);
    QMailMessageIdList ids;
    if (account == 0)
        return exitStatus;
    if (!findMessages(account, parser.positionalArguments(), &ids))
        return ExitNotFound;
    QList<qulonglong> numbers;
    for (const QMailMessageId &id : qAsConst(ids))
        numbers.append(id.toULongLong());
    DaemonRequest request(account, context.showsProgress());
    const int result = request.run([&](EasDBusInterfaceProxy &daemon) {
        return daemon.downloadMessages(account, numbers, parser.isSet(attachments));
    });
    if (result == ExitSuccess)
        context.output().message(QStringLiteral("%1 message(s) downloaded").arg(ids.size()));
    return result;
}

int MailCommands::saveAttachment(const CommandContext &context)
{
    QCommandLineParser parser;
    const QCommandLineOption force(QStringLiteral("force"));
    parser.addOption(force);
    if (!context.parse(parser, 2, 3))
        return ExitUsage;
    const QStringList arguments = parser.positionalArguments();
    int exitStatus = ExitSuccess;
    const EasAccountId account = accountWithStore(context, &exitStatus);
    QMailMessageIdList ids;
    if (account == 0)
        return exitStatus;
    if (!findMessages(account, arguments.mid(0, 1), &ids))
        return ExitNotFound;

    static const QRegularExpression wellFormed(QStringLiteral("^[1-9][0-9]*(\\.[1-9][0-9]*)*$"));
    const QMailMessagePart::Location location(arguments.at(1));
    if (!wellFormed.match(arguments.at(1)).hasMatch() || !QMailMessage(ids.first()).contains(location)) {
        Output::error(QStringLiteral("message %1 has no part %2").arg(arguments.at(0), arguments.at(1)));
        return ExitNotFound;
    }
    if (!QMailMessage(ids.first()).partAt(location).hasBody()) {
        DaemonRequest request(account, context.showsProgress());
        const int result = request.run([&](EasDBusInterfaceProxy &daemon) {
            return daemon.downloadMessagePart(account, ids.first().toULongLong(), arguments.at(1));
        });
        if (result != ExitSuccess)
            return result;
    }
    const QMailMessage message(ids.first());
    const QMailMessagePart &part = message.partAt(location);
    QString path = arguments.value(2, QStringLiteral("."));
    if (QFileInfo(path).isDir())
        path = QDir(path).filePath(MailView::safeFileName(part));
    const QByteArray data = part.hasBody() ? part.body().data(QMailMessageBody::Decoded) : QByteArray();
    if (!writeFile(path, data, parser.isSet(force)))
        return ExitFailure;
    context.output().message(QStringLiteral("%1 bytes written to %2").arg(data.size()).arg(path));
    return ExitSuccess;
}

int MailCommands::markRead(const CommandContext &context)
{
    return changeMessages(context, "marked as read", [](const QMailMessageIdList &ids) {
        return QMailStore::instance()->updateMessagesMetaData(
            QMailMessageKey::id(ids), QMailMessage::Read, true);
    });
}

int MailCommands::markUnread(const CommandContext &context)
{
    return changeMessages(context, "marked as unread", [](const QMailMessageIdList &ids) {
        return QMailStore::instance()->updateMessagesMetaData(
            QMailMessageKey::id(ids), QMailMessage::Read, false);
    });
}

int MailCommands::move(const CommandContext &context)
{
    QCommandLineParser parser;
    if (!context.parse(parser, 2, -1))
        return ExitUsage;
    int exitStatus = ExitSuccess;
    const EasAccountId account = accountWithStore(context, &exitStatus);
    if (account == 0)
        return exitStatus;
    QStringList arguments = parser.positionalArguments();
    const QString destination = arguments.takeLast();
    const QMailFolderId folder = MailView::findFolder(account, destination);
    QMailMessageIdList ids;
    if (!folder.isValid()) {
        Output::error(QStringLiteral("there is no folder \"%1\"").arg(destination));
        return ExitNotFound;
    }
    if (!findMessages(account, arguments, &ids))
        return ExitNotFound;
    QMailDisconnected::moveToFolder(ids, folder);
    QMailStore::instance()->flushIpcNotifications();
    context.output().message(QStringLiteral("%1 message(s) moved to %2; the next sync tells the server")
                                 .arg(ids.size())
                                 .arg(MailView::folderPath(folder)));
    return ExitSuccess;
}

int MailCommands::remove(const CommandContext &context)
{
    return changeMessages(context, "deleted", [](const QMailMessageIdList &ids) {
        return QMailStore::instance()->removeMessages(
            QMailMessageKey::id(ids), QMailStore::CreateRemovalRecord);
    });
}
