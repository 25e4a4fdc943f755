// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/itemfetch.h"

namespace Simulator {
namespace {

enum Status { Success = 1, ProtocolError = 2, NotFound = 6 };

void emptyFolder(Mailbox &mailbox, const QString &folderId, bool withSubFolders)
{
    const QVector<ItemEntry> entries = mailbox.items(folderId);
    for (const ItemEntry &entry : entries)
        mailbox.remove(entry.serverId);
    const QVector<MailFolder> folders = mailbox.folders();
    for (const MailFolder &folder : folders) {
        if (withSubFolders && folder.parentId == folderId)
            mailbox.removeFolder(folder.id);
    }
}

WbxmlNode emptyFolderContents(const CommandContext &context, const WbxmlNode &operation)
{
    const QString folderId = operation.text(QStringLiteral("AirSync:CollectionId"));
    const bool exists = !context.mailbox.folder(folderId).id.isEmpty();
    if (exists)
        emptyFolder(context.mailbox, folderId, operation.has(QStringLiteral("Options/DeleteSubFolders")));
    WbxmlNode node(QStringLiteral("ItemOperations:EmptyFolderContents"));
    node.append(QStringLiteral("Status"), exists ? Success : NotFound);
    node.append(QStringLiteral("AirSync:CollectionId"), folderId);
    return node;
}

/** Conversations are not modelled, so there is never one to move. */
WbxmlNode moveConversation(const WbxmlNode &operation)
{
    WbxmlNode node(QStringLiteral("ItemOperations:Move"));
    node.append(QStringLiteral("Status"), NotFound);
    WbxmlNode id = operation.at(QStringLiteral("ConversationId"));
    node.append(id.isNull() ? WbxmlNode(QStringLiteral("ConversationId")) : id);
    return node;
}

} // namespace

CommandReply handleItemOperations(const CommandContext &context)
{
    const WbxmlNode &request = context.request.document;
    const bool multipart = context.request.header("MS-ASAcceptMultiPart") == "T";
    WbxmlNode root(QStringLiteral("ItemOperations:ItemOperations"));
    if (request.name() != root.name() || request.children().isEmpty()) {
        root.append(QStringLiteral("Status"), ProtocolError);
        return CommandReply::of(root);
    }
    root.append(QStringLiteral("Status"), Success);
    WbxmlNode &response = root.append(QStringLiteral("Response"));
    QVector<QByteArray> parts;
    for (const WbxmlNode &operation : request.children()) {
        if (operation.tag() == QLatin1String("Fetch"))
            response.append(ItemFetch(context, operation, multipart ? &parts : nullptr).run());
        else if (operation.tag() == QLatin1String("EmptyFolderContents"))
            response.append(emptyFolderContents(context, operation));
        else if (operation.tag() == QLatin1String("Move"))
            response.append(moveConversation(operation));
    }
    CommandReply reply = CommandReply::of(root);
    reply.isMultipart = multipart;
    reply.parts = parts;
    return reply;
}

CommandReply handleGetAttachment(const CommandContext &context)
{
    const WbxmlNode fetch(QStringLiteral("ItemOperations:Fetch"),
        { WbxmlNode(QStringLiteral("ItemOperations:Store"), QStringLiteral("Mailbox")),
            WbxmlNode(QStringLiteral("AirSyncBase:FileReference"),
                context.request.queryItem(QStringLiteral("AttachmentName"))) });
    QVector<QByteArray> parts;
    const WbxmlNode reply = ItemFetch(context, fetch, &parts).run();
    CommandReply result;
    if (parts.isEmpty()) {
        result.httpStatus = 500;
        return result;
    }
    result.contentType = reply.text(QStringLiteral("Properties/AirSyncBase:ContentType")).toLatin1();
    result.body = parts.first();
    return result;
}

} // namespace Simulator
