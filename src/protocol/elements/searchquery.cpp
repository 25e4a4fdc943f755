// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/elements/searchquery.h"

#include "protocol/wbxml/wbxmlencoder.h"

using namespace Wbxml;

namespace {

/** Compares a field of the items with a value; nothing for an empty one. */
void encodeComparison(WbxmlEncoder &encoder, Token comparison, Token field, const QString &value)
{
    if (value.isEmpty())
        return;
    encoder.appendElement(comparison, true);
    encoder.appendElement(field);
    encoder.appendTextElement(Search::Value, value);
    encoder.setCurrentNodeToParent();
}

} // namespace

void SearchQuery::encode(WbxmlEncoder &encoder) const
{
    if (!mGalQuery.isEmpty()) {
        encoder.appendTextElement(Search::Query, mGalQuery);
        return;
    }
    encoder.appendElement(Search::Query, true);
    encoder.appendElement(Search::And, true);
    encodeConditions(encoder);
    encoder.setCurrentNodeToParent();
    encoder.setCurrentNodeToParent();
}

void SearchQuery::encodeConditions(WbxmlEncoder &encoder) const
{
    if (!mFreeText.isEmpty())
        encoder.appendTextElement(Search::FreeText, mFreeText);
    encodeComparison(encoder, Search::GreaterThan, Email::DateReceived, mGreaterThan);
    encodeComparison(encoder, Search::LessThan, Email::DateReceived, mLessThan);
    if (!mConversationId.isEmpty())
        encoder.appendTextElement(Search::ConversationId, mConversationId);
    for (const QString &name : mClasses)
        encoder.appendTextElement(AirSync::Class, name);
    for (const QString &id : mCollectionIds)
        encoder.appendTextElement(AirSync::CollectionId, id);
    encodeComparison(encoder, Search::EqualTo, DocumentLibrary::LinkId, mEqualTo);
}
