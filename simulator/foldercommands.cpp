// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/hierarchykey.h"

#include <algorithm>

namespace Simulator {
namespace {

enum Status {
    Success = 1,
    NameTakenOrSpecial = 2,
    Special = 3,
    NoFolder = 4,
    NoParent = 5,
    UnknownKey = 9,
    BadRequest = 10,
};

const int longestName = 256;

/** Folders that each mailbox has, and the cache of recipients. */
bool isSpecial(const MailFolder &folder)
{
    return (folder.type >= InboxFolder && folder.type <= 11) || folder.type == RecipientCacheFolder;
}

bool canBeCreated(int type)
{
    return type == GenericFolder || (type >= UserMailFolder && type <= 17);
}

bool isGoodName(const QString &name)
{
    return !name.trimmed().isEmpty() && name.size() <= longestName;
}

bool isTaken(const Mailbox &mailbox, const QString &name, const QString &parentId, const QString &exceptId)
{
    const QVector<MailFolder> folders = mailbox.folders();
    return std::any_of(folders.begin(), folders.end(), [&](const MailFolder &folder) {
        return folder.parentId == parentId && folder.id != exceptId
            && folder.name.compare(name, Qt::CaseInsensitive) == 0;
    });
}

/** 0 if folders may lie there. */
int parentStatus(const Mailbox &mailbox, const QString &parentId)
{
    if (parentId == QLatin1String("0"))
        return 0;
    const MailFolder parent = mailbox.folder(parentId);
    if (parent.id.isEmpty())
        return NoParent;
    return parent.type == RecipientCacheFolder ? int(Special) : 0;
}

MailFolder asked(const WbxmlNode &request)
{
    MailFolder folder;
    folder.id = request.text(QStringLiteral("ServerId"));
    folder.parentId = request.text(QStringLiteral("ParentId"));
    folder.name = request.text(QStringLiteral("DisplayName"));
    folder.type = request.text(QStringLiteral("Type")).toInt();
    return folder;
}

int create(Mailbox &mailbox, MailFolder &folder)
{
    if (!canBeCreated(folder.type) || !isGoodName(folder.name) || folder.parentId.isEmpty())
        return BadRequest;
    if (const int status = parentStatus(mailbox, folder.parentId))
        return status;
    if (isTaken(mailbox, folder.name, folder.parentId, QString()))
        return NameTakenOrSpecial;
    folder.id = mailbox.addFolder(folder.name, folder.type, folder.parentId);
    return Success;
}

int update(Mailbox &mailbox, MailFolder &folder)
{
    if (folder.id.isEmpty() || !isGoodName(folder.name) || folder.parentId.isEmpty())
        return BadRequest;
    const MailFolder before = mailbox.folder(folder.id);
    if (before.id.isEmpty())
        return NoFolder;
    if (isSpecial(before))
        return before.type == RecipientCacheFolder ? Special : NameTakenOrSpecial;
    if (parentStatus(mailbox, folder.parentId) != 0)
        return NoParent;
    if (isTaken(mailbox, folder.name, folder.parentId, folder.id))
        return NameTakenOrSpecial;
    if (folder.parentId != before.parentId && !mailbox.moveFolder(folder.id, folder.parentId))
        return NoParent;
    mailbox.renameFolder(folder.id, folder.name);
    return Success;
}

int remove(Mailbox &mailbox, MailFolder &folder)
{
    if (folder.id.isEmpty())
        return BadRequest;
    const MailFolder before = mailbox.folder(folder.id);
    if (before.id.isEmpty())
        return NoFolder;
    if (isSpecial(before))
        return Special;
    mailbox.removeFolder(folder.id);
    return Success;
}

/**
 * What the device knows after its own change: that folder as it is now, and of all others what it knew. It is
 * told of sub-folders that went with theirs.
 */
QVector<MailFolder> knownWith(const QVector<MailFolder> &known, const MailFolder &changed)
{
    QVector<MailFolder> result;
    std::copy_if(known.begin(), known.end(), std::back_inserter(result),
        [&changed](const MailFolder &folder) { return folder.id != changed.id; });
    return result;
}

struct FolderCommand
{
    QString root;
    int (*apply)(Mailbox &mailbox, MailFolder &folder);
    bool tellsId = false;
};

WbxmlNode statusReply(const QString &root, int status)
{
    WbxmlNode reply(root);
    reply.append(QStringLiteral("Status"), status);
    return reply;
}

CommandReply run(const CommandContext &context, const FolderCommand &command)
{
    if (context.request.document.name() != command.root)
        return CommandReply::of(statusReply(command.root, BadRequest));
    const HierarchyKey::Check check = HierarchyKey::takeUp(context);
    if (check == HierarchyKey::Check::Repeated)
        return CommandReply::of(context.device.hierarchy.lastReply);
    if (check == HierarchyKey::Check::Unknown)
        return CommandReply::of(statusReply(command.root, UnknownKey));
    MailFolder folder = asked(context.request.document);
    const int status = command.apply(context.mailbox, folder);
    WbxmlNode reply = statusReply(command.root, status);
    if (status != Success)
        return CommandReply::of(reply);
    QVector<MailFolder> known = knownWith(context.device.hierarchy.known, folder);
    const MailFolder now = context.mailbox.folder(folder.id);
    if (!now.id.isEmpty())
        known.append(now);
    reply.append(QStringLiteral("SyncKey"), HierarchyKey::handOn(context, known));
    if (command.tellsId)
        reply.append(QStringLiteral("ServerId"), folder.id);
    return HierarchyKey::kept(context, reply);
}

} // namespace

CommandReply handleFolderCreate(const CommandContext &context)
{
    return run(context, { QStringLiteral("FolderHierarchy:FolderCreate"), create, true });
}

CommandReply handleFolderUpdate(const CommandContext &context)
{
    return run(context, { QStringLiteral("FolderHierarchy:FolderUpdate"), update });
}

CommandReply handleFolderDelete(const CommandContext &context)
{
    return run(context, { QStringLiteral("FolderHierarchy:FolderDelete"), remove });
}

} // namespace Simulator
