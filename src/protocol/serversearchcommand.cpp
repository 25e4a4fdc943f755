// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/serversearchcommand.h"

#include "application/base/logging.h"
#include "easitems/algorithms/searchresultsparser.h"

#include <algorithm>

namespace {

int sizeOfRange(int low, int high)
{
    constexpr int Most = SearchResultsParser::MostResults;
    return low < 0 || high < low ? Most : std::min(Most - 1, high - low) + 1;
}

} // namespace

void ServerSearchCommand::start()
{
    if (isRunning()) {
        qCWarning(eas()) << "Cannot begin, probably already in progress";
        return;
    }
    BaseProtocolCommand::start();
}

bool ServerSearchCommand::readReply(
    SearchResultsParser &parser, const QByteArray &body, int low, int high, const QString &title)
{
    parser.setWantedResults(sizeOfRange(low, high));
    parser.parse(body);
    if (!parser.ready()) {
        qCWarning(eas()) << "Failed to parse" << commandName() << "command response";
        return false;
    }
    setStatus(parser.status());
    takeResults(parser);
    qCDebug(eas()).noquote() << title << "Status:" << status() << "Store status:" << mStoreStatus
                             << "Range:" << parser.lowRange() << "-" << parser.highRange()
                             << "Total:" << parser.total() << "Result emails count:" << mEmailItems.size()
                             << "Result GAL items count:" << mGalItems.size();
    return true;
}

void ServerSearchCommand::takeResults(const SearchResultsParser &parser)
{
    mEmailItems = parser.emailItems();
    mGalItems = parser.galItems();
    mStoreStatus = parser.storeStatus();
    mTotalCount = uint(parser.total() < 0 ? mEmailItems.size() + mGalItems.size() : parser.total());
    mRemainingCount = uint(parser.remaining());
}
