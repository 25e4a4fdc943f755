// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"
#include "protocol/elements/searchoptions.h"
#include "protocol/elements/searchquery.h"
#include "protocol/findcommand.h"

#include <QString>

/**
 * What clients ask a search for, in the terms of the server. Operations that can refuse a call return the
 * status that it ends with: 0 if it is sound, RequestStatusBadRequest for arguments that say nothing or name
 * nothing, RequestStatusInternalError if the mapping could not be read. Main thread only.
 */
namespace SearchAssembly {

/** What a client says of the messages that it looks for; empty texts say nothing. */
struct MailSearch
{
    /** Of the device; empty for the whole mailbox. */
    QString folderId;
    /** ISO 8601, local without a zone. */
    QString dateFrom;
    QString dateTo;
    QString bodyText;
    qulonglong limit = 0;
};

int mailQuery(EasAccountId accountId, const MailSearch &search, SearchQuery *query);
/** The form of the results: a short text or the MIME of each message. */
SearchOptions mailOptions(qulonglong limit);

/** What people are looked for by must not be empty. */
int acceptPeople(const QString &text);
/** People with their pictures. */
SearchOptions directoryOptions(int rangeMin, int rangeMax, bool rebuildResults, bool deepTraversal);

/** `searchType` is 0 for messages, in a folder of the device if it is not empty, and 1 for people. */
int findQuery(EasAccountId accountId, const QString &folderId, const QString &text, int searchType,
    qulonglong limit, FindCommand::Query *query);
FindCommand::Options findOptions(const FindCommand::Query &query, qulonglong limit);

} // namespace SearchAssembly
