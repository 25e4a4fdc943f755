// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/pushcommands.h"

#include "client/accountdirectory.h"
#include "client/commandcontext.h"
#include "client/daemonproxy.h"
#include "client/pushstate.h"
#include "client/scheduler.h"
#include "client/timetext.h"

#include <QCommandLineParser>
#include <QDBusPendingReply>

namespace {

const auto Rows = QStringLiteral("accounts");

int selectAccounts(CommandContext &context, QList<EasAccountId> *ids)
{
    QCommandLineParser parser;
    if (!context.parse(parser, 0, 1))
        return context.exitStatus();
    context.nameAccount(parser.positionalArguments().value(0));
    return context.selectAccounts(ids);
}

/** What the daemon tells; it is started if need be. The exit status. */
int readState(EasAccountId account, QVariantMap *state)
{
    QDBusPendingReply<QVariantMap> reply = DaemonProxy::create()->pushState(account);
    reply.waitForFinished();
    if (reply.isError())
        return DaemonProxy::unreachable(reply.error());
    *state = reply.value();
    return ExitSuccess;
}

/** Moments as people read them; steps of push take seconds, so days alone say nothing. */
QJsonArray readable(const QJsonArray &rows)
{
    QJsonArray shown;
    for (const QJsonValue &value : rows) {
        QJsonObject row = value.toObject();
        for (const char *key : { "lastAnswerAt", "nextStepAt" }) {
            const auto time = row.find(QLatin1String(key));
            if (time != row.end())
                *time = TimeText::brief(time->toString());
        }
        shown.append(row);
    }
    return shown;
}

int switchPush(CommandContext &context, const QList<EasAccountId> &ids, bool isOn)
{
    QJsonArray rows;
    QStringList sentences;
    for (const EasAccountId id : ids) {
        const int switched = Scheduler::setPush(id, isOn);
        if (switched != ExitSuccess)
            return switched;
        rows.append(QJsonObject {
            { QStringLiteral("id"), QString::number(id) }, { QStringLiteral("enabled"), isOn } });
        sentences.append(QStringLiteral("push of account %1 is %2")
                             .arg(id)
                             .arg(isOn ? QStringLiteral("on") : QStringLiteral("off")));
    }
    context.output().done(sentences.join(QLatin1Char('\n')), { { Rows, rows } });
    return ExitSuccess;
}

} // namespace

int PushCommands::on(CommandContext &context)
{
    QList<EasAccountId> ids;
    const int selected = selectAccounts(context, &ids);
    if (selected != ExitSuccess)
        return selected;
    const int enabled = context.requireEnabled(ids);
    if (enabled != ExitSuccess)
        return enabled;
    const int switched = switchPush(context, ids, true);
    if (switched != ExitSuccess)
        return switched;
    // The scheduler only keeps the switch; a daemon that does not run has to be started for its work.
    QVariantMap state;
    return readState(ids.first(), &state);
}

int PushCommands::off(CommandContext &context)
{
    QList<EasAccountId> ids;
    const int selected = selectAccounts(context, &ids);
    return selected == ExitSuccess ? switchPush(context, ids, false) : selected;
}

int PushCommands::status(CommandContext &context)
{
    QList<EasAccountId> ids;
    const int selected = selectAccounts(context, &ids);
    if (selected != ExitSuccess)
        return selected;
    const bool isRunning = DaemonProxy::isDaemonRunning();
    QJsonArray rows;
    for (const EasAccountId id : qAsConst(ids)) {
        QJsonObject row;
        if (isRunning) {
            QVariantMap state;
            const int read = readState(id, &state);
            if (read != ExitSuccess)
                return read;
            row = PushState::describe(state);
        }
        const QJsonObject account = context.accounts().describe(id);
        for (const char *key : { "id", "name" })
            row[QLatin1String(key)] = account.value(QLatin1String(key));
        rows.append(row);
    }
    if (context.output().isJson()) {
        context.output().object({}, { { Rows, rows }, { QStringLiteral("daemonRuns"), isRunning } });
        return ExitSuccess;
    }
    // Narrow enough for an ordinary terminal, so without the accounts' names.
    context.output().rows(
        { { "id", "ID" }, { "enabled", "PUSH" }, { "heartbeat", "BEAT" }, { "folders", "FOLDERS" },
            { "lastAnswerName", "LAST ANSWER" }, { "lastAnswerAt", "AT" }, { "nextStepName", "NEXT STEP" },
            { "nextStepAt", "DUE" } },
        readable(rows));
    if (!isRunning)
        context.output().message(QStringLiteral(
            "The daemon does not run, so nothing is pushed; fennel-easctl push on starts it."));
    return ExitSuccess;
}
