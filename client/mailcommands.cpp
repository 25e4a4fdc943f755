// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/mailcommands.h"

#include "client/commandcontext.h"
#include "client/daemonrequest.h"
#include "client/exitstatus.h"
#include "client/folderdirectory.h"
#include "client/mailview.h"
#include "client/outputfile.h"
#include "common/easdbusinterfaceproxy.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <qmaildisconnected.h>
#include <qmailmessagekey.h>
#include <qmailstore.h>

namespace {

using Columns = QList<QPair<QString, QString>>;

/** What nearly every command on mail starts with: arguments, an account, a mail store, messages. */
class MailSelection
{
public:
    explicit MailSelection(const CommandContext &context)
        : mContext(context)
    {
    }

    QCommandLineParser &parser() { return mParser; }
    QStringList arguments() const { return mParser.positionalArguments(); }
    EasAccountId account() const { return mAccount; }
    const QMailMessageIdList &messages() const { return mMessages; }
    int exitStatus() const { return mExitStatus; }

    /** False, with exitStatus() set and an error printed, if there is nothing to work on. */
    bool open(int fewestArguments, int mostArguments);
    bool select(const QStringList &numbers);

private:
    bool fail(int exitStatus, const QString &error = QString());

    const CommandContext &mContext;
    QCommandLineParser mParser;
    EasAccountId mAccount = 0;
    QMailMessageIdList mMessages;
    int mExitStatus = ExitSuccess;
};

bool MailSelection::fail(int exitStatus, const QString &error)
{
    if (!error.isEmpty())
        Output::error(error);
    mExitStatus = exitStatus;
    return false;
}

bool MailSelection::open(int fewestArguments, int mostArguments)
{
    if (!mContext.parse(mParser, fewestArguments, mostArguments))
        return fail(ExitUsage);
    mAccount = mContext.accountId();
    if (mAccount == 0)
        return fail(ExitNotFound);
    if (!QMailStore::instance() || QMailStore::initializationState() != QMailStore::Initialized)
        return fail(ExitUnavailable, QStringLiteral("the mail store cannot be opened"));
    return true;
}

bool MailSelection::select(const QStringList &numbers)
{
    for (const QString &number : numbers) {
        const QMailMessageId id = MailView::findMessage(mAccount, number);
        if (!id.isValid())
            return fail(ExitNotFound, QStringLiteral("there is no message %1").arg(number));
        mMessages.append(id);
    }
    return true;
}

/** Changes the messages that the arguments name; what the server has to know, the next sync tells it. */
template <typename Change> int changeMessages(const CommandContext &context, const char *done, Change change)
{
    MailSelection mail(context);
    if (!mail.open(1, -1) || !mail.select(mail.arguments()))
        return mail.exitStatus();
    if (!change(mail.messages())) {
        Output::error(QStringLiteral("the mail store refused the change"));
        return ExitFailure;
    }
    QMailStore::instance()->flushIpcNotifications();
    context.output().message(QStringLiteral("%1 message(s) %2; the next sync tells the server")
                                 .arg(mail.messages().size())
                                 .arg(QLatin1String(done)));
    return ExitSuccess;
}

/** The store leaves malformed locations undefined, so they are kept from it. */
bool hasPart(const QMailMessageId &id, const QString &location)
{
    static const QRegularExpression wellFormed(QStringLiteral("^[1-9][0-9]*(\\.[1-9][0-9]*)*$"));
    return wellFormed.match(location).hasMatch()
        && QMailMessage(id).contains(QMailMessagePart::Location(location));
}

/** The folders of events or contacts, which have no messages to be counted. */
int listOtherFolders(const CommandContext &context, FolderDirectory directory)
{
    if (!directory.open())
        return ExitUnavailable;
    QJsonArray rows;
    for (const LocalFolder &folder : directory.folders())
        rows.append(
            QJsonObject { { QStringLiteral("id"), folder.id }, { QStringLiteral("name"), folder.name } });
    context.output().rows({ { QStringLiteral("name"), QStringLiteral("FOLDER") },
                              { QStringLiteral("id"), QStringLiteral("ID") } },
        rows);
    return ExitSuccess;
}

} // namespace

