// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/pushstate.h"

#include "client/statustext.h"
#include "client/timetext.h"
#include "common/easrequeststatus.h"

#include <QStringList>

namespace {

struct Answer
{
    int status;
    const char *name;
};

constexpr Answer Answers[] = {
    { EasRequestStatus::RequestStatusCancelled, "cancelled" },
    { 1, "nothing changed" },
    { 2, "changes" },
    { 3, "parameters missing" },
    { 4, "syntax error" },
    { 5, "heartbeat refused" },
    { 6, "too many folders" },
    { 7, "folders changed" },
    { 8, "server error" },
};

struct Step
{
    const char *key;
    const char *name;
};

/** Short enough for a column of a table. */
constexpr Step Steps[] = {
    { "ping", "await changes" },
    { "sync", "sync" },
    { "pause", "ping" },
    { "network", "once online" },
    { "stopped", "try again" },
    { "off", "none" },
};

// What the daemon calls its facts is what the documents call them.
const auto Enabled = QStringLiteral("enabled");
const auto Heartbeat = QStringLiteral("heartbeat");
const auto Folders = QStringLiteral("folders");
const auto LastAnswer = QStringLiteral("lastAnswer");
const auto LastAnswerName = QStringLiteral("lastAnswerName");
const auto LastAnswerAt = QStringLiteral("lastAnswerAt");
const auto NextStep = QStringLiteral("nextStep");
const auto NextStepName = QStringLiteral("nextStepName");
const auto NextStepAt = QStringLiteral("nextStepAt");

QString stepName(const QString &key)
{
    for (const Step &step : Steps) {
        if (key == QLatin1String(step.key))
            return QString::fromLatin1(step.name);
    }
    return key;
}

QString answerName(int status)
{
    for (const Answer &answer : Answers) {
        if (answer.status == status)
            return QString::fromLatin1(answer.name);
    }
    return StatusText::name(status);
}

} // namespace

QJsonObject PushState::describe(const QVariantMap &state)
{
    QJsonObject object { { Enabled, state.value(Enabled).toBool() } };
    for (const QString &number : { Heartbeat, Folders, LastAnswer }) {
        if (state.contains(number))
            object[number] = state.value(number).toInt();
    }
    for (const QString &time : { LastAnswerAt, NextStepAt }) {
        if (state.contains(time))
            object[time] =
                TimeText::forPrograms(QDateTime::fromSecsSinceEpoch(state.value(time).toLongLong()));
    }
    if (state.contains(LastAnswer))
        object[LastAnswerName] = answerName(state.value(LastAnswer).toInt());
    if (state.contains(NextStep)) {
        object[NextStep] = state.value(NextStep).toString();
        object[NextStepName] = stepName(state.value(NextStep).toString());
    }
    return object;
}

QString PushState::sentence(const QVariantMap &state)
{
    const QJsonObject facts = describe(state);
    QStringList parts { facts.value(Enabled).toBool() ? QStringLiteral("on") : QStringLiteral("off") };
    if (facts.contains(Heartbeat))
        parts.append(QStringLiteral("heartbeat %1 s").arg(facts.value(Heartbeat).toInt()));
    if (facts.contains(Folders))
        parts.append(QStringLiteral("folders: %1").arg(facts.value(Folders).toInt()));
    if (facts.contains(LastAnswer))
        parts.append(QStringLiteral("last answer: %1").arg(facts.value(LastAnswerName).toString()));
    if (facts.contains(NextStep))
        parts.append(QStringLiteral("next: %1").arg(facts.value(NextStepName).toString()));
    if (facts.contains(NextStepAt))
        parts.last() += QStringLiteral(" at %1").arg(TimeText::brief(facts.value(NextStepAt).toString()));
    return parts.join(QStringLiteral(", "));
}
