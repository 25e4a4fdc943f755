// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/collectionsync.h"
#include "simulator/command.h"

#include <algorithm>

namespace Simulator {
namespace {

enum Status {
    HeartbeatOver = 1,
    Changed = 2,
    MissingParameters = 3,
    SyntaxError = 4,
    HeartbeatOutOfRange = 5,
    TooManyFolders = 6,
    HierarchyChanged = 7
};

CommandReply statusReply(int status)
{
    WbxmlNode root(QStringLiteral("Ping:Ping"));
    root.append(QStringLiteral("Status"), status);
    return CommandReply::of(root);
}

CommandReply limitReply(int status, const QString &element, int limit)
{
    CommandReply reply = statusReply(status);
    reply.document.append(element, limit);
    return reply;
}

/** False if the request is none. */
bool remember(const WbxmlNode &request, PingState &state)
{
    if (request.isNull())
        return true;
    if (request.name() != QLatin1String("Ping:Ping"))
        return false;
    if (request.has(QStringLiteral("HeartbeatInterval")))
        state.heartbeat = request.text(QStringLiteral("HeartbeatInterval")).toInt();
    if (!request.has(QStringLiteral("Folders")))
        return true;
    const QVector<WbxmlNode> folders = request.all(QStringLiteral("Folders/Folder"));
    QStringList ids;
    for (const WbxmlNode &folder : folders) {
        if (!folder.has(QStringLiteral("Id")) || !folder.has(QStringLiteral("Class")))
            return false;
        ids.append(folder.text(QStringLiteral("Id")));
    }
    state.folders = ids;
    return !ids.isEmpty();
}

QStringList changedFolders(const CommandContext &context, const QStringList &watched)
{
    QStringList changed;
    for (const QString &id : watched) {
        const MailFolder folder = context.mailbox.folder(id);
        if (!folder.id.isEmpty() && hasNews(folder, context.mailbox, context.device.collections[id]))
            changed.append(id);
    }
    return changed;
}

CommandReply changesReply(const QStringList &folders)
{
    CommandReply reply = statusReply(Changed);
    WbxmlNode &list = reply.document.append(QStringLiteral("Folders"));
    for (const QString &id : folders)
        list.append(QStringLiteral("Folder"), id);
    return reply;
}

} // namespace

CommandReply handlePing(const CommandContext &context)
{
    PingState &state = context.device.ping;
    if (!remember(context.request.document, state))
        return statusReply(SyntaxError);
    if (state.folders.isEmpty() || state.heartbeat == 0)
        return statusReply(MissingParameters);
    const ServerSettings &settings = context.settings;
    const int heartbeat = std::clamp(state.heartbeat, settings.shortestHeartbeat, settings.longestHeartbeat);
    if (heartbeat != state.heartbeat)
        return limitReply(HeartbeatOutOfRange, QStringLiteral("HeartbeatInterval"), heartbeat);
    if (state.folders.size() > settings.maxPingFolders)
        return limitReply(TooManyFolders, QStringLiteral("MaxFolders"), settings.maxPingFolders);
    if (context.device.hierarchy.known != context.mailbox.folders())
        return statusReply(HierarchyChanged);
    const QStringList changed = changedFolders(context, state.folders);
    if (!changed.isEmpty())
        return changesReply(changed);
    if (context.isOverdue)
        return statusReply(HeartbeatOver);
    CommandReply reply;
    reply.wait = heartbeat;
    return reply;
}

} // namespace Simulator
