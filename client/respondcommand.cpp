// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/respondcommand.h"

#include "client/answeredmeeting.h"
#include "client/commandcontext.h"
#include "client/daemonproxy.h"
#include "client/eventtime.h"
#include "client/mailbox.h"
#include "client/messagecomposer.h"
#include "client/requestrun.h"
#include "common/exchangeactivesync.h"

#include <QCommandLineParser>

#include <optional>

namespace {

struct AnswerWord
{
    const char *word;
    int response; ///< as the bus has it
    const char *subject;
    const char *sentence;
};
constexpr AnswerWord answers[] = {
    { "accept", 1, "Accepted: %1", "accepted: %1" },
    { "tentative", 2, "Tentative: %1", "accepted tentatively: %1" },
    { "decline", 3, "Declined: %1", "declined: %1" },
};

/** Null, after an error was printed, for another word. */
const AnswerWord *answerOf(const QString &word)
{
    QStringList words;
    for (const AnswerWord &answer : answers) {
        if (word == QLatin1String(answer.word))
            return &answer;
        words.append(QLatin1String(answer.word));
    }
    CommandContext::isOneOf(word, words, QStringLiteral("the answer"));
    return nullptr;
}

/** Another time, which the user proposes; empty texts for none. */
struct Proposal
{
    QString start;
    QString end;
};

/** Nothing, after an error was printed, if the two are no span of time. */
std::optional<Proposal> proposalOf(const QString &start, const QString &end)
{
    const EventTime first = EventTime::read(start);
    const EventTime last = EventTime::read(end);
    const QTimeZone zone = QTimeZone::systemTimeZone();
    if (!first.hasTime() || !last.hasTime() || first.in(zone) >= last.in(zone)) {
        Output::error(QStringLiteral("--propose takes a start and a later end, such as 2024-05-01T09:30 "
                                     "2024-05-01T10:30, not \"%1\" and \"%2\"")
                          .arg(start, end));
        return std::nullopt;
    }
    return Proposal { first.in(zone).toUTC().toString(Qt::ISODate),
        last.in(zone).toUTC().toString(Qt::ISODate) };
}

/** The exit status; a server that is known to be older is not asked for what it would not understand. */
int requireVersion(EasAccountId account, int version, const QString &error)
{
    const std::unique_ptr<EasDBusInterfaceProxy> daemon = DaemonProxy::create();
    QDBusPendingReply<int> known = daemon->protocolVersion(account);
    known.waitForFinished();
    if (known.isError())
        return DaemonProxy::unreachable(known.error());
    if (known.value() == ExchangeActiveSync::ProtocolVersionUnknown || known.value() >= version)
        return ExitSuccess;
    Output::error(error);
    return ExitFailure;
}

int requireProposals(EasAccountId account)
{
    return requireVersion(account, ExchangeActiveSync::ProtocolVersion161,
        QStringLiteral("the server takes no proposals of another time; --comment can name one"));
}

/** Such a server would take the answer for the whole series. */
int requireOccurrences(EasAccountId account)
{
    return requireVersion(account, ExchangeActiveSync::ProtocolVersion141,
        QStringLiteral("the server takes no answers to one occurrence alone"));
}

/** One answer from the words of the command to the end of the request. */
class Answering
{
public:
    Answering(CommandContext &context, EasAccountId account)
        : mContext(context)
        , mAccount(account)
    {
    }

    AnsweredMeeting meeting;
    const AnswerWord *answer = nullptr;
    Proposal proposal;
    QString comment;

    int run();

private:
    bool storeReply();
    QDBusPendingReply<qulonglong> call(EasDBusInterfaceProxy &daemon) const;
    void dropReply() const;
    void syncCalendar() const;

