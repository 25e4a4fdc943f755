// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/collectionsync.h"
#include "simulator/protocolversion.h"

#include <algorithm>

namespace Simulator {
namespace {

enum Status { ProtocolError = 4, FoldersChanged = 12, RequestIncomplete = 13 };
const int largestWindow = 512;

WbxmlNode statusReply(int status)
{
    WbxmlNode root(QStringLiteral("AirSync:Sync"));
    root.append(QStringLiteral("Status"), status);
    return root;
}

/** WindowSize as the client wrote it, or what the server takes; 0 and too much stand for the largest. */
int windowOf(const WbxmlNode &node, int otherwise)
{
    if (!node.has(QStringLiteral("WindowSize")))
        return otherwise;
    const int size = node.text(QStringLiteral("WindowSize")).toInt();
    return size <= 0 || size > largestWindow ? largestWindow : size;
}

} // namespace

CommandReply handleSync(const CommandContext &context)
{
    const WbxmlNode &request = context.request.document;
    if (context.request.body.isEmpty() || request.has(QStringLiteral("Partial")))
        return CommandReply::of(statusReply(RequestIncomplete));
    const QVector<WbxmlNode> collections = request.all(QStringLiteral("Collections/Collection"));
    if (request.name() != QLatin1String("AirSync:Sync") || collections.isEmpty())
        return CommandReply::of(statusReply(ProtocolError));
    if (context.settings.reportStaleHierarchy && context.device.hierarchy.known != context.mailbox.folders())
        return CommandReply::of(statusReply(FoldersChanged));

    int room = windowOf(request, largestWindow);
    bool silent = true;
    WbxmlNode root(QStringLiteral("AirSync:Sync"));
    WbxmlNode &list = root.append(QStringLiteral("Collections"));
    for (const WbxmlNode &collection : collections) {
        const int window = std::min(room, windowOf(collection, context.settings.windowSize));
        CollectionSync sync(context, collection, window);
        list.append(sync.run());
        room -= sync.changeCount();
        silent = silent && sync.isSilent();
    }
    if (silent && context.settings.emptyReplies && context.version() >= Version121)
        return {};
    return CommandReply::of(root);
}

} // namespace Simulator
