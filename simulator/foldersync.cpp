// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/hierarchykey.h"

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
    const bool isFirst = request.text(QStringLiteral("SyncKey")) == QLatin1String("0");
    if (isFirst)
        state = HierarchyState();
    const HierarchyKey::Check check = isFirst ? HierarchyKey::Check::Current : HierarchyKey::takeUp(context);
    if (check == HierarchyKey::Check::Repeated)
        return CommandReply::of(state.lastReply);
    if (check == HierarchyKey::Check::Unknown)
        return CommandReply::of(statusReply(UnknownKey));

    const QVector<MailFolder> now = context.mailbox.folders();
    const HierarchyChanges changes = difference(state.known, now);
    if (changes.count() == 0 && request.text(QStringLiteral("SyncKey")) == state.key)
        return CommandReply::of(changesReply(state.key, changes));
    const QString key = HierarchyKey::handOn(context, now);
    if (isFirst)
        state.previousKey.clear(); // with "0" all begins anew, each time
    return HierarchyKey::kept(context, changesReply(key, changes));
}

} // namespace Simulator
