// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/policyanswer.h"

#include "client/daemonrequest.h"
#include "client/exitstatus.h"
#include "client/output.h"
#include "client/policytable.h"
#include "client/statustext.h"
#include "common/easrequeststatus.h"

namespace {

struct Outcome
{
    int policyStatus;
    const char *name;
    const char *sentence;
};

constexpr Outcome Outcomes[] = {
    { 1, "no policy", "The server has no policy for account %1." },
    { 3, "accepted", "The server has accepted account %1 under its policy." },
    { 4, "accepted without a key",
        "The server has taken the answer of account %1, but has given no key; the one from before stays." },
};

/** A request that failed tells the status of the server's answer, which has other numbers. */
const Outcome *find(int status, int policyStatus)
{
    if (status != EasRequestStatus::RequestStatusSuccess)
        return nullptr;
    for (const Outcome &outcome : Outcomes) {
        if (outcome.policyStatus == policyStatus)
            return &outcome;
    }
    return nullptr;
}

struct VerdictText
{
    PolicyTable::Verdict verdict;
    const char *key;
    const char *sentence;
};

constexpr VerdictText Verdicts[] = {
    { PolicyTable::Verdict::Met, "met", "The device meets all of it." },
    { PolicyTable::Verdict::PartlyMet, "partlyMet",
        "The device does not meet all of it, which the server was told." },
    { PolicyTable::Verdict::CriticalFailed, "failed",
        "The device fails what the policy demands of its lock, which the server was told." },
};

/** A line for each piece of advice, with the policies that it is for; tables would cut it off. */
QString whatHelps(const QJsonArray &policies)
{
    QStringList advice;
    QMap<QString, QStringList> meant;
    for (const QJsonValue &value : policies) {
        const QJsonObject policy = value.toObject();
        const QString help = policy.value(QStringLiteral("help")).toString();
        if (help.isEmpty())
            continue;
        if (!meant.contains(help))
            advice.append(help);
        meant[help].append(policy.value(QStringLiteral("policy")).toString());
    }
    QString text;
    for (const QString &help : qAsConst(advice))
        text +=
            QStringLiteral("\nNot met: %1\n  %2\n").arg(meant.value(help).join(QStringLiteral(", ")), help);
    return text;
}

const VerdictText &textOf(const FailedPolicyMap &failed)
{
    return Verdicts[int(PolicyTable::verdictOf(failed))];
}

} // namespace

PolicyAnswer::PolicyAnswer(const DaemonRequest &request)
    : mRequest(request)
{
    connect(&request, &DaemonRequest::policyReceived, this,
        [this](const QVariantMap &document) { mDocument = document; });
    connect(&request, &DaemonRequest::policyJudged, this,
        [this](const FailedPolicyMap &failed, int policyStatus) {
            mFailed = failed;
            mPolicyStatus = policyStatus;
        });
}

QString PolicyAnswer::outcomeName(int status, int policyStatus)
{
    const Outcome *const outcome = find(status, policyStatus);
    return outcome ? QString::fromLatin1(outcome->name) : QStringLiteral("not accepted");
}

bool PolicyAnswer::hasPolicy() const
{
    return !mDocument.isEmpty() || !mFailed.isEmpty();
}

QString PolicyAnswer::sentence() const
{
    QStringList sentences;
    const Outcome *const outcome = find(mRequest.status(), mPolicyStatus.value_or(0));
    // What a request failed of was told as an error.
    if (mRequest.exitStatus() == ExitSuccess)
        sentences.append(outcome
                ? QString::fromLatin1(outcome->sentence).arg(mRequest.accountId())
                : QStringLiteral("The server has not accepted account %1 under its policy [%2].")
                      .arg(mRequest.accountId())
                      .arg(StatusText::name(mPolicyStatus.value_or(0))));
    if (hasPolicy())
        sentences.append(QString::fromLatin1(textOf(mFailed).sentence));
    return sentences.join(QLatin1Char(' '));
}

QJsonObject PolicyAnswer::facts() const
{
    QJsonObject facts = mRequest.describe();
    facts[QStringLiteral("id")] = QString::number(mRequest.accountId());
    if (mPolicyStatus) {
        facts[QStringLiteral("policyStatus")] = *mPolicyStatus;
        facts[QStringLiteral("policyStatusName")] = outcomeName(mRequest.status(), *mPolicyStatus);
    }
    if (hasPolicy())
        facts[QStringLiteral("verdict")] = QLatin1String(textOf(mFailed).key);
    facts[QStringLiteral("policies")] = PolicyTable::describe(mDocument, mFailed);
    return facts;
}

void PolicyAnswer::print(Output &output) const
{
    const QJsonArray policies = PolicyTable::describe(mDocument, mFailed);
    if (!output.isJson() && hasPolicy()) {
        output.rows({ { "policy", "POLICY" }, { "demands", "DEMANDS" }, { "met", "MET" } }, policies);
        output.message(whatHelps(policies));
    }
    const QString text = sentence();
    if (text.isEmpty())
        output.addFacts(facts());
    else
        output.done(text, facts());
}