int MailCommands::folders(const CommandContext &context)
{
    MailSelection mail(context);
    const QCommandLineOption kind(
        QStringLiteral("kind"), QString(), QStringLiteral("which"), QStringLiteral("mail"));
    mail.parser().addOption(kind);
    if (!mail.open(0, 0))
        return mail.exitStatus();
    FolderDirectory::Kind wanted = FolderDirectory::Mail;
    if (!FolderDirectory::kindOf(mail.parser().value(kind), &wanted))
        return ExitUsage;
    if (wanted != FolderDirectory::Mail)
        return listOtherFolders(context, FolderDirectory(mail.account(), wanted));
    QJsonArray rows;
    const QMailFolderIdList ids = MailView::folders(mail.account());
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
    MailSelection mail(context);
    const QCommandLineOption limit(
        QStringLiteral("limit"), QString(), QStringLiteral("n"), QStringLiteral("50"));
    mail.parser().addOption(limit);
    if (!mail.open(0, 1))
        return mail.exitStatus();
    QMailFolderId folder;
    if (!mail.arguments().isEmpty()) {
        folder = MailView::findFolder(mail.account(), mail.arguments().first());
        if (!folder.isValid()) {
            Output::error(QStringLiteral("there is no folder \"%1\"").arg(mail.arguments().first()));
            return ExitNotFound;
        }
    }
    QJsonArray rows;
    const QMailMessageIdList ids =
        MailView::messages(mail.account(), folder).mid(0, mail.parser().value(limit).toInt());
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
    MailSelection mail(context);
    if (!mail.open(1, 1) || !mail.select(mail.arguments()))
        return mail.exitStatus();
    const QJsonObject message = MailView::describeWhole(QMailMessage(mail.messages().first()));
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
    MailSelection mail(context);
    const QCommandLineOption attachments(QStringLiteral("attachments"));
    mail.parser().addOption(attachments);
    if (!mail.open(1, -1) || !mail.select(mail.arguments()))
        return mail.exitStatus();
    QList<qulonglong> numbers;
    for (const QMailMessageId &id : mail.messages())
        numbers.append(id.toULongLong());
    DaemonRequest request(mail.account(), context.showsProgress());
    const int result = request.run([&](EasDBusInterfaceProxy &daemon) {
        return daemon.downloadMessages(mail.account(), numbers, mail.parser().isSet(attachments));
    });
    if (result == ExitSuccess)
        context.output().message(QStringLiteral("%1 message(s) downloaded").arg(numbers.size()));
    return result;
}

int MailCommands::saveAttachment(const CommandContext &context)
{
    MailSelection mail(context);
    const QCommandLineOption force(QStringLiteral("force"));
    mail.parser().addOption(force);
    if (!mail.open(2, 3) || !mail.select(mail.arguments().mid(0, 1)))
        return mail.exitStatus();
    const QString part = mail.arguments().at(1);
    const QMailMessageId id = mail.messages().first();
    if (!hasPart(id, part)) {
        Output::error(QStringLiteral("message %1 has no part %2").arg(mail.arguments().at(0), part));
        return ExitNotFound;
    }
    const QMailMessagePart::Location location(part);
    if (!QMailMessage(id).partAt(location).hasBody()) {
        DaemonRequest request(mail.account(), context.showsProgress());
        const int result = request.run([&](EasDBusInterfaceProxy &daemon) {
            return daemon.downloadMessagePart(mail.account(), id.toULongLong(), part);
        });
        if (result != ExitSuccess)
            return result;
    }
    const QMailMessage message(id);
    const QMailMessagePart &attachment = message.partAt(location);
    QString path = mail.arguments().value(2, QStringLiteral("."));
    if (QFileInfo(path).isDir())
        path = QDir(path).filePath(MailView::safeFileName(attachment));
    const QByteArray data =
        attachment.hasBody() ? attachment.body().data(QMailMessageBody::Decoded) : QByteArray();
    if (!OutputFile::write(path, data, mail.parser().isSet(force)))
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
    MailSelection mail(context);
    if (!mail.open(2, -1))
        return mail.exitStatus();
    QStringList numbers = mail.arguments();
    const QString destination = numbers.takeLast();
    const QMailFolderId folder = MailView::findFolder(mail.account(), destination);
    if (!folder.isValid()) {
        Output::error(QStringLiteral("there is no folder \"%1\"").arg(destination));
        return ExitNotFound;
    }
    if (!mail.select(numbers))
        return mail.exitStatus();
    QMailDisconnected::moveToFolder(mail.messages(), folder);
    QMailStore::instance()->flushIpcNotifications();
    context.output().message(QStringLiteral("%1 message(s) moved to %2; the next sync tells the server")
                                 .arg(mail.messages().size())
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
