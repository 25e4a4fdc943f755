// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/syncuploads.h"

#include "simulator/collectionsync.h"
#include "simulator/contactitem.h"
#include "simulator/email.h"
#include "simulator/eventitem.h"
#include "simulator/nodeitem.h"
#include "simulator/protocolversion.h"

#include <algorithm>

namespace Simulator {
namespace {

enum Status { Success = 1, BadItem = 6, Conflict = 7, NotFound = 8 };
enum Policy { ClientWins = 0 };

const QString instanceElement = QStringLiteral("AirSyncBase:InstanceId");

/** Fields that the change sets and that someone else has set otherwise since the device last looked. */
bool isInConflict(const ItemState &known, const ItemState &now, const ItemState &wanted)
{
    return std::any_of(now.keyBegin(), now.keyEnd(), [&](const QString &field) {
        return wanted.value(field) != now.value(field) && known.value(field) != now.value(field);
    });
}

/** Of a message that is no draft a client may change the marks alone. */
bool changesMarksAlone(const WbxmlNode &data)
{
    static const QStringList marks { QStringLiteral("Email:Read"), QStringLiteral("Email:Flag"),
        QStringLiteral("Email:Categories") };
    return std::all_of(data.children().begin(), data.children().end(),
        [](const WbxmlNode &field) { return marks.contains(field.name()); });
}

} // namespace

SyncUploads::SyncUploads(const CommandContext &context, const MailFolder &folder, CollectionState &state,
    const WbxmlNode &collection)
    : mContext(context)
    , mFolder(folder)
    , mState(state)
    , mCollection(collection)
{
}

QVector<WbxmlNode> SyncUploads::run()
{
    QVector<WbxmlNode> responses;
    const WbxmlNode commands = mCollection.at(QStringLiteral("Commands"));
    for (const WbxmlNode &command : commands.children()) {
        ++mCount;
        WbxmlNode response;
        if (command.tag() == QLatin1String("Add"))
            response = add(command);
        else if (command.tag() == QLatin1String("Change"))
            response = change(command);
        else if (command.tag() == QLatin1String("Delete"))
            response = remove(command);
        else if (command.tag() == QLatin1String("Fetch"))
            response = fetch(command);
        if (!response.isNull())
            responses.append(response);
    }
    // As with something that it never heard of: the item comes down once more, with the references.
    for (const QString &serverId : qAsConst(mWithNewFiles))
        mState.known.insert(serverId, ItemState());
    return responses;
}

int SyncUploads::forcedStatus(const QString &id) const
{
    const Override::Status &forced = mContext.answer.mItemStatus;
    return forced.applies(id) ? forced.value : 0;
}

int SyncUploads::statusBefore(const QString &id) const
{
    const int forced = forcedStatus(id);
    if (forced != 0)
        return forced;
    return mContext.mailbox.isReadOnly(mFolder.id) ? int(BadItem) : 0;
}

WbxmlNode SyncUploads::answer(const QString &element, const QString &serverId, int status)
{
    WbxmlNode node(element);
    node.append(QStringLiteral("ServerId"), serverId);
    node.append(QStringLiteral("Status"), status);
    return node;
}

WbxmlNode SyncUploads::refusal(const WbxmlNode &command, int status)
{
    if (status == Success)
        return WbxmlNode();
    WbxmlNode node(command.name());
    node.append(QStringLiteral("ServerId"), command.text(QStringLiteral("ServerId")));
    if (command.has(instanceElement))
        node.append(instanceElement, command.text(instanceElement));
    node.append(QStringLiteral("Status"), status);
    return node;
}

void SyncUploads::rememberFiles(const QString &serverId, const WbxmlNode &data)
{
    if (data.has(QStringLiteral("AirSyncBase:Attachments/Add")))
        mWithNewFiles.insert(serverId);
}

QVector<WbxmlNode> SyncUploads::filesOf(const QString &serverId) const
{
    const ItemPtr item = mContext.mailbox.item(serverId);
    const ItemShape shape { mContext.version(), serverId, false, mState.options, nullptr };
    const WbxmlNode all(QStringLiteral("AirSync:ApplicationData"), item->elements(shape));
    return all.all(QStringLiteral("AirSyncBase:Attachments"));
}

ItemPtr SyncUploads::newItem(const WbxmlNode &data) const
{
    const QString className = itemClassOf(mFolder.type);
    if (className == QLatin1String("Contacts"))
        return ContactItem::fromUpload(data, uploadShape());
    if (className == QLatin1String("Calendar"))
        return EventItem::fromUpload(data, uploadShape());
    if (className != QLatin1String("Email"))
        return std::make_shared<NodeItem>(className, data.children());
    const bool isDraft = mFolder.type == DraftsFolder && mContext.version() >= Version160;
    return isDraft ? Email::fromUpload(data, uploadShape()) : nullptr;
}

WbxmlNode SyncUploads::add(const WbxmlNode &command)
{
    const QString clientId = command.text(QStringLiteral("ClientId"));
    int status = statusBefore(clientId);
    QString serverId = mState.added.value(clientId);
    if (status == 0 && serverId.isEmpty()) {
        const ItemPtr item = newItem(command.at(QStringLiteral("ApplicationData")));
        serverId = mContext.mailbox.addItem(mFolder.id, item);
        if (item)
            mState.added.insert(clientId, serverId);
        else
            status = BadItem;
    }
    if (status == 0) {
        // Also for one that came before: the client may have lost the answer.
        if (const ItemPtr item = mContext.mailbox.item(serverId))
            mState.known.insert(serverId, item->state());
        rememberFiles(serverId, command.at(QStringLiteral("ApplicationData")));
        status = Success;
    }
    WbxmlNode node(QStringLiteral("AirSync:Add"));
    node.append(QStringLiteral("ClientId"), clientId);
    if (status == Success)
        node.append(QStringLiteral("ServerId"), serverId);
    node.append(QStringLiteral("Status"), status);
    if (status == Success && mWithNewFiles.contains(serverId))
        node.append(WbxmlNode(QStringLiteral("AirSync:ApplicationData"), filesOf(serverId)));
    return node;
}

WbxmlNode SyncUploads::change(const WbxmlNode &command)
{
    const int refused = statusBefore(command.text(QStringLiteral("ServerId")));
    return refusal(command, refused ? refused : applyChange(command));
}

bool SyncUploads::isHere(const QString &serverId) const
{
    return serverId.section(QLatin1Char(':'), 0, 0) == mFolder.id && mContext.mailbox.item(serverId);
}

int SyncUploads::applyChange(const WbxmlNode &command)
{
    const QString serverId = command.text(QStringLiteral("ServerId"));
    if (!isHere(serverId) || !mState.known.contains(serverId))
        return NotFound;
    const WbxmlNode data = command.at(QStringLiteral("ApplicationData"));
    const ItemPtr item = mContext.mailbox.item(serverId);
    const bool isDraft = mFolder.type == DraftsFolder && mContext.version() >= Version160;
    if (item->className() == QLatin1String("Email") && !isDraft && !changesMarksAlone(data))
        return BadItem;
    const ItemPtr changed = command.has(instanceElement)
        ? item->withInstance(command.text(instanceElement), data, uploadShape())
        : item->withChanges(data, uploadShape());
    const int status = replace(serverId, item, changed);
    if (status == Success)
        rememberFiles(serverId, data);
    return status;
}

int SyncUploads::replace(const QString &serverId, const ItemPtr &item, const ItemPtr &changed)
{
    if (!changed)
        return BadItem;
    const ItemState now = item->state();
    // What the device did itself is no conflict, though it lost the answer.
    const bool isOwn = mState.lastChanges.contains(serverId) && mState.lastChanges.value(serverId) == now;
    ItemState known = isOwn ? now : mState.known.value(serverId);
    const ItemState wanted = changed->state();
    if (mState.options.conflict != ClientWins && isInConflict(known, now, wanted))
        return Conflict;
    for (auto field = wanted.begin(); field != wanted.end(); ++field) {
        if (now.value(field.key()) != field.value())
            known.insert(field.key(), field.value());
    }
    // With nothing left to tell, the device shares the item's own map.
    mState.known.insert(serverId, known == wanted ? wanted : known);
    mContext.mailbox.replaceItem(serverId, changed);
    mChanged.insert(serverId, wanted);
    return Success;
}

WbxmlNode SyncUploads::remove(const WbxmlNode &command)
{
    const QString serverId = command.text(QStringLiteral("ServerId"));
    const int refused = statusBefore(serverId);
    if (refused != 0)
        return refusal(command, refused);
    return refusal(command, command.has(instanceElement) ? deleteInstance(command) : applyDelete(serverId));
}

int SyncUploads::deleteInstance(const WbxmlNode &command)
{
    const QString serverId = command.text(QStringLiteral("ServerId"));
    if (!isHere(serverId) || !mState.known.contains(serverId))
        return NotFound;
    const ItemPtr item = mContext.mailbox.item(serverId);
    return replace(serverId, item, item->withoutInstance(command.text(instanceElement), uploadShape()));
}

int SyncUploads::applyDelete(const QString &serverId)
{
    // What the client adds under the same name from now on is another item.
    mState.added.remove(mState.added.key(serverId));
    if (mState.lastDeletes.contains(serverId)) {
        // The client lost the answer to its delete and repeats it.
        mState.known.remove(serverId);
        mDeleted.insert(serverId);
        return Success;
    }
    if (!isHere(serverId))
        return NotFound;
    const QString bin = mContext.mailbox.folderOfType(DeletedItemsFolder).id;
    const bool asMove = mCollection.text(QStringLiteral("DeletesAsMoves")) != QLatin1String("0");
    if (asMove && !bin.isEmpty() && bin != mFolder.id)
        mContext.mailbox.move(serverId, bin);
    else
        mContext.mailbox.remove(serverId);
    mState.known.remove(serverId);
    mDeleted.insert(serverId);
    return Success;
}

WbxmlNode SyncUploads::fetch(const WbxmlNode &command)
{
    const QString serverId = command.text(QStringLiteral("ServerId"));
    const int forced = forcedStatus(serverId);
    const ItemPtr item = mContext.mailbox.item(serverId);
    if (forced || !item)
        return answer(QStringLiteral("AirSync:Fetch"), serverId, forced ? forced : NotFound);
    ItemShape shape { mContext.version(), serverId, mFolder.type == DraftsFolder, mState.options, nullptr };
    // The published schema has no body part here.
    shape.options.bodyParts.clear();
    WbxmlNode node = answer(QStringLiteral("AirSync:Fetch"), serverId, Success);
    node.append(WbxmlNode(QStringLiteral("AirSync:ApplicationData"), item->elements(shape)));
    return node;
}

} // namespace Simulator
