// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/command.h"

#include <algorithm>

namespace Simulator {
namespace {

enum Status { Success = 1, UnknownKey = 9, BadRequest = 10 };

struct HierarchyChanges
{
    QVector<MailFolder> updated;
    QVector<MailFolder> removed;
    QVector<MailFolder> added;

    int count() const { return updated.size() + removed.size() + added.size(); }
};

const MailFolder *byId(const QVector<MailFolder> &folders, const QString &id)
{
    const auto found = std::find_if(
        folders.begin(), folders.end(), [&id](const MailFolder &folder) { return folder.id == id; });
    return found == folders.end() ? nullptr : &*found;
}

HierarchyChanges difference(const QVector<MailFolder> &known, const QVector<MailFolder> &now)
{
    HierarchyChanges changes;
    for (const MailFolder &folder : now) {
        const MailFolder *before = byId(known, folder.id);
        if (!before)
            changes.added.append(folder);
        else if (!(*before == folder))
            changes.updated.append(folder);
    }
    for (const MailFolder &folder : known) {
        if (!byId(now, folder.id))
            changes.removed.append(folder);
    }
    return changes;
}

void appendFolders(WbxmlNode &parent, const QString &element, const QVector<MailFolder> &folders)
{
    for (const MailFolder &folder : folders) {
        WbxmlNode &node = parent.append(element);
        node.append(QStringLiteral("ServerId"), folder.id);
        if (element == QLatin1String("Delete"))
            continue;
        node.append(QStringLiteral("ParentId"), folder.parentId);
        node.append(QStringLiteral("DisplayName"), folder.name);
        node.append(QStringLiteral("Type"), folder.type);
    }
}

WbxmlNode statusReply(int status)
{
    WbxmlNode root(QStringLiteral("FolderHierarchy:FolderSync"));
    root.append(QStringLiteral("Status"), status);
    return root;
}

WbxmlNode changesReply(const QString &key, const HierarchyChanges &changes)
{
    WbxmlNode root = statusReply(Success);
    root.append(QStringLiteral("SyncKey"), key);
    WbxmlNode &node = root.append(QStringLiteral("Changes"));
    node.append(QStringLiteral("Count"), changes.count());
    appendFolders(node, QStringLiteral("Update"), changes.updated);
    appendFolders(node, QStringLiteral("Delete"), changes.removed);
    appendFolders(node, QStringLiteral("Add"), changes.added);
    return root;
}

} // namespace

CommandReply handleFolderSync(const CommandContext &context)
{
    const WbxmlNode &request = context.request.document;
    HierarchyState &state = context.device.hierarchy;
    if (request.name() != QLatin1String("FolderHierarchy:FolderSync")
        || !request.has(QStringLiteral("SyncKey")))
        return CommandReply::of(statusReply(BadRequest));
    const QString key = request.text(QStringLiteral("SyncKey"));
    if (key == QLatin1String("0"))
        state = HierarchyState();
    else if (key == state.previousKey)
        return CommandReply::of(state.lastReply);
    else if (key != state.key)
        return CommandReply::of(statusReply(UnknownKey));

    const QVector<MailFolder> now = context.mailbox.folders();
    const HierarchyChanges changes = difference(state.known, now);
    if (changes.count() == 0 && key == state.key)
        return CommandReply::of(changesReply(key, changes));
    state.previousKey = key == QLatin1String("0") ? QString() : key;
    state.key = context.nextKey();
    state.known = now;
    state.lastReply = changesReply(state.key, changes);
    return CommandReply::of(state.lastReply);
}

} // namespace Simulator
