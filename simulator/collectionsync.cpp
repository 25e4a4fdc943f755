// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/collectionsync.h"

#include "simulator/protocolversion.h"
#include "simulator/syncuploads.h"

#include <algorithm>

namespace Simulator {
namespace {

enum Status { Success = 1, UnknownKey = 3, ProtocolError = 4, FolderGone = 12 };

bool isFiltered(const ItemPtr &item, const QDateTime &start)
{
    return start.isValid() && item->date().isValid() && item->date() < start;
}

/** What the device knows and the folder no longer holds, in order. */
QVector<QString> unknownTo(const QVector<ItemEntry> &entries, const KnownItems &known)
{
    QSet<QString> present;
    for (const ItemEntry &entry : entries)
        present.insert(entry.serverId);
    QVector<QString> missing;
    for (auto item = known.all().constBegin(); item != known.all().constEnd(); ++item) {
        if (!present.contains(item.key()))
            missing.append(item.key());
    }
    std::sort(missing.begin(), missing.end());
    return missing;
}

/** What a device sees of the folder: among deleted messages there may be events that it does not. */
QVector<ItemEntry> itemsOfTheClass(const MailFolder &folder, const Mailbox &mailbox)
{
    const QString className = itemClassOf(folder.type);
    QVector<ItemEntry> entries = mailbox.items(folder.id);
    entries.erase(std::remove_if(entries.begin(), entries.end(),
                      [&className](const ItemEntry &entry) { return entry.item->className() != className; }),
        entries.end());
    return entries;
}

} // namespace

struct CollectionSync::Difference
{
    QVector<QString> deleted;
    QVector<QString> filtered;
    QVector<ItemEntry> changed;
    QVector<ItemEntry> added;