    CommandContext &mContext;
    const EasAccountId mAccount;
    QMailMessageId mReply;
};

/** Servers before 16.0 send nothing by themselves; the engine takes the message away where one does. */
bool Answering::storeReply()
{
    OutgoingMessage outgoing;
    outgoing.to = { meeting.organizer };
    outgoing.subject = QString::fromLatin1(answer->subject).arg(meeting.subject);
    outgoing.text = comment;
    mReply = MessageComposer(mContext, mAccount).store(outgoing, QMailFolder::OutboxFolder);
    return mReply.isValid();
}

QDBusPendingReply<qulonglong> Answering::call(EasDBusInterfaceProxy &daemon) const
{
    const qulonglong reply = mReply.toULongLong();
    if (meeting.message.isValid())
        return daemon.meetingResponse(mAccount, meeting.message.toULongLong(), answer->response,
            meeting.instanceId(), reply, proposal.start, proposal.end, comment);
    return daemon.meetingResponseCalendar(mAccount, meeting.event, answer->response, meeting.instanceId(),
        reply, proposal.start, proposal.end, comment);
}

/** A reply that the engine has completed belongs to an answer that the server has; it waits to be sent. */
void Answering::dropReply() const
{
    const QMailMessage reply(mReply);
    if (!reply.id().isValid())
        return;
    for (uint i = 0; i < reply.partCount(); ++i) {
        if (reply.partAt(i).contentType().matches("text", "calendar")) {
            Output::note(QStringLiteral("the reply to the organizer is in the Outbox, message %1")
                             .arg(mReply.toULongLong()));
            return;
        }
    }
    MailBox(mAccount).remove({ mReply });
}

/** The server has changed the calendar. */
void Answering::syncCalendar() const
{
    constexpr int Calendar = 1;
    RequestRun run(mContext);
    run.add(mAccount,
        [this](EasDBusInterfaceProxy &daemon) { return daemon.syncService(mAccount, 1 << Calendar); });
    if (run.exec() != ExitSuccess)
        Output::note(QStringLiteral("the answer has arrived; the calendar follows with the next sync"));
}

int Answering::run()
{
    if (!storeReply())
        return ExitFailure;
    RequestRun run(mContext);
    run.add(mAccount, [this](EasDBusInterfaceProxy &daemon) { return call(daemon); });
    const int result = run.exec();
    mContext.output().addFacts(run.first().describe());
    if (result != ExitSuccess) {
        dropReply();
        return result;
    }
    syncCalendar();
    mContext.output().done(QString::fromLatin1(answer->sentence).arg(meeting.subject),
        { { QStringLiteral("answer"), QLatin1String(answer->word) },
            { QStringLiteral("organizer"), meeting.organizer.address() } });
    return ExitSuccess;
}

} // namespace

int RespondCommand::run(CommandContext &context)
{
    const QString occurrence = QStringLiteral("occurrence");
    const QString propose = QStringLiteral("propose");
    const QString comment = QStringLiteral("comment");
    QCommandLineParser parser;
    parser.addOptions({ { occurrence, QString(), QStringLiteral("start") },
        { propose, QString(), QStringLiteral("start") }, { comment, QString(), QStringLiteral("text") } });
    if (!context.parse(parser, 2, 3))
        return context.exitStatus();
    const QStringList arguments = parser.positionalArguments();
    // The end of a proposal is the argument behind the two that every answer has.
    if (parser.isSet(propose) != (arguments.size() == 3)) {
        Output::error(QStringLiteral("--propose takes a start and an end"));
        return ExitUsage;
    }
    EasAccountId account = 0;
    const int found = context.selectAccount(&account);
    if (found != ExitSuccess)
        return found;
    Answering answering(context, account);
    answering.answer = answerOf(arguments.at(1));
    if (!answering.answer)
        return ExitUsage;
    if (parser.isSet(propose)) {
        const std::optional<Proposal> proposal = proposalOf(parser.value(propose), arguments.at(2));
        if (!proposal)
            return ExitUsage;
        answering.proposal = *proposal;
    }
    answering.comment = parser.value(comment);
    const int searched =
        MeetingSearch(account).find(arguments.at(0), parser.value(occurrence), &answering.meeting);
    if (searched != ExitSuccess)
        return searched;
    int possible = parser.isSet(propose) ? requireProposals(account) : int(ExitSuccess);
    if (possible == ExitSuccess && parser.isSet(occurrence))
        possible = requireOccurrences(account);
    return possible == ExitSuccess ? answering.run() : possible;
}
