// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/override.h"

#include <QMutex>
#include <QSet>
#include <QStringList>

#include <deque>
#include <map>

namespace Simulator {

/** Says what is wrong with a request; an empty text when it is as wanted. */
using Matcher = std::function<QString(const RecordedRequest &)>;

/** Ready-made matchers. */
namespace Matchers {

/** The body is this document, given as XML; white space between elements does not count. */
Matcher document(const QString &xml);
/** The first element at the path has that text: `text("Collections/Collection/SyncKey", "0")`. */
Matcher text(const QString &path, const QString &wanted);
Matcher has(const QString &path);
Matcher hasNot(const QString &path);
Matcher header(const QByteArray &name, const QByteArray &wanted);
Matcher queryItem(const QString &name, const QString &wanted);

} // namespace Matchers

/** One line of the dialogue: what the client must send and what comes back. */
struct ScriptStep
{
    QString command;
    QVector<Matcher> matchers;
    Override answer;
};

class Script;

/** Writes one step of a Script; made by ExchangeServer::expect(), used at once and not kept. */
class Expectation
{
public:
    Expectation(Script *script, std::shared_ptr<ScriptStep> step);

    Expectation &withBody(const Matcher &matcher);
    /** The whole body, as XML. */
    Expectation &withBody(const QString &xml);
    Expectation &withText(const QString &path, const QString &wanted);
    Expectation &with(const Matcher &matcher);

    /** The server's own answer from its mailbox, also the default. */
    Expectation &asServer();
    Expectation &reply(const WbxmlNode &document);
    /** A reply as XML, see WbxmlNode::fromXml(). */
    Expectation &reply(const QString &xml);
    Expectation &reply(const Override &answer);
    Expectation &status(int httpStatus, const HttpHeaders &headers = {});
    /** The line drops before the body of the answer, see Override::drop(). */
    Expectation &drop();

private:
    Script *mScript;
    std::shared_ptr<ScriptStep> mStep;
};

/**
 * What tests want of the server: a dialogue to the letter, or single answers changed.
 *
 * While a dialogue was begun with expect(), each request must be its next step; a request that is not, or
 * that comes when no step is left, is answered with HTTP 500 and noted in failures(). Thread-safe.
 */
class Script
{
public:
    Expectation expect(const QString &command);
    /** Requests of these commands go past the dialogue to the server's own answer. */
    void letThrough(const QStringList &commands);
    /** The next @p times requests of the command (of any when it is empty) get @p answer; -1 stands for all.
     */
    void overrideNext(const QString &command, const Override &answer, int times);
    /** Forgets the dialogue, the overrides and the failures. */
    void clear();

    /** The answer to give; takes it out of the script. */
    Override answerTo(const RecordedRequest &request);
    void addFailure(const QString &failure);
    /** What went wrong so far, also the steps that were not reached when @p finished. */
    QStringList failures(bool finished) const;
    int remainingSteps() const;

private:
    friend class Expectation;
    struct Pending
    {
        QString command;
        Override answer;
        int times;
    };

    Override scriptedAnswer(const RecordedRequest &request);

    mutable QMutex mMutex;
    bool mIsDialogue = false;
    std::deque<std::shared_ptr<ScriptStep>> mSteps;
    std::deque<Pending> mOverrides;
    QSet<QString> mLetThrough;
    QStringList mFailures;
};

} // namespace Simulator
