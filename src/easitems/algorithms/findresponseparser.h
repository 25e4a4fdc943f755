// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/algorithms/searchresultsparser.h"

/** Reads the reply of a Find. Its messages are known by folder and identifier, as those of a Sync, and bring
 * a preview in place of a body. */
class FindResponseParser : public SearchResultsParser
{
    Q_OBJECT

public:
    explicit FindResponseParser(QObject *parent = nullptr);

protected:
    bool takeIdentifier(uint key, const QString &text, EasEmailItem &identifiers) override;
    bool takeProperty(uint key, const QString &text) override;
    void completeItem(EasEmailItem &item) override;
    void beginResult() override { mPreview.clear(); }

private:
    QString mPreview;
};
