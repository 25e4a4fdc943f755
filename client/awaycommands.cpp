// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/awaycommands.h"

#include "client/commandcontext.h"
#include "client/requestrun.h"
#include "client/textoption.h"
#include "client/timespan.h"
#include "client/timetext.h"
#include "common/easdbusinterfaceproxy.h"

#include <QCommandLineParser>

namespace {

const QStringList &externalWords()
{
    static const QStringList words { QStringLiteral("off"), QStringLiteral("known"), QStringLiteral("all") };
    return words;
}

QString externalWord(const EasOofContainer &state)
{
    if (!state.externalMessageEnabled())
        return externalWords().at(0);
    return externalWords().at(state.externalMessageToAnyone() ? 2 : 1);
}

QString stateWord(const EasOofContainer &state)
{
    if (!state.oofEnabled())
        return QStringLiteral("off");
    return state.timeRangeEnabled() ? QStringLiteral("for a time") : QStringLiteral("on");
}

QJsonObject describe(const EasOofContainer &state)
{
    QJsonObject object { { QStringLiteral("away"), stateWord(state) },
        { QStringLiteral("text"), state.internalMessage() },
        { QStringLiteral("external"), externalWord(state) } };
    if (state.timeRangeEnabled()) {
        object[QStringLiteral("from")] = TimeText::forPrograms(state.startTime());
        object[QStringLiteral("to")] = TimeText::forPrograms(state.endTime());
    }
    if (state.externalMessageEnabled())
        object[QStringLiteral("externalText")] = state.externalMessage();
    return object;
}

/** The one account of a command, which has to be enabled; the exit status. */
int selectAccount(CommandContext &context, EasAccountId *account)
{
    const int selected = context.selectAccount(account);
    return selected == ExitSuccess ? context.requireEnabled({ *account }) : selected;
}

/** The same, for commands that are given it as their only argument. */
int selectNamedAccount(CommandContext &context, EasAccountId *account)
{
    QCommandLineParser parser;
    if (!context.parse(parser, 0, 1))
        return context.exitStatus();
    context.nameAccount(parser.positionalArguments().value(0));
    return selectAccount(context, account);
}

int readState(CommandContext &context, EasAccountId account, EasOofContainer *state)
{
    RequestRun run(context);
    DaemonRequest &request =
        run.add(account, [account](EasDBusInterfaceProxy &daemon) { return daemon.getOofState(account); });
    QObject::connect(&request, &DaemonRequest::oofStateReceived, &request,
        [state](const EasOofContainer &received) { *state = received; });
    const int result = run.exec();
    context.output().addFacts(run.first().describe());
    return result;
}

int writeState(CommandContext &context, EasAccountId account, const EasOofContainer &state)
{
    RequestRun run(context);
    run.add(account, [account, state](EasDBusInterfaceProxy &daemon) {
        return daemon.setOofState(account, state.oofEnabled(), state.timeRangeEnabled(),
            TimeText::forPrograms(state.startTime()), TimeText::forPrograms(state.endTime()),
            state.internalMessage(), state.externalMessageEnabled(), state.externalMessageToAnyone(),
            state.externalMessage());
    });
    const int result = run.exec();
    context.output().addFacts(run.first().describe());
    return result;
}

/** What the user wants to be otherwise. */
class Wishes
{
public:
    explicit Wishes(QCommandLineParser &parser)
        : mParser(parser)
        , mExternal(QStringLiteral("external"), QString(), QStringLiteral("off|known|all"))
        , mSpan(parser)
        , mMessage(parser, QStringLiteral("message"))
        , mExternalMessage(parser, QStringLiteral("external-message"))
    {
        parser.addOption(mExternal);
    }

    /** Once the parser has parsed; the exit status. */
    int read()
    {
        const bool isRead = mSpan.read() && mMessage.read() && mExternalMessage.read();
        return isRead && isExternalKnown() && completeSpan() ? ExitSuccess : ExitUsage;
    }

