// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/availabilitycommand.h"

#include "client/availabilitypicture.h"
#include "client/commandcontext.h"
#include "client/requestrun.h"
#include "client/timespan.h"
#include "client/timetext.h"
#include "common/easdbusinterfaceproxy.h"

#include <QCommandLineParser>

namespace {

constexpr int SlotSeconds = 30 * 60;

/** Without a start the span begins with today; without an end it ends with the day of its start. Servers
 * answer by half hours, and so both lie on one. */
void complete(TimeSpan &span)
{
    const auto midnight = [](const QDate &day) {
        return QDateTime(day, QTime(0, 0));
    };
    if (!span.hasStart())
        span.setStart(midnight(span.hasEnd() && span.end() <= QDateTime::currentDateTime()
                ? span.end().addSecs(-1).toLocalTime().date()
                : QDate::currentDate()));
    if (!span.hasEnd())
        span.setEnd(midnight(span.start().toLocalTime().date().addDays(1)));
    const qint64 start = span.start().toSecsSinceEpoch();
    span.setStart(span.start().addSecs(-(start % SlotSeconds)));
    const qint64 end = span.end().toSecsSinceEpoch();
    span.setEnd(span.end().addSecs((SlotSeconds - end % SlotSeconds) % SlotSeconds));
}

/** False, after an error, for what no server answers. */
bool canBeAsked(const TimeSpan &span)
{
    // A server has 32 KB for a person.
    constexpr int MostSlots = 32 * 1024;
    if (!span.isInOrder())
        return false;
    if (span.start().secsTo(span.end()) <= qint64(MostSlots) * SlotSeconds)
        return true;
    Output::error(QStringLiteral("that is more than %1 days").arg(MostSlots / 48));
    return false;
}

QList<AvailabilityPicture::Person> peopleOf(
    const QStringList &emails, const QStringList &names, const QStringList &statuses)
{
    QList<AvailabilityPicture::Person> people;
    for (int i = 0; i < emails.size(); ++i)
        people.append({ emails.at(i), names.value(i), statuses.value(i) });
    return people;
}

} // namespace

int AvailabilityCommand::show(CommandContext &context)
{
    QCommandLineParser parser;
    TimeSpan span(parser);
    if (!context.parse(parser, 1, -1))
        return context.exitStatus();
    if (!span.read())
        return ExitUsage;
    complete(span);
    if (!canBeAsked(span))
        return ExitUsage;
    EasAccountId account = 0;
    int result = context.selectAccount(&account);
    if (result == ExitSuccess)
        result = context.requireEnabled({ account });
    if (result != ExitSuccess)
        return result;

    RequestRun run(context);
    const QString addresses = parser.positionalArguments().join(QLatin1Char('\n'));
    DaemonRequest &request = run.add(account, [=](EasDBusInterfaceProxy &daemon) {
        return daemon.attendeesAvailable(
            account, addresses, TimeText::forPrograms(span.start()), TimeText::forPrograms(span.end()));
    });
    QList<AvailabilityPicture::Person> people;
    QObject::connect(&request, &DaemonRequest::availabilityReceived, &request,
        [&people](const QStringList &emails, const QStringList &names, const QStringList &statuses) {
            people = peopleOf(emails, names, statuses);
        });
    result = run.exec();
    if (result != ExitSuccess)
        return result;
    const AvailabilityPicture picture(span.start(), span.end(), people);
    context.output().addFacts({ { QStringLiteral("from"), TimeText::forPrograms(span.start()) },
        { QStringLiteral("to"), TimeText::forPrograms(span.end()) },
        { QStringLiteral("people"), picture.describe() } });
    context.output().message(picture.lines().join(QLatin1Char('\n')));
    return ExitSuccess;
}
