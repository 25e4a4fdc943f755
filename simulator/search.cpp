// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/datetext.h"
#include "simulator/itemfetch.h"
#include "simulator/personshape.h"
#include "simulator/searchresults.h"

namespace Simulator {
namespace {

enum StoreStatus {
    Success = 1,
    InvalidRequest = 2,
    NotFound = 6,
    TooComplex = 8,
    HierarchyChanged = 11,
    EndOfRange = 12
};

constexpr int usualCount = 100;
constexpr int mostWords = 50;

using SearchResults::MailQuery;
using SearchResults::Part;

CommandReply storeReply(
    int status, const QVector<WbxmlNode> &results = {}, const Part &part = Part(), int total = 0)
{
    WbxmlNode root(QStringLiteral("Search:Search"));
    root.append(QStringLiteral("Status"), 1);
    WbxmlNode &store = root.append(QStringLiteral("Response")).append(QStringLiteral("Store"));
    store.append(QStringLiteral("Status"), status);
    for (const WbxmlNode &result : results)
        store.append(result);
    if (status != Success)
        return CommandReply::of(root);
    if (results.isEmpty())
        store.append(QStringLiteral("Result"));
    else
        store.append(QStringLiteral("Range"), part.text());
    store.append(QStringLiteral("Total"), total);
    return CommandReply::of(root);
}

QDateTime comparedDate(const WbxmlNode &conditions, const QString &comparison)
{
    return DateText::parse(conditions.text(comparison + QStringLiteral("/Value")));
}

/** A status other than success for a query that is not carried out. */
int readQuery(const CommandContext &context, const WbxmlNode &store, MailQuery *query)
{
    const WbxmlNode conditions = store.at(QStringLiteral("Query/And"));
    if (conditions.isNull() || conditions.text(QStringLiteral("AirSync:Class")) != QLatin1String("Email"))
        return InvalidRequest;
    query->words = conditions.text(QStringLiteral("FreeText")).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (query->words.size() > mostWords)
        return TooComplex;
    query->after = comparedDate(conditions, QStringLiteral("GreaterThan"));
    query->before = comparedDate(conditions, QStringLiteral("LessThan"));
    query->isDeep = store.has(QStringLiteral("Options/DeepTraversal"));
    const QVector<WbxmlNode> folders = conditions.all(QStringLiteral("AirSync:CollectionId"));
    for (const WbxmlNode &folder : folders) {
        if (context.mailbox.folder(folder.text()).id.isEmpty())
            return NotFound;
        query->folderIds.append(folder.text());
    }
    return Success;
}

/** A later part of a search comes from what its first one found, unless that is to be found anew. */
QStringList found(const CommandContext &context, const WbxmlNode &store, const MailQuery &query)
{
    SearchState &last = context.device.search;
    const bool begins =
        store.text(QStringLiteral("Options/Range")).section(QLatin1Char('-'), 0, 0).toInt() == 0;
    const WbxmlNode asked = store.at(QStringLiteral("Query"));
    if (begins || store.has(QStringLiteral("Options/RebuildResults")) || last.query != asked)
        last = { asked, SearchResults::matches(context.mailbox, query) };
    return last.found;
}

WbxmlNode mailResult(const CommandContext &context, const QString &serverId, const SyncOptions &options)
{
    const QString folderId = serverId.section(QLatin1Char(':'), 0, 0);
    WbxmlNode result(QStringLiteral("Search:Result"));
    result.append(QStringLiteral("AirSync:Class"), QStringLiteral("Email"));
    result.append(QStringLiteral("LongId"), longId(serverId));
    result.append(QStringLiteral("AirSync:CollectionId"), folderId);
    const bool isDraft = context.mailbox.folder(folderId).type == DraftsFolder;
    const ItemShape shape { context.version(), serverId, isDraft, options, nullptr };
    result.append(
        WbxmlNode(QStringLiteral("Search:Properties"), context.mailbox.item(serverId)->elements(shape)));
    return result;
}

CommandReply searchMailbox(const CommandContext &context, const WbxmlNode &store)
{
    if (context.device.hierarchy.known != context.mailbox.folders())
        return storeReply(HierarchyChanged);
    MailQuery query;
    const int status = readQuery(context, store, &query);
    if (status != Success)
        return storeReply(status);
    const QStringList ids = found(context, store, query);
    const Part part = Part::of(store.text(QStringLiteral("Options/Range")), ids.size(), usualCount);
    if (part.isBeyond(ids.size()))
        return storeReply(EndOfRange);
    const SyncOptions options = SyncOptions::fromNode(store.at(QStringLiteral("Options")));
    QVector<WbxmlNode> results;
    for (int i = part.first; i <= part.last; ++i) {
        // It may have gone since the search was begun.
        if (context.mailbox.item(ids.at(i)))
            results.append(mailResult(context, ids.at(i), options));
    }
    return storeReply(Success, results, part, ids.size());
}

CommandReply searchDirectory(const CommandContext &context, const WbxmlNode &store)
{
    const QString text = store.text(QStringLiteral("Query"));
    if (text.isEmpty())
        return storeReply(InvalidRequest);
    const QVector<Person> people = context.settings.directory.matching(text);
    const Part part = Part::of(store.text(QStringLiteral("Options/Range")), people.size(), usualCount);
    if (part.isBeyond(people.size()))
        return storeReply(EndOfRange);
    PersonShape shape(store.at(QStringLiteral("Options/Picture")));
    QVector<WbxmlNode> results;
    for (int i = part.first; i <= part.last; ++i) {
        results.append(WbxmlNode(QStringLiteral("Search:Result"),
            { WbxmlNode(QStringLiteral("Search:Properties"), shape.elements(people.at(i))) }));
    }
    return storeReply(Success, results, part, people.size());
}

} // namespace

CommandReply handleSearch(const CommandContext &context)
{
    if (context.answer.mCollectionStatus.value != 0)
        return storeReply(context.answer.mCollectionStatus.value);
    const WbxmlNode store = context.request.document.at(QStringLiteral("Store"));
    const QString name = store.text(QStringLiteral("Name"));
    if (name.compare(QLatin1String("Mailbox"), Qt::CaseInsensitive) == 0)
        return searchMailbox(context, store);
    if (name.compare(QLatin1String("GAL"), Qt::CaseInsensitive) == 0)
        return searchDirectory(context, store);
    return storeReply(InvalidRequest);
}

} // namespace Simulator