    /** Texts and people that no option names stay as they are; times do not. The exit status. */
    int apply(EasOofContainer &state) const
    {
        state.setOofEnabled(true);
        state.setTimeRangeEnabled(mSpan.hasEnd());
        state.setStartTime(mSpan.start());
        state.setEndTime(mSpan.end());
        if (mMessage.text())
            state.setInternalMessage(*mMessage.text());
        applyExternal(state);
        return isComplete(state) ? ExitSuccess : ExitUsage;
    }

private:
    bool isExternalKnown() const
    {
        return !mParser.isSet(mExternal)
            || CommandContext::isOneOf(
                mParser.value(mExternal), externalWords(), QStringLiteral("--external"));
    }

    bool completeSpan()
    {
        if (mSpan.hasStart() && !mSpan.hasEnd()) {
            Output::error(QStringLiteral("--from needs --to"));
            return false;
        }
        if (mSpan.hasEnd() && !mSpan.hasStart())
            mSpan.setStart(QDateTime::currentDateTime());
        return !mSpan.hasEnd() || mSpan.isInOrder();
    }

    void applyExternal(EasOofContainer &state) const
    {
        if (mParser.isSet(mExternal)) {
            const int kind = externalWords().indexOf(mParser.value(mExternal));
            state.setExternalMessageEnabled(kind > 0);
            state.setExternalMessageToAnyone(kind > 1);
        }
        if (mExternalMessage.text())
            state.setExternalMessage(*mExternalMessage.text());
    }

    bool isComplete(const EasOofContainer &state) const
    {
        const auto refuse = [](const QString &error) {
            Output::error(error);
            return false;
        };
        if (state.internalMessage().isEmpty())
            return refuse(QStringLiteral("there is no text yet; --message gives one"));
        if (mExternalMessage.text() && !state.externalMessageEnabled())
            return refuse(QStringLiteral("--external-message needs --external known or --external all"));
        if (state.externalMessageEnabled() && state.externalMessage().isEmpty())
            return refuse(
                QStringLiteral("there is no text for other people yet; --external-message gives one"));
        return true;
    }

    QCommandLineParser &mParser;
    const QCommandLineOption mExternal;
    TimeSpan mSpan;
    TextOption mMessage;
    TextOption mExternalMessage;
};

QString sentenceOf(const EasOofContainer &state)
{
    if (!state.timeRangeEnabled())
        return QStringLiteral("The server answers in your absence from now on.");
    return QStringLiteral("The server answers in your absence from %1 to %2.")
        .arg(TimeText::forPeople(state.startTime()), TimeText::forPeople(state.endTime()));
}

} // namespace

int AwayCommands::show(CommandContext &context)
{
    EasAccountId account = 0;
    const int selected = selectNamedAccount(context, &account);
    if (selected != ExitSuccess)
        return selected;
    EasOofContainer state;
    const int result = readState(context, account, &state);
    if (result == ExitSuccess)
        context.output().object({ { "away", "Away" }, { "from", "From" }, { "to", "To" }, { "text", "Text" },
                                    { "external", "Other people" }, { "externalText", "Text for them" } },
            describe(state));
    return result;
}

int AwayCommands::set(CommandContext &context)
{
    QCommandLineParser parser;
    Wishes wishes(parser);
    if (!context.parse(parser, 0, 0))
        return context.exitStatus();
    EasAccountId account = 0;
    int result = wishes.read();
    if (result == ExitSuccess)
        result = selectAccount(context, &account);
    // The texts that the server has stay, unless there are others.
    EasOofContainer state;
    if (result == ExitSuccess)
        result = readState(context, account, &state);
    if (result == ExitSuccess)
        result = wishes.apply(state);
    if (result == ExitSuccess)
        result = writeState(context, account, state);
    if (result == ExitSuccess)
        context.output().done(sentenceOf(state), describe(state));
    return result;
}

int AwayCommands::off(CommandContext &context)
{
    EasAccountId account = 0;
    int result = selectNamedAccount(context, &account);
    if (result == ExitSuccess)
        result = writeState(context, account, EasOofContainer());
    if (result == ExitSuccess)
        context.output().done(QStringLiteral("The server no longer answers in your absence."),
            { { QStringLiteral("away"), QStringLiteral("off") } });
    return result;
}
