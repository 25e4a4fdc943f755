// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/searchcommand.h"

#include "client/eventtime.h"
#include "client/mailselection.h"
#include "client/mailview.h"
#include "client/requestrun.h"
#include "client/searchanswer.h"
#include "common/easdbusinterfaceproxy.h"

#include <QTimeZone>

#include <algorithm>

namespace {

constexpr int UsualLimit = 50;
constexpr int HighestLimit = 1000;

/** The options of a search for mail. */
class MailSearchOptions
{
public:
    explicit MailSearchOptions(QCommandLineParser &parser)
        : mParser(parser)
    {
        for (const QString &name : { Folder, From, To, Limit })
            parser.addOption(QCommandLineOption(name, QString(), QStringLiteral("value")));
        parser.addOption(QCommandLineOption(Find));
    }

    /** False, after an error was printed, if one cannot be understood. */
    bool read()
    {
        mText = mParser.positionalArguments().join(QLatin1Char(' '));
        if (mText.isEmpty() && !mParser.isSet(From) && !mParser.isSet(To))
            return refuse(QStringLiteral("give a text, --from or --to"));
        if (isFind() && (mParser.isSet(From) || mParser.isSet(To)))
            return refuse(QStringLiteral("--find knows no --from and no --to"));
        const std::optional<int> limit = CommandContext::number(mParser, Limit, UsualLimit, 1, HighestLimit);
        mLimit = limit.value_or(0);
        // The server compares with what lies strictly between.
        return limit && readDay(From, 0, -1, &mFrom) && readDay(To, 1, 0, &mTo);
    }

    bool isFind() const { return mParser.isSet(Find); }
    QString folder() const { return mParser.value(Folder); }
    int limit() const { return mLimit; }

    QDBusPendingReply<qulonglong> call(
        EasDBusInterfaceProxy &daemon, EasAccountId account, const QString &folderId) const
    {
        // The daemon asks for one match more than its limit.
        const auto limit = qulonglong(std::max(1, mLimit - 1));
        return isFind() ? daemon.find(account, folderId, mText, 0, limit)
                        : daemon.searchMessages(account, folderId, mFrom, mTo, mText, limit);
    }

private:
    static bool refuse(const QString &error)
    {
        Output::error(error);
        return false;
    }

    /** The midnight of a day, so many days and milliseconds later, as the daemon takes it. */
    bool readDay(const QString &option, int days, int milliseconds, QString *text) const
    {
        QDate day;
        if (!mParser.isSet(option))
            return true;
        if (!EventTime::readDay(mParser.value(option), option, &day))
            return false;
        const QDateTime time = day.addDays(days).startOfDay(QTimeZone::systemTimeZone());
        *text = time.addMSecs(milliseconds).toUTC().toString(Qt::ISODateWithMs);
        return true;
    }

    const QString Folder = QStringLiteral("folder");
    const QString From = QStringLiteral("from");
    const QString To = QStringLiteral("to");
    const QString Limit = QStringLiteral("limit");
    const QString Find = QStringLiteral("find");

    QCommandLineParser &mParser;
    QString mText;
    QString mFrom;
    QString mTo;
    int mLimit = 0;
};

void printMessages(Output &output, const QList<qulonglong> &matches, int limit, uint remaining)
{
    const QList<qulonglong> shown = matches.mid(0, limit);
    QJsonArray rows;
    for (const qulonglong id : shown)
        rows.append(MailView::describeMessage(QMailMessageMetaData(QMailMessageId(id))));
    output.rows(MailView::messageColumns(), rows);
    const uint more = remaining + uint(matches.size() - shown.size());
    if (more > 0)
        Output::note(QStringLiteral("%1 more on the server; a larger --limit shows them").arg(more));
}

} // namespace

int SearchCommand::search(CommandContext &context)
{
    MailSelection mail(context);
    MailSearchOptions options(mail.parser());
    if (!mail.parse(0, -1))
        return mail.exitStatus();
    if (!options.read())
        return ExitUsage;
    QMailFolderId folder;
    if (!mail.openStore() || (!options.folder().isEmpty() && !mail.findFolder(options.folder(), &folder)))
        return mail.exitStatus();
    const int enabled = context.requireEnabled({ mail.account() });
    if (enabled != ExitSuccess)
        return enabled;
    RequestRun run(context);
    const QString folderId = folder.isValid() ? QString::number(folder.toULongLong()) : QString();
    const DaemonRequest &request = run.add(mail.account(),
        [&](EasDBusInterfaceProxy &daemon) { return options.call(daemon, mail.account(), folderId); });
    const SearchAnswer answer(run, request);
    const int result = run.exec();
    if (result == ExitSuccess)
        printMessages(context.output(), answer.matches(), options.limit(), answer.count());
    return result;
}
