// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/wbxml/wbxmltable.h"

#include "protocol/wbxml/wbxmlabi.h"
#include "protocol/wbxml/wbxmltokens.h"

#include <algorithm>
#include <array>
#include <vector>

using namespace Wbxml;

namespace {

struct MissingRow
{
    const char *name;
    Token tag;
};

// What the library's table lacks of the published tokens.
constexpr MissingRow missingRows[] = {
    { "ProposedStartTime", MeetingResponse::ProposedStartTime },
    { "ProposedEndTime", MeetingResponse::ProposedEndTime },
    { "AccountOnlyRemoteWipe", Provision::AccountOnlyRemoteWipe },
    { "Find", Find::Find },
    { "SearchId", Find::SearchId },
    { "ExecuteSearch", Find::ExecuteSearch },
    { "MailBoxSearchCriterion", Find::MailBoxSearchCriterion },
    { "Query", Find::Query },
    { "Status", Find::Status },
    { "FreeText", Find::FreeText },
    { "Options", Find::Options },
    { "Range", Find::Range },
    { "DeepTraversal", Find::DeepTraversal },
    { "Response", Find::Response },
    { "Result", Find::Result },
    { "Properties", Find::Properties },
    { "Preview", Find::Preview },
    { "HasAttachments", Find::HasAttachments },
    { "Total", Find::Total },
    { "DisplayCc", Find::DisplayCc },
    { "DisplayBcc", Find::DisplayBcc },
    { "GalSearchCriterion", Find::GalSearchCriterion },
    { "MaxPictures", Find::MaxPictures },
    { "MaxSize", Find::MaxSize },
    { "Picture", Find::Picture },
};

constexpr char findNameSpace[] = "Find";
constexpr uint findPage = Find::Find.page;

class Table
{
public:
    Table();

    const WBXMLLangEntry *language() const { return mRows.empty() ? nullptr : mLanguages.data(); }
    const WBXMLTagEntry *tagEntry(uint codePage, uint token) const;

private:
    void addRow(const WBXMLTagEntry &row);
    void addNameSpaces(const WBXMLNameSpaceEntry *known);

    std::vector<WBXMLTagEntry> mRows;
    std::vector<WBXMLNameSpaceEntry> mNameSpaces;
    std::array<WBXMLLangEntry, 2> mLanguages {}; // the second ends the list
    std::array<quint16, 0x10000> mIndex {}; // key to row number plus one
};

Table::Table()
{
    const WBXMLLangEntry *base = wbxml_tables_get_table(static_cast<WBXMLLanguage>(WbxmlTable::Language));
    if (base == nullptr)
        return;
    for (const WBXMLTagEntry *row = base->tagTable; row->xmlName != nullptr; ++row)
        addRow(*row);
    for (const MissingRow &row : missingRows) {
        if (tagEntry(row.tag.page, row.tag.token) == nullptr) // a later library may have it
            addRow({ row.name, row.tag.page, row.tag.token, 0 });
    }
    mRows.push_back({ nullptr, 0, 0, 0 });
    addNameSpaces(base->nsTable);
    mLanguages[0] = *base;
    mLanguages[0].tagTable = mRows.data();
    mLanguages[0].nsTable = mNameSpaces.data();
}

void Table::addRow(const WBXMLTagEntry &row)
{
    mRows.push_back(row);
    quint16 &number = mIndex[key(row.wbxmlCodePage, row.wbxmlToken)];
    if (number == 0) // the first of two rows with the same numbers counts
        number = static_cast<quint16>(mRows.size());
}

void Table::addNameSpaces(const WBXMLNameSpaceEntry *known)
{
    for (; known != nullptr && known->xmlNameSpace != nullptr; ++known)
        mNameSpaces.push_back(*known);
    const bool hasFind = std::any_of(mNameSpaces.cbegin(), mNameSpaces.cend(),
        [](const WBXMLNameSpaceEntry &entry) { return entry.wbxmlCodePage == findPage; });
    if (!hasFind)
        mNameSpaces.push_back({ findNameSpace, findPage });
    mNameSpaces.push_back({ nullptr, 0 });
}

const WBXMLTagEntry *Table::tagEntry(uint codePage, uint token) const
{
    if (codePage > 0xFF || token > 0xFF)
        return nullptr;
    const quint16 number = mIndex[key(codePage, token)];
    return number == 0 ? nullptr : &mRows[number - 1U];
}

const Table &table()
{
    static const Table instance;
    return instance;
}

} // namespace

const WBXMLLangEntry *WbxmlTable::language()
{
    return table().language();
}

const WBXMLTagEntry *WbxmlTable::tagEntry(uint codePage, uint token)
{
    return table().tagEntry(codePage, token);
}
