// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/galitem.h"
#include "easitems/algorithms/emailappdataparser.h"
#include "easitems/algorithms/galappdataparser.h"
#include "easitems/easemailitem.h"
#include "protocol/base/eas.h"
#include "protocol/wbxml/wbxmlparserbase.h"
#include "protocol/wbxml/wbxmltokens.h"

#include <QList>

/**
 * What the replies of Search and Find have in common: two statuses, the range and the total number of the
 * matches, and a list of results, each a message or an entry of the address list.
 *
 * It is ready only behind the end of the root: an empty reply is no answer. What comes beyond the number of
 * results that was asked for is read over; a reply that goes on far beyond all that may be asked for is
 * refused. Results without anything in them are left out.
 */
class SearchResultsParser : public WbxmlParserBase
{
    Q_OBJECT

public:
    /** A reply with more results is refused. */
    static constexpr int MostResults = 10000;

    ~SearchResultsParser() override;

    bool ready() const override;
    void parse(const QByteArray &data) override;

    /** How many results are kept; MostResults at first. */
    void setWantedResults(int count) { mWantedResults = count; }

    /** Of the command: an Eas::SearchStatus or a status of all commands. Success if the reply only has one of
     * its results. */
    int status() const;
    /** Of the results; 0 if the reply has none. */
    int storeStatus() const { return mStoreStatus; }
    /** The matches that the results are, counted from 0; both -1 if the reply does not say. */
    int lowRange() const { return mLowRange; }
    int highRange() const { return mHighRange; }
    /** How many matches there are, or -1 if the reply does not say. */
    int total() const { return mTotal; }
    /** How many matches there are beyond the last one that is kept; 0 if the reply does not say. */
    int remaining() const;

    QList<EasEmailItem> emailItems() const { return mEmailItems; }
    QList<GalItem> galItems() const { return mGalItems; }

    void onStartElement(uint codePage, uint token) override;
    void onEndElement(uint codePage, uint token) override;
    void onContent(uint codePage, uint token, const QString &text, const QByteArray &raw) override;

protected:
    /** The elements that the two replies name differently. */
    struct Tags
    {
        Wbxml::Token root;
        Wbxml::Token status;
        Wbxml::Token result;
        Wbxml::Token properties;
        Wbxml::Token range;
        Wbxml::Token total;
    };

    SearchResultsParser(const Tags &tags, QObject *parent);

    /** A text beside the properties of a result; false if it is unknown. */
    virtual bool takeIdentifier(uint key, const QString &text, EasEmailItem &identifiers) = 0;
    /** A text among the properties that no item knows; false if it is unknown here as well. */
    virtual bool takeProperty(uint key, const QString &text);
    /** Gives a message what takeProperty() has kept. */
    virtual void completeItem(EasEmailItem &) {}
    virtual void beginResult() {}

private:
    void reset();
    bool isInResult() const { return mPlace != Place::Reply; }
    void endResult();
    void keepMessage();
    void takeStatus(const QString &text);
    void takeRange(const QString &text);
    void takeResultText(uint codePage, uint token, const QString &text);
    AppDataParserBase *parserOf(uint codePage);

    enum class Place { Reply, Result, Properties };

    const Tags mTags;
    int mWantedResults = MostResults;
    Place mPlace = Place::Reply;
    bool mFinished = false;
    bool mHasStatus = false;
    int mStatus = Eas::SearchStatusUndefined;
    int mStoreStatus = 0;
    int mLowRange = -1;
    int mHighRange = -1;
    int mTotal = -1;
    int mResults = 0;
    int mLeftOut = 0;
    /** What stands beside the properties of the result that is being read. */
    EasEmailItem mIdentifiers;
    QString mClass;
    EmailAppDataParser mEmailParser;
    GalAppDataParser mGalParser;
    QList<EasEmailItem> mEmailItems;
    QList<GalItem> mGalItems;
};
