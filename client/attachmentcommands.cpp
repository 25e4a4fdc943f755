// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/attachmentcommands.h"

#include "client/mailselection.h"
#include "client/mailview.h"
#include "client/outputfile.h"
#include "client/requestrun.h"
#include "common/easdbusinterfaceproxy.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

namespace {

const QCommandLineOption All(QStringLiteral("all"));
const QCommandLineOption Force(QStringLiteral("force"));

/** The store leaves malformed locations undefined, so they are kept from it. */
bool hasPart(const QMailMessageId &id, const QString &location)
{
    static const QRegularExpression wellFormed(QStringLiteral("^[1-9][0-9]*(\\.[1-9][0-9]*)*$"));
    return wellFormed.match(location).hasMatch()
        && QMailMessage(id).contains(QMailMessagePart::Location(location));
}

QStringList allParts(const QMailMessageId &id)
{
    QStringList locations;
    const QJsonArray parts = MailView::parts(QMailMessage(id));
    for (const QJsonValue &part : parts)
        locations.append(part.toObject().value(QStringLiteral("location")).toString());
    return locations;
}

/** The bytes of a part, downloaded if they are not on the device; the exit status. */
int load(CommandContext &context, const MailSelection &mail, const QString &location, QByteArray *data)
{
    const QMailMessagePart::Location place(location);
    if (!QMailMessage(mail.message()).partAt(place).hasBody()) {
        RequestRun run(context);
        run.add(mail.account(), [&](EasDBusInterfaceProxy &daemon) {
            return daemon.downloadMessagePart(mail.account(), mail.message().toULongLong(), location);
        });
        const int result = run.exec();
        context.output().addFacts(run.first().describe());
        if (result != ExitSuccess)
            return result;
    }
    const QMailMessage message(mail.message());
    const QMailMessagePart &part = message.partAt(place);
    // A file of 0 bytes has no body either.
    if (!part.hasBody() && part.contentDisposition().size() != 0) {
        Output::error(
            QStringLiteral("part %1 did not come, although the daemon reported success").arg(location));
        return ExitFailure;
    }
    *data = part.hasBody() ? part.body().data(QMailMessageBody::Decoded) : QByteArray();
    return ExitSuccess;
}

/** Where a part is to be written: the path, or a file of the part's own name if that is a folder. */
QString pathFor(const QMailMessageId &id, const QString &location, const QString &path)
{
    if (!QFileInfo(path).isDir())
        return path;
    const QMailMessage message(id);
    return QDir(path).filePath(MailView::safeFileName(message.partAt(QMailMessagePart::Location(location))));
}

} // namespace

int AttachmentCommands::save(CommandContext &context)
{
    MailSelection mail(context);
    mail.parser().addOptions({ All, Force });
    if (!mail.open(1, 3) || !mail.select({ mail.argument() }))
        return mail.exitStatus();
    const bool isAll = mail.parser().isSet(All);
    if (mail.arguments().size() < 2 - int(isAll) || mail.arguments().size() > 3 - int(isAll)) {
        Output::error(QStringLiteral("attachment save needs a part, or --all"));
        return ExitUsage;
    }
    const QString target = mail.arguments().value(isAll ? 1 : 2, QStringLiteral("."));
    if (isAll && !QFileInfo(target).isDir()) {
        Output::error(QStringLiteral("--all needs a folder, and %1 is none").arg(target));
        return ExitUsage;
    }
    const QStringList parts = isAll ? allParts(mail.message()) : QStringList { mail.argument(1) };
    OutputFile file(context.output(), mail.parser().isSet(Force));
    for (const QString &part : parts) {
        if (!hasPart(mail.message(), part)) {
            Output::error(QStringLiteral("message %1 has no part %2").arg(mail.argument(), part));
            return ExitNotFound;
        }
        QByteArray data;
        const int loaded = load(context, mail, part, &data);
        if (loaded != ExitSuccess)
            return loaded;
        const int written =
            file.write(pathFor(mail.message(), part, target), data, "application/octet-stream");
        if (written != ExitSuccess)
            return written;
    }
    if (parts.isEmpty())
        context.output().done(QStringLiteral("message %1 has no attachments").arg(mail.argument()));
    return ExitSuccess;
}
