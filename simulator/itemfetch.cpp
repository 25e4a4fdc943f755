// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/itemfetch.h"

#include "simulator/filereference.h"

#include <algorithm>
#include <optional>

namespace Simulator {
namespace {

enum Status { Success = 1, NotFound = 6, BadRange = 8, UnknownStore = 9, NoAttachment = 15 };
const char longIdPrefix[] = "Rg";

struct Range
{
    int first = 0;
    int last = -1;
};

/** The bytes that "first-last" names, as far as there are any; nothing for a text that is no range. */
std::optional<Range> rangeOf(const QString &text, int size)
{
    bool firstOk = false;
    bool lastOk = false;
    const int first = text.section(QLatin1Char('-'), 0, 0).toInt(&firstOk);
    const int last = text.section(QLatin1Char('-'), 1).toInt(&lastOk);
    if (!firstOk || !lastOk || first < 0 || last < first || first >= size)
        return std::nullopt;
    return Range { first, std::min(last, size - 1) };
}

} // namespace

QString longId(const QString &serverId)
{
    return QLatin1String(longIdPrefix)
        + QString::fromLatin1(
            serverId.toUtf8().toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals));
}

QString serverIdOfLongId(const QString &longId)
{
    const QByteArray encoded = longId.mid(int(sizeof(longIdPrefix)) - 1).toLatin1();
    return QString::fromUtf8(QByteArray::fromBase64(encoded, QByteArray::Base64UrlEncoding));
}

ItemFetch::ItemFetch(const CommandContext &context, const WbxmlNode &fetch, QVector<QByteArray> *parts)
    : mContext(context)
    , mFetch(fetch)
    , mParts(parts)
{
}

WbxmlNode ItemFetch::run()
{
    const QString reference = mFetch.text(QStringLiteral("AirSyncBase:FileReference"));
    const QString wantedLongId = mFetch.text(QStringLiteral("Search:LongId"));
    const QString serverId = wantedLongId.isEmpty() ? mFetch.text(QStringLiteral("AirSync:ServerId"))
                                                    : serverIdOfLongId(wantedLongId);
    const Override::Status &forced = mContext.answer.mItemStatus;
    if (forced.applies(reference.isEmpty() ? serverId : reference))
        return reply(forced.value);
    if (mFetch.text(QStringLiteral("Store")).compare(QLatin1String("Mailbox"), Qt::CaseInsensitive) != 0)
        return reply(UnknownStore);
    return reference.isEmpty() ? fetchItem(serverId) : fetchAttachment(reference);
}

WbxmlNode ItemFetch::reply(int status) const
{
    WbxmlNode node(QStringLiteral("ItemOperations:Fetch"));
    node.append(QStringLiteral("Status"), status);
    static const QStringList echoed { QStringLiteral("AirSync:CollectionId"),
        QStringLiteral("AirSync:ServerId"), QStringLiteral("Search:LongId"),
        QStringLiteral("AirSyncBase:FileReference") };
    for (const QString &name : echoed) {
        if (mFetch.has(name))
            node.append(name, mFetch.text(name));
    }
    return node;
}

WbxmlNode ItemFetch::fetchItem(const QString &serverId)
{
    const ItemPtr item = mContext.mailbox.item(serverId);
    const QString folderId = serverId.section(QLatin1Char(':'), 0, 0);
    const QString wantedFolder = mFetch.text(QStringLiteral("AirSync:CollectionId"));
    if (!item || (!wantedFolder.isEmpty() && wantedFolder != folderId))
        return reply(NotFound);
    const WbxmlNode options = mFetch.at(QStringLiteral("Options"));
    SyncOptions wanted = SyncOptions::fromNode(options);
    // What the device once asked for in a Sync of the folder holds until it asks for something else.
    const SyncOptions kept = mContext.device.collections.value(folderId).options;
    if (wanted.bodies.isEmpty())
        wanted.bodies = kept.bodies;
    if (wanted.bodyParts.isEmpty())
        wanted.bodyParts = kept.bodyParts;
    if (!options.has(QStringLiteral("AirSync:MIMETruncation")))
        wanted.mimeTruncation = kept.mimeTruncation;
    const bool isDraft = mContext.mailbox.folder(folderId).type == DraftsFolder;
    const ItemShape shape { mContext.version(), serverId, isDraft, wanted, mParts };
    WbxmlNode node = reply(Success);
    node.append(QStringLiteral("AirSync:Class"), item->className());
    node.append(WbxmlNode(QStringLiteral("ItemOperations:Properties"), item->elements(shape)));
    return node;
}

WbxmlNode ItemFetch::fetchAttachment(const QString &reference)
{
    const FileReference parsed = FileReference::parse(reference);
    const ItemPtr item = mContext.mailbox.item(parsed.serverId);
    const auto attachment = item ? item->attachment(parsed.attachment) : std::nullopt;
    return attachment ? attachmentReply(*attachment) : reply(NoAttachment);
}

WbxmlNode ItemFetch::attachmentReply(const ItemAttachment &attachment)
{
    QByteArray data = attachment.bytes;
    const QString wanted = mFetch.text(QStringLiteral("Options/Range"));
    WbxmlNode properties(QStringLiteral("ItemOperations:Properties"));
    if (!wanted.isEmpty()) {
        const std::optional<Range> range = rangeOf(wanted, data.size());
        if (!range)
            return reply(BadRange);
        properties.append(
            QStringLiteral("Range"), QStringLiteral("%1-%2").arg(range->first).arg(range->last));
        properties.append(QStringLiteral("Total"), data.size());
        data = data.mid(range->first, range->last - range->first + 1);
    }
    properties.append(QStringLiteral("AirSyncBase:ContentType"), QString::fromLatin1(attachment.contentType));
    if (mParts) {
        mParts->append(data);
        properties.append(QStringLiteral("Part"), mParts->size());
    } else {
        properties.append(QStringLiteral("Data"), QString::fromLatin1(data.toBase64()));
    }
    WbxmlNode node = reply(Success);
    node.append(properties);
    return node;
}

} // namespace Simulator
