// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/searchresultsparser.h"

#include "application/base/logging.h"

#include <algorithm>
#include <limits>

using namespace Wbxml;

namespace {

/** A count or an index, at most what fits; -1 for anything else. */
int countOf(const QString &text)
{
    bool isNumber = false;
    const qlonglong number = text.trimmed().toLongLong(&isNumber);
    if (!isNumber || number < 0)
        return -1;
    return int(std::min<qlonglong>(number, std::numeric_limits<int>::max()));
}

} // namespace

SearchResultsParser::SearchResultsParser(const Tags &tags, QObject *parent)
    : WbxmlParserBase(parent)
    , mTags(tags)
{
}

SearchResultsParser::~SearchResultsParser() = default;

bool SearchResultsParser::ready() const
{
    return WbxmlParserBase::ready() && mFinished;
}

void SearchResultsParser::parse(const QByteArray &data)
{
    reset();
    WbxmlParserBase::parse(data);
}

void SearchResultsParser::reset()
{
    mPlace = Place::Reply;
    mFinished = false;
    mHasStatus = false;
    mStatus = Eas::SearchStatusUndefined;
    mStoreStatus = 0;
    mLowRange = -1;
    mHighRange = -1;
    mTotal = -1;
    mResults = 0;
    mLeftOut = 0;
    mEmailParser.beginReply();
    mGalParser.beginReply();
    mEmailItems.clear();
    mGalItems.clear();
}

int SearchResultsParser::status() const
{
    return !mHasStatus && mStoreStatus != 0 ? int(Eas::SearchStatusSuccess) : mStatus;
}

int SearchResultsParser::remaining() const
{
    const int kept = mEmailItems.size() + mGalItems.size();
    const bool saysRange = mHighRange >= 0 && mLeftOut == 0;
    const qlonglong reached =
        saysRange ? qlonglong(mHighRange) + 1 : qlonglong(std::max(mLowRange, 0)) + kept;
    return int(std::max<qlonglong>(0, mTotal - reached));
}

bool SearchResultsParser::takeProperty(uint, const QString &)
{
    return false;
}

AppDataParserBase *SearchResultsParser::parserOf(uint codePage)
{
    if (mPlace != Place::Properties || codePage == mTags.root.page)
        return nullptr;
    return codePage == GAL::DisplayName.page ? static_cast<AppDataParserBase *>(&mGalParser) : &mEmailParser;
}

void SearchResultsParser::onStartElement(uint codePage, uint token)
{
    WbxmlParserBase::onStartElement(codePage, token);
    const uint tag = key(codePage, token);
    if (tag == mTags.result && mPlace == Place::Reply) {
        mPlace = Place::Result;
        mIdentifiers.clear();
        mClass.clear();
        mEmailParser.reset();
        mGalParser.reset();
        beginResult();
    } else if (tag == mTags.properties && mPlace == Place::Result) {
        mPlace = Place::Properties;
    } else if (AppDataParserBase *const parser = parserOf(codePage)) {
        parser->onStartElement(codePage, token);
    }
}

void SearchResultsParser::onEndElement(uint codePage, uint token)
{
    const uint tag = key(codePage, token);
    if (tag == mTags.root) {
        mFinished = true;
    } else if (tag == mTags.result && isInResult()) {
        endResult();
        mPlace = Place::Reply;
    } else if (tag == mTags.properties && mPlace == Place::Properties) {
        mPlace = Place::Result;
    } else if (AppDataParserBase *const parser = parserOf(codePage)) {
        parser->onEndElement(codePage, token);
    }
    WbxmlParserBase::onEndElement(codePage, token);
}

void SearchResultsParser::endResult()
{
    if (++mResults > MostResults)
        return refuse("too many results");
    const bool isPerson = !mGalParser.isEmpty();
    const bool isMessage = !mIdentifiers.serverId().isEmpty() || !mIdentifiers.longId().isEmpty();
    if (!isPerson && !isMessage)
        return;
    if (mEmailItems.size() + mGalItems.size() >= mWantedResults) {
        if (mLeftOut++ == 0)
            qCWarning(eas()) << "more results than were asked for, keeping" << mWantedResults;
        return;
    }
    if (isPerson)
        mGalItems.append(mGalParser.item());
    else
        keepMessage();
}

void SearchResultsParser::keepMessage()
{
    static const QStringList messageClasses { QString(), QStringLiteral("Email"), QStringLiteral("SMS") };
    if (!messageClasses.contains(mClass)) {
        qCWarning(eas()) << "result of class" << mClass << "is no message";
        return;
    }
    EasEmailItem item = mEmailParser.mailItem();
    item.setServerId(mIdentifiers.serverId());
    item.setLongId(mIdentifiers.longId());
    item.setCollectionId(mIdentifiers.collectionId());
    completeItem(item);
    mEmailItems.append(item);
}

void SearchResultsParser::onContent(uint codePage, uint token, const QString &text, const QByteArray &raw)
{
    if (AppDataParserBase *const parser = parserOf(codePage))
        return parser->onContent(codePage, token, text, raw);
    if (isInResult())
        return takeResultText(codePage, token, text);
    const uint tag = key(codePage, token);
    if (tag == mTags.status)
        takeStatus(text);
    else if (tag == mTags.range)
        takeRange(text);
    else if (tag == mTags.total)
        mTotal = countOf(text);
    else if (!text.trimmed().isEmpty() && isFirst("content", codePage, token))
        qCWarning(eas()) << "Unexpected content: " << text << ", codePage: " << codePage
                         << ", token: " << token;
}

void SearchResultsParser::takeResultText(uint codePage, uint token, const QString &text)
{
    const uint tag = key(codePage, token);
    bool isKnown = true;
    if (mPlace == Place::Properties)
        isKnown = takeProperty(tag, text);
    else if (tag == AirSync::Class)
        mClass = text;
    else if (tag == AirSync::CollectionId)
        mIdentifiers.setCollectionId(text);
    else
        isKnown = takeIdentifier(tag, text, mIdentifiers);
    if (!isKnown && isFirst("content", codePage, token))
        qCWarning(eas()) << "Unexpected content: " << text << ", codePage: " << codePage
                         << ", token: " << token;
}

void SearchResultsParser::takeStatus(const QString &text)
{
    // Directly below the root it is the command's, further in that of the results.
    constexpr int BelowRoot = 2;
    if (mElementStack.size() > BelowRoot) {
        mStoreStatus = toStatus(text);
        return;
    }
    mHasStatus = true;
    mStatus = toStatus(text);
}

void SearchResultsParser::takeRange(const QString &text)
{
    mLowRange = countOf(text.section(QLatin1Char('-'), 0, 0));
    mHighRange = countOf(text.section(QLatin1Char('-'), 1));
    if (mLowRange < 0 || mHighRange < 0) {
        qCWarning(eas()) << "Range cannot be read:" << text;
        mLowRange = -1;
        mHighRange = -1;
    }
}
