// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/collectionsync.h"

namespace Simulator {
namespace {

enum Status { InvalidSource = 1, InvalidDestination = 2, Success = 3, SameFolder = 4 };

/** A folder takes items of its class; that of deleted items takes all. */
bool takes(const MailFolder &folder, const ItemPtr &item)
{
    return !folder.id.isEmpty()
        && (folder.type == DeletedItemsFolder || itemClassOf(folder.type) == item->className());
}

int moveOne(const CommandContext &context, const WbxmlNode &move, QString *newId)
{
    const QString source = move.text(QStringLiteral("SrcMsgId"));
    const QString sourceFolder = move.text(QStringLiteral("SrcFldId"));
    const QString destination = move.text(QStringLiteral("DstFldId"));
    if (context.answer.mItemStatus.applies(source))
        return context.answer.mItemStatus.value;
    if (source.section(QLatin1Char(':'), 0, 0) != sourceFolder || !context.mailbox.item(source))
        return InvalidSource;
    if (!takes(context.mailbox.folder(destination), context.mailbox.item(source)))
        return InvalidDestination;
    if (sourceFolder == destination)
        return SameFolder;
    *newId = context.mailbox.move(source, destination);
    return Success;
}

} // namespace

CommandReply handleMoveItems(const CommandContext &context)
{
    WbxmlNode root(QStringLiteral("Move:MoveItems"));
    const QVector<WbxmlNode> moves = context.request.document.all(QStringLiteral("Move"));
    for (const WbxmlNode &move : moves) {
        QString newId;
        const int status = moveOne(context, move, &newId);
        WbxmlNode &response = root.append(QStringLiteral("Response"));
        response.append(QStringLiteral("SrcMsgId"), move.text(QStringLiteral("SrcMsgId")));
        response.append(QStringLiteral("Status"), status);
        if (status == Success && !newId.isEmpty())
            response.append(QStringLiteral("DstMsgId"), newId);
    }
    return CommandReply::of(root);
}

} // namespace Simulator
