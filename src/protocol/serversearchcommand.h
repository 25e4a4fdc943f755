// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/galitem.h"
#include "easitems/easemailitem.h"
#include "protocol/baseprotocolcommand.h"

#include <QList>

class SearchResultsParser;

/**
 * What Search and Find share: one look at a store of the server, the mailbox or the global address list, and
 * the results of the reply.
 *
 * The results hold after a reply with a status of success, and until the next start().
 */
class ServerSearchCommand : public BaseProtocolCommand
{
    Q_OBJECT

public:
    /** Where the server looks. */
    enum Type { Mailbox = 0, AddressList = 1 };

    /** What people are asked for with their pictures: bytes of each, and how many of them. */
    static constexpr int PictureSize = 102400;
    static constexpr int PictureCount = 100;

    using BaseProtocolCommand::BaseProtocolCommand;

    void start() override;

    /** Of messages: each with a long identifier, or with its folder and its identifier there. */
    QList<EasEmailItem> emailItems() const { return mEmailItems; }
    QList<GalItem> galItems() const { return mGalItems; }
    /** What the server says of its store; 0 if it says nothing. */
    int storeStatus() const { return mStoreStatus; }
    /** How many matches there are; as many as there are results if the server does not say. */
    uint totalCount() const { return mTotalCount; }
    /** How many of them come behind the last result. */
    uint remainingCount() const { return mRemainingCount; }

protected:
    /** Takes over what a reply holds, of the results as many as the range from low to high has; false if the
     * body could not be read. `title` begins the line of the log about it. */
    bool readReply(
        SearchResultsParser &parser, const QByteArray &body, int low, int high, const QString &title);

private:
    void takeResults(const SearchResultsParser &parser);

    QList<EasEmailItem> mEmailItems;
    QList<GalItem> mGalItems;
    int mStoreStatus = 0;
    uint mTotalCount = 0;
    uint mRemainingCount = 0;
};
