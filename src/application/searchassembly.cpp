// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/searchassembly.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "common/easrequeststatus.h"
#include "protocol/base/protocoltime.h"
#include "protocol/base/protocolutils.h"
#include "protocol/elements/airsyncbasepreference.h"
#include "protocol/wbxml/wbxmltokens.h"

#include <algorithm>
#include <limits>

namespace {

/** Bytes of the text that comes with a message that was found. */
constexpr int PreviewSize = 255;

constexpr int Sound = EasRequestStatus::RequestStatusSuccess;
constexpr int BadRequest = EasRequestStatus::RequestStatusBadRequest;

int refuse(const char *reason, const QString &argument = {})
{
    qCWarning(eas()) << reason << argument;
    return BadRequest;
}

int acceptLimit(qulonglong limit)
{
    return limit > 0 ? Sound : refuse("A search with the limit 0");
}

int highestIndex(qulonglong limit)
{
    return int(std::min<qulonglong>(limit, std::numeric_limits<int>::max()));
}

/** The folder's identifier on the server; an empty text stays one. */
int translateFolder(EasAccountId accountId, const QString &localId, QString *serverId)
{
    serverId->clear();
    if (localId.isEmpty())
        return Sound;
    const Lookup<EasFolderItem> folder = EasDatabase::instance()->folderItemByLocalId(accountId, localId);
    if (!folder)
        return EasRequestStatus::RequestStatusInternalError;
    *serverId = folder->serverId();
    return serverId->isEmpty() ? refuse("failed to find folder id by local id", localId) : Sound;
}

int translateTime(const QString &text, QString *time)
{
    time->clear();
    if (text.isEmpty())
        return Sound;
    *time = ProtocolTime::toWire(ProtocolTime::fromClient(text));
    return time->isEmpty() ? refuse("Not a time:", text) : Sound;
}

QSharedPointer<AirSyncBasePreference> preference(EasBodyContainer::BodyType type)
{
    const auto made = QSharedPointer<AirSyncBasePreference>::create(Wbxml::AirSyncBase::BodyPreference.token);
    made->setType(type);
    return made;
}

} // namespace

int SearchAssembly::acceptPeople(const QString &text)
{
    return text.isEmpty() ? refuse("A directory search without a text") : Sound;
}

int SearchAssembly::mailQuery(EasAccountId accountId, const MailSearch &search, SearchQuery *query)
{
    QString folder;
    QString from;
    QString to;
    for (const int status : { acceptLimit(search.limit), translateTime(search.dateFrom, &from),
             translateTime(search.dateTo, &to), translateFolder(accountId, search.folderId, &folder) }) {
        if (status != Sound)
            return status;
    }
    query->setFreeText(search.bodyText);
    query->appendClass(ProtocolUtils::ClassEmail);
    if (!folder.isEmpty())
        query->appendCollectionId(folder);
    query->setGreaterThan(from);
    query->setLessThan(to);
    return Sound;
}

SearchOptions SearchAssembly::mailOptions(qulonglong limit)
{
    SearchOptions options;
    options.setDeepTraversal(true);
    options.setLowIndexRange(0);
    options.setHighIndexRange(highestIndex(limit));
    options.setMimeSupport(SearchOptions::MimeForSecureMessages);
    const auto text = preference(EasBodyContainer::PlainTextBodyType);
    text->setTruncationSize(PreviewSize);
    options.appendBodyPreference(text);
    options.appendBodyPreference(preference(EasBodyContainer::MIMEBodyType));
    return options;
}

SearchOptions SearchAssembly::directoryOptions(
    int rangeMin, int rangeMax, bool rebuildResults, bool deepTraversal)
{
    SearchOptions options;
    options.setDeepTraversal(deepTraversal);
    options.setRebuildResults(rebuildResults);
    options.setLowIndexRange(rangeMin);
    options.setHighIndexRange(rangeMax);
    options.setMaxSizePicture(ServerSearchCommand::PictureSize);
    options.setMaxPicture(ServerSearchCommand::PictureCount);
    return options;
}

int SearchAssembly::findQuery(EasAccountId accountId, const QString &folderId, const QString &text,
    int searchType, qulonglong limit, FindCommand::Query *query)
{
    if (searchType != FindCommand::Mailbox && searchType != FindCommand::AddressList)
        return refuse("Unknown kind of search:", QString::number(searchType));
    query->kind = FindCommand::Type(searchType);
    query->freeText = text;
    const int limitStatus = acceptLimit(limit);
    if (limitStatus != Sound)
        return limitStatus;
    if (query->kind == FindCommand::AddressList)
        return acceptPeople(text);
    return translateFolder(accountId, folderId, &query->collectionId);
}

FindCommand::Options SearchAssembly::findOptions(const FindCommand::Query &query, qulonglong limit)
{
    FindCommand::Options options;
    options.lowRange = 0;
    options.highRange = highestIndex(limit);
    options.deepTraversal = true;
    if (query.kind == FindCommand::AddressList) {
        options.maxSize = ServerSearchCommand::PictureSize;
        options.maxPictures = ServerSearchCommand::PictureCount;
    }
    return options;
}
