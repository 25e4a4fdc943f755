// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/algorithms/searchresultsparser.h"

/** Reads the reply of a Search. Its messages are known by their long identifiers. */
class SearchResponseParser : public SearchResultsParser
{
    Q_OBJECT

public:
    explicit SearchResponseParser(QObject *parent = nullptr);

protected:
    bool takeIdentifier(uint key, const QString &text, EasEmailItem &identifiers) override;
};
