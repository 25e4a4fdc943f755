// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QList>
#include <QObject>

class DaemonRequest;
class RequestRun;

/** What a search of the daemon came to. Made before the request starts, which it teaches what statuses mean
 * for a search; on the stack of a command. */
class SearchAnswer : public QObject
{
    Q_OBJECT

public:
    SearchAnswer(RequestRun &run, const DaemonRequest &request);

    /** Identifiers of messages, or the numbers of people. */
    QList<qulonglong> matches() const { return mMatches; }
    /** Of messages those that come behind the last match, of people all that there are. */
    uint count() const { return mCount; }

private:
    QList<qulonglong> mMatches;
    uint mCount = 0;
};
