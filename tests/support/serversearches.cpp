// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/serversearches.h"

#include "application/requestmanager.h"
#include "support/waiting.h"

namespace {

constexpr int Patience = 180000;
constexpr int EndedTwice = -1001;

/** Identifiers beside those of a test bed's own calls. */
qulonglong nextId()
{
    static qulonglong last = 500000;
    return ++last;
}

} // namespace

ServerSearches::ServerSearches(EasAccountId accountId)
    : mAccountId(accountId)
{
    RequestManager *const manager = RequestManager::instance();
    const auto onEnded = [this](EasAccountId, qulonglong requestId, int status, uint count,
                             const QList<qulonglong> &ids) {
        onEnd(requestId, status, count, ids);
    };
    connect(manager, &RequestManager::searchMessagesFinished, this, onEnded);
    connect(manager, &RequestManager::searchGALFinished, this, onEnded);
    connect(manager, &RequestManager::findMessagesFinished, this, onEnded);
    connect(manager, &RequestManager::galItemReceived, this,
        [this](qulonglong, qulonglong requestId, qulonglong, const GalItem &item) {
            mResults[requestId].people.append(item);
        });
}

void ServerSearches::onEnd(qulonglong requestId, int status, uint count, const QList<qulonglong> &ids)
{
    Result &result = mResults[requestId];
    result.status = mEnds[requestId]++ == 0 ? status : EndedTwice;
    result.count = count;
    result.ids = ids;
}

ServerSearches::Result ServerSearches::waitFor(qulonglong requestId)
{
    Waiting::until([&] { return mEnds.contains(requestId); }, Patience);
    return mResults.value(requestId);
}

qulonglong ServerSearches::startMail(EasAccountId accountId, const Mail &search)
{
    const qulonglong id = nextId();
    RequestManager::instance()->onSearchMessagesRequest(
        accountId, search.folderId, search.from, search.to, search.text, search.limit, id);
    return id;
}

qulonglong ServerSearches::startPeople(EasAccountId accountId, const QString &text, int most)
{
    const qulonglong id = nextId();
    RequestManager::instance()->onSearchGALRequest(accountId, text, 0, most - 1, false, false, id);
    return id;
}

qulonglong ServerSearches::startFind(
    EasAccountId accountId, const QString &text, const QString &folderId, int kind, qulonglong limit)
{
    const qulonglong id = nextId();
    RequestManager::instance()->onFindRequest(accountId, folderId, text, kind, limit, id);
    return id;
}

ServerSearches::Result ServerSearches::mail(const Mail &search)
{
    return waitFor(startMail(mAccountId, search));
}

ServerSearches::Result ServerSearches::people(const QString &text, int most)
{
    return waitFor(startPeople(mAccountId, text, most));
}

ServerSearches::Result ServerSearches::find(const QString &text, const QString &folderId, qulonglong limit)
{
    return waitFor(startFind(mAccountId, text, folderId, 0, limit));
}

ServerSearches::Result ServerSearches::findPeople(const QString &text)
{
    return waitFor(startFind(mAccountId, text, {}, 1));
}