    int size() const { return deleted.size() + filtered.size() + changed.size() + added.size(); }
};

QString itemClassOf(int folderType)
{
    switch (folderType) {
    case TasksFolder:
    case 15:
        return QStringLiteral("Tasks");
    case CalendarFolder:
    case 13:
        return QStringLiteral("Calendar");
    case ContactsFolder:
    case 14:
        return QStringLiteral("Contacts");
    case 10:
    case 17:
        return QStringLiteral("Notes");
    default:
        return QStringLiteral("Email");
    }
}

CollectionSync::CollectionSync(const CommandContext &context, const WbxmlNode &request, int window)
    : mContext(context)
    , mRequest(request)
    , mId(request.text(QStringLiteral("CollectionId")))
    , mFolder(context.mailbox.folder(mId))
    , mWindow(window)
{
}

WbxmlNode CollectionSync::run()
{
    const QString key = mRequest.text(QStringLiteral("SyncKey"));
    if (mContext.answer.mCollectionStatus.applies(mId))
        return statusReply(mContext.answer.mCollectionStatus.value, key);
    const bool lacksClass = mContext.version() == Version120 && !mRequest.has(QStringLiteral("Class"));
    if (lacksClass)
        mContext.failures.append(QStringLiteral("a collection without the Class that 12.0 needs"));
    if (key.isEmpty() || lacksClass)
        return statusReply(ProtocolError, key);
    if (mFolder.id.isEmpty())
        return statusReply(FolderGone, key);
    CollectionState &state = mContext.device.collections[mId];
    if (key == QLatin1String("0"))
        return startAfresh(state);
    if (key == state.key)
        return proceed(state, key);
    if (key != state.previousKey)
        return statusReply(UnknownKey, QStringLiteral("0"));
    if (mRequest == state.lastRequest)
        return state.lastReply;
    // The client lost the last answer and now asks for something else: back to what it knew.
    state.known.goBack();
    return proceed(state, key);
}

WbxmlNode CollectionSync::statusReply(int status, const QString &key) const
{
    WbxmlNode reply(QStringLiteral("AirSync:Collection"));
    if (mContext.version() <= Version121)
        reply.append(QStringLiteral("Class"), itemClassOf(mFolder.type));
    reply.append(QStringLiteral("SyncKey"), key);
    reply.append(QStringLiteral("CollectionId"), mId);
    reply.append(QStringLiteral("Status"), status);
    return reply;
}

WbxmlNode CollectionSync::startAfresh(CollectionState &state)
{
    state = CollectionState();
    state.options = SyncOptions::fromNode(mRequest.at(QStringLiteral("Options")));
    state.supported = supportedElements();
    state.key = mContext.nextKey();
    return statusReply(Success, state.key);
}

WbxmlNode CollectionSync::proceed(CollectionState &state, const QString &key)
{
    if (mRequest.has(QStringLiteral("Options")))
        state.options = SyncOptions::fromNode(mRequest.at(QStringLiteral("Options")));
    const QSet<QString> lastDeletes = state.lastDeletes;
    const QHash<QString, ItemState> lastChanges = state.lastChanges;
    if (key == state.key) {
        // The device has the answer to them.
        state.lastDeletes.clear();
        state.lastChanges.clear();
    }
    state.known.mark();
    SyncUploads uploads(mContext, mFolder, state, mRequest);
    const QVector<WbxmlNode> responses = uploads.run();
    bool more = false;
    const QVector<WbxmlNode> commands = wantsChanges() ? changes(state, &more) : QVector<WbxmlNode>();
    mChangeCount = commands.size();
    mIsSilent =
        responses.isEmpty() && commands.isEmpty() && uploads.count() == 0 && key == state.key && !more;
    if (mIsSilent) {
        // Nothing changed, so the way back from the last answer stays as well.
        state.lastDeletes = lastDeletes;
        state.lastChanges = lastChanges;
        return statusReply(Success, key);
    }
    state.known.settle();
    state.previousKey = key;
    state.lastDeletes = uploads.deleted();
    state.lastChanges = uploads.changed();
    state.key = mContext.nextKey();
    WbxmlNode reply = statusReply(Success, state.key);
    if (more)
        reply.append(QStringLiteral("MoreAvailable"));
    if (!responses.isEmpty())
        reply.append(WbxmlNode(QStringLiteral("AirSync:Responses"), responses));
    if (!commands.isEmpty())
        reply.append(WbxmlNode(QStringLiteral("AirSync:Commands"), commands));
    state.lastRequest = mRequest;
    state.lastReply = reply;
    return reply;
}

std::optional<QSet<QString>> CollectionSync::supportedElements() const
{
    const WbxmlNode supported = mRequest.at(QStringLiteral("Supported"));
    if (supported.isNull())
        return std::nullopt;
    QSet<QString> names;
    for (const WbxmlNode &element : supported.children())
        names.insert(element.name());
    return names;
}

bool CollectionSync::wantsChanges() const
{
    return mRequest.text(QStringLiteral("GetChanges")) != QLatin1String("0");
}

WbxmlNode CollectionSync::itemNode(
    const QString &element, const ItemEntry &entry, const QVector<WbxmlNode> &fields) const
{
    WbxmlNode node(element);
    node.append(QStringLiteral("ServerId"), entry.serverId);
    node.append(WbxmlNode(QStringLiteral("AirSync:ApplicationData"), fields));
    return node;
}

CollectionSync::Difference CollectionSync::differenceOf(
    const MailFolder &folder, const Mailbox &mailbox, const CollectionState &state)
{
    const QVector<ItemEntry> entries = itemsOfTheClass(folder, mailbox);
    const QDateTime start = state.options.filterStart(QDateTime::currentDateTimeUtc());
    Difference difference;
    int present = 0;
    for (const ItemEntry &entry : entries) {
        const ItemState *known = state.known.find(entry.serverId);
        present += known ? 1 : 0;
        if (!known) {
            if (!isFiltered(entry.item, start))
                difference.added.append(entry);
        } else if (isFiltered(entry.item, start)) {
            difference.filtered.append(entry.serverId);
        } else if (*known != entry.item->state()) {
            difference.changed.append(entry);
        }
    }
    if (present < state.known.all().size())
        difference.deleted = unknownTo(entries, state.known);
    return difference;
}

bool hasNews(const MailFolder &folder, const Mailbox &mailbox, const CollectionState &state)
{
    return CollectionSync::differenceOf(folder, mailbox, state).size() > 0;
}

QVector<WbxmlNode> CollectionSync::changes(CollectionState &state, bool *more)
{
    Difference difference = differenceOf(mFolder, mContext.mailbox, state);
    QVector<WbxmlNode> commands = removals(difference, state);
    int room = mWindow - commands.size();
    ItemShape shape { mContext.version(), QString(), mFolder.type == DraftsFolder, state.options, nullptr };
    const int changedCount = std::min(room, difference.changed.size());
    for (const ItemEntry &entry : difference.changed.mid(0, changedCount)) {
        shape.serverId = entry.serverId;
        const QVector<WbxmlNode> fields =
            entry.item->changedElements(state.known.value(entry.serverId), shape);
        state.known.insert(entry.serverId, entry.item->state());
        // Some changes this version cannot express.
        if (!fields.isEmpty())
            commands.append(itemNode(QStringLiteral("AirSync:Change"), entry, fields));
    }
    room -= changedCount;
    const int addedCount = std::min(room, difference.added.size());
    std::partial_sort(difference.added.begin(), difference.added.begin() + addedCount, difference.added.end(),
        [](const ItemEntry &one, const ItemEntry &other) { return one.item->date() > other.item->date(); });
    for (const ItemEntry &entry : difference.added.mid(0, addedCount)) {
        shape.serverId = entry.serverId;
        commands.append(itemNode(QStringLiteral("AirSync:Add"), entry, entry.item->elements(shape)));
        state.known.insert(entry.serverId, entry.item->state());
    }
    *more = difference.size() > mWindow;
    return commands;
}

QVector<WbxmlNode> CollectionSync::removals(const Difference &difference, CollectionState &state) const
{
    QVector<WbxmlNode> commands;
    const auto append = [&](const QVector<QString> &ids, const QString &element) {
        const int count = std::min(mWindow - commands.size(), ids.size());
        for (const QString &id : ids.mid(0, count)) {
            WbxmlNode node(element);
            node.append(QStringLiteral("ServerId"), id);
            commands.append(node);
            state.known.remove(id);
        }
    };
    append(difference.deleted, QStringLiteral("AirSync:Delete"));
    append(difference.filtered, QStringLiteral("AirSync:SoftDelete"));
    return commands;
}

} // namespace Simulator
