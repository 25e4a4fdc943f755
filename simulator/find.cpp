// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/datetext.h"
#include "simulator/email.h"
#include "simulator/personshape.h"
#include "simulator/protocolversion.h"
#include "simulator/searchresults.h"

namespace Simulator {
namespace {

enum Status { Success = 1, InvalidRequest = 2, HierarchyChanged = 3, RangeBeginsLater = 4 };

constexpr int usualCount = 100;
constexpr int previewLength = 255;

using SearchResults::MailQuery;
using SearchResults::Part;

/** The refusal of the whole command. */
CommandReply refusal(int status)
{
    WbxmlNode root(QStringLiteral("Find:Find"));
    root.append(QStringLiteral("Status"), status);
    return CommandReply::of(root);
}

CommandReply response(
    int status, const QVector<WbxmlNode> &results = {}, const Part &part = Part(), int total = 0)
{
    CommandReply reply = refusal(Success);
    WbxmlNode &node = reply.document.append(QStringLiteral("Response"));
    node.append(QStringLiteral("Status"), status);
    for (const WbxmlNode &result : results)
        node.append(result);
    if (status != Success)
        return reply;
    if (!results.isEmpty())
        node.append(QStringLiteral("Range"), part.text());
    node.append(QStringLiteral("Total"), total);
    return reply;
}

WbxmlNode properties(const Email &email, bool isDraft)
{
    const EmailHeaders &headers = email.content().headers();
    WbxmlNode node(QStringLiteral("Find:Properties"));
    node.append(QStringLiteral("Email:Subject"), headers.subject);
    node.append(QStringLiteral("Email:DateReceived"), DateText::withDashes(email.date()));
    node.append(QStringLiteral("Email:DisplayTo"), headers.displayTo);
    node.append(QStringLiteral("DisplayCc"), headers.cc);
    node.append(QStringLiteral("Email:Importance"), headers.importance);
    node.append(QStringLiteral("Email:Read"), int(email.isRead()));
    if (isDraft)
        node.append(QStringLiteral("Email2:IsDraft"), 1);
    node.append(QStringLiteral("Preview"), email.content().bodies().plain.left(previewLength));
    node.append(QStringLiteral("HasAttachments"), int(!email.content().attachmentInfos().isEmpty()));
    node.append(QStringLiteral("Email:From"), headers.from);
    return node;
}

WbxmlNode mailResult(const CommandContext &context, const QString &serverId, const Email &email)
{
    const QString folderId = serverId.section(QLatin1Char(':'), 0, 0);
    WbxmlNode result(QStringLiteral("Find:Result"));
    result.append(QStringLiteral("AirSync:Class"), QStringLiteral("Email"));
    result.append(QStringLiteral("AirSync:ServerId"), serverId);
    result.append(QStringLiteral("AirSync:CollectionId"), folderId);
    result.append(properties(email, context.mailbox.folder(folderId).type == DraftsFolder));
    return result;
}

CommandReply findMail(const CommandContext &context, const WbxmlNode &criterion)
{
    if (context.device.hierarchy.known != context.mailbox.folders())
        return refusal(HierarchyChanged);
    const QString range = criterion.text(QStringLiteral("Options/Range"));
    const bool begins = range.section(QLatin1Char('-'), 0, 0).toInt() == 0;
    const WbxmlNode searchId = context.request.document.at(QStringLiteral("SearchId"));
    SearchState &last = context.device.search;
    if (begins) {
        MailQuery query;
        query.words =
            criterion.text(QStringLiteral("Query/FreeText")).split(QLatin1Char(' '), Qt::SkipEmptyParts);
        query.isDeep = criterion.has(QStringLiteral("Options/DeepTraversal"));
        const QString folderId = criterion.text(QStringLiteral("Query/AirSync:CollectionId"));
        if (!folderId.isEmpty())
            query.folderIds.append(folderId);
        if (!folderId.isEmpty() && context.mailbox.folder(folderId).id.isEmpty())
            return response(InvalidRequest);
        last = { searchId, SearchResults::matches(context.mailbox, query) };
    } else if (last.query != searchId) {
        return response(RangeBeginsLater);
    }
    const Part part = Part::of(range, last.found.size(), usualCount);
    QVector<WbxmlNode> results;
    for (int i = part.first; i <= part.last; ++i) {
        const auto email = std::dynamic_pointer_cast<const Email>(context.mailbox.item(last.found.at(i)));
        if (email)
            results.append(mailResult(context, last.found.at(i), *email));
    }
    return response(Success, results, part, last.found.size());
}

CommandReply findPeople(const CommandContext &context, const WbxmlNode &criterion)
{
    const QString text = criterion.text(QStringLiteral("Query"));
    if (text.isEmpty())
        return response(InvalidRequest);
    const QVector<Person> people = context.settings.directory.matching(text);
    const Part part = Part::of(criterion.text(QStringLiteral("Options/Range")), people.size(), usualCount);
    PersonShape shape(criterion.at(QStringLiteral("Options/Picture")));
    QVector<WbxmlNode> results;
    for (int i = part.first; i <= part.last; ++i) {
        results.append(WbxmlNode(QStringLiteral("Find:Result"),
            { WbxmlNode(QStringLiteral("Find:Properties"), shape.elements(people.at(i))) }));
    }
    return response(Success, results, part, people.size());
}

} // namespace

CommandReply handleFind(const CommandContext &context)
{
    if (context.version() < Version161) {
        CommandReply unknown;
        unknown.httpStatus = 501;
        return unknown;
    }
    if (context.answer.mCollectionStatus.value != 0)
        return response(context.answer.mCollectionStatus.value);
    const WbxmlNode request = context.request.document;
    if (request.text(QStringLiteral("SearchId")).isEmpty())
        return refusal(InvalidRequest);
    const WbxmlNode mail = request.at(QStringLiteral("ExecuteSearch/MailBoxSearchCriterion"));
    if (!mail.isNull())
        return findMail(context, mail);
    const WbxmlNode people = request.at(QStringLiteral("ExecuteSearch/GalSearchCriterion"));
    return people.isNull() ? refusal(InvalidRequest) : findPeople(context, people);
}

} // namespace Simulator
