// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/searchresponseparser.h"

using namespace Wbxml;

SearchResponseParser::SearchResponseParser(QObject *parent)
    : SearchResultsParser(
        { Search::Search, Search::Status, Search::Result, Search::Properties, Search::Range, Search::Total },
        parent)
{
}

bool SearchResponseParser::takeIdentifier(uint key, const QString &text, EasEmailItem &identifiers)
{
    if (key != Search::LongId)
        return false;
    identifiers.setLongId(text);
    return true;
}
