// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/findresponseparser.h"

using namespace Wbxml;

FindResponseParser::FindResponseParser(QObject *parent)
    : SearchResultsParser(
        { Find::Find, Find::Status, Find::Result, Find::Properties, Find::Range, Find::Total }, parent)
{
}

bool FindResponseParser::takeIdentifier(uint key, const QString &text, EasEmailItem &identifiers)
{
    if (key != AirSync::ServerId)
        return false;
    identifiers.setServerId(text);
    return true;
}

bool FindResponseParser::takeProperty(uint key, const QString &text)
{
    switch (key) {
    case Find::Preview:
        mPreview = text;
        return true;
    // Names for display, without addresses, and a mark that the whole message brings as well.
    case Find::DisplayCc:
    case Find::DisplayBcc:
    case Find::HasAttachments:
        return true;
    default:
        return false;
    }
}

void FindResponseParser::completeItem(EasEmailItem &item)
{
    if (mPreview.isEmpty())
        return;
    EasBodyContainer body = item.body();
    body.setType(EasBodyContainer::PlainTextBodyType);
    body.setTruncated(true);
    body.setPreview(mPreview);
    item.setBody(body);
}
