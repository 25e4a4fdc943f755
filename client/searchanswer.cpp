// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/searchanswer.h"

#include "client/requestrun.h"
#include "common/easrequeststatus.h"

SearchAnswer::SearchAnswer(RequestRun &run, const DaemonRequest &request)
{
    run.setExplanation(EasRequestStatus::RequestStatusCommandNotSupported,
        QStringLiteral("The server does not offer this kind of search."));
    run.setExplanation(EasRequestStatus::RequestStatusInternalError,
        QStringLiteral("The server did not carry out the search. The daemon's log tells more "
                       "(fennel-easctl log info)."));
    connect(&request, &DaemonRequest::matchesReceived, this,
        [this](const QList<qulonglong> &matches, uint count) {
            mMatches = matches;
            mCount = count;
        });
}
