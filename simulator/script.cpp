// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/script.h"

#include <algorithm>

namespace Simulator {
namespace {

QString mismatch(const QString &what, const QString &wanted, const QString &found)
{
    return QStringLiteral("%1: wanted \"%2\", got \"%3\"").arg(what, wanted, found);
}

} // namespace

Matcher Matchers::document(const QString &xml)
{
    QString error;
    const WbxmlNode wanted = WbxmlNode::fromXml(xml, &error);
    Q_ASSERT_X(error.isEmpty(), "Matchers::document", qPrintable(error));
    return [wanted](const RecordedRequest &request) {
        return request.document == wanted
            ? QString()
            : QStringLiteral("wanted\n%1\ngot\n%2").arg(wanted.toXml(), request.document.toXml());
    };
}

Matcher Matchers::text(const QString &path, const QString &wanted)
{
    return [path, wanted](const RecordedRequest &request) {
        const QString found = request.document.text(path);
        return request.document.has(path) && found == wanted ? QString() : mismatch(path, wanted, found);
    };
}

Matcher Matchers::has(const QString &path)
{
    return [path](const RecordedRequest &request) {
        return request.document.has(path) ? QString() : QStringLiteral("%1 is missing").arg(path);
    };
}

Matcher Matchers::hasNot(const QString &path)
{
    return [path](const RecordedRequest &request) {
        return request.document.has(path) ? QStringLiteral("%1 should not be there").arg(path) : QString();
    };
}

Matcher Matchers::header(const QByteArray &name, const QByteArray &wanted)
{
    return [name, wanted](const RecordedRequest &request) {
        const QByteArray found = request.header(name);
        return found == wanted
            ? QString()
            : mismatch(QString::fromLatin1(name), QString::fromLatin1(wanted), QString::fromLatin1(found));
    };
}

Matcher Matchers::queryItem(const QString &name, const QString &wanted)
{
    return [name, wanted](const RecordedRequest &request) {
        const QString found = request.queryItem(name);
        return found == wanted ? QString() : mismatch(name, wanted, found);
    };
}

Expectation::Expectation(Script *script, std::shared_ptr<ScriptStep> step)
    : mScript(script)
    , mStep(std::move(step))
{
}

Expectation &Expectation::withBody(const Matcher &matcher)
{
    return with(matcher);
}

Expectation &Expectation::withBody(const QString &xml)
{
    return with(Matchers::document(xml));
}

Expectation &Expectation::withText(const QString &path, const QString &wanted)
{
    return with(Matchers::text(path, wanted));
}

Expectation &Expectation::with(const Matcher &matcher)
{
    const QMutexLocker lock(&mScript->mMutex);
    mStep->matchers.append(matcher);
    return *this;
}

Expectation &Expectation::asServer()
{
    return reply(Override());
}

Expectation &Expectation::reply(const WbxmlNode &document)
{
    return reply(Override::document(document));
}

Expectation &Expectation::reply(const QString &xml)
{
    return reply(Override::xml(xml));
}

Expectation &Expectation::reply(const Override &answer)
{
    const QMutexLocker lock(&mScript->mMutex);
    mStep->answer = answer;
    return *this;
}

Expectation &Expectation::status(int httpStatus, const HttpHeaders &headers)
{
    return reply(Override::httpStatus(httpStatus, headers));
}

Expectation &Expectation::drop()
{
    return reply(Override::drop());
}

Expectation Script::expect(const QString &command)
{
    const QMutexLocker lock(&mMutex);
    mIsDialogue = true;
    mSteps.push_back(std::make_shared<ScriptStep>());
    mSteps.back()->command = command;
    return Expectation(this, mSteps.back());
}

void Script::letThrough(const QStringList &commands)
{
    const QMutexLocker lock(&mMutex);
    for (const QString &command : commands)
        mLetThrough.insert(command);
}

void Script::overrideNext(const QString &command, const Override &answer, int times)
{
    const QMutexLocker lock(&mMutex);
    mOverrides.push_back({ command, answer, times });
}

void Script::clear()
{
    const QMutexLocker lock(&mMutex);
    mIsDialogue = false;
    mSteps.clear();
    mOverrides.clear();
    mLetThrough.clear();
    mFailures.clear();
}

Override Script::answerTo(const RecordedRequest &request)
{
    const QMutexLocker lock(&mMutex);
    if (mIsDialogue && !mLetThrough.contains(request.command))
        return scriptedAnswer(request);
    const auto found = std::find_if(mOverrides.begin(), mOverrides.end(), [&request](const Pending &pending) {
        return pending.command.isEmpty() || pending.command == request.command;
    });
    if (found == mOverrides.end())
        return Override();
    const Override answer = found->answer;
    if (found->times > 0 && --found->times == 0)
        mOverrides.erase(found);
    return answer;
}

Override Script::scriptedAnswer(const RecordedRequest &request)
{
    const QString name = QStringLiteral("request %1 (%2)").arg(request.number).arg(request.command);
    if (mSteps.empty()) {
        mFailures.append(QStringLiteral("%1: one request more than the script holds").arg(name));
        return Override::httpStatus(500);
    }
    const std::shared_ptr<ScriptStep> step = mSteps.front();
    mSteps.pop_front();
    QStringList complaints;
    if (step->command != request.command)
        complaints.append(mismatch(QStringLiteral("command"), step->command, request.command));
    for (const Matcher &matcher : qAsConst(step->matchers)) {
        const QString complaint = complaints.isEmpty() ? matcher(request) : QString();
        if (!complaint.isEmpty())
            complaints.append(complaint);
    }
    if (complaints.isEmpty())
        return step->answer;
    mFailures.append(name + QStringLiteral(": ") + complaints.join(QStringLiteral("; ")));
    return Override::httpStatus(500);
}

void Script::addFailure(const QString &failure)
{
    const QMutexLocker lock(&mMutex);
    mFailures.append(failure);
}

QStringList Script::failures(bool finished) const
{
    const QMutexLocker lock(&mMutex);
    QStringList result = mFailures;
    if (finished) {
        for (const auto &step : mSteps)
            result.append(QStringLiteral("the client never sent %1").arg(step->command));
    }
    return result;
}

int Script::remainingSteps() const
{
    const QMutexLocker lock(&mMutex);
    return int(mSteps.size());
}

} // namespace Simulator
