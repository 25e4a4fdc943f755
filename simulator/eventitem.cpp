// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/eventitem.h"

#include "simulator/eventshape.h"
#include "simulator/eventupload.h"

#include <QUuid>

namespace Simulator {
namespace {

std::optional<ItemAttachment> find(const QVector<EventAttachment> &attachments, int number)
{
    for (const EventAttachment &attachment : attachments) {
        if (attachment.number != number)
            continue;
        ItemAttachment found;
        found.name = attachment.name;
        found.contentType = attachment.contentType.isEmpty() ? QByteArray("application/octet-stream")
                                                             : attachment.contentType;
        found.bytes = attachment.bytes;
        found.contentId = attachment.contentId;
        found.isInline = attachment.isInline;
        return found;
    }
    return std::nullopt;
}

} // namespace

EventItem::EventItem(const Event &event)
    : mEvent(event)
{
    if (mEvent.uid.isEmpty())
        mEvent.uid = QUuid::createUuid().toString(QUuid::Id128).toUpper();
    if (!mEvent.stamp.isValid())
        mEvent.stamp = QDateTime::currentDateTimeUtc();
}

ItemPtr EventItem::fromUpload(const WbxmlNode &applicationData, const UploadShape &upload)
{
    return orNull(EventUpload(upload).added(applicationData));
}

QDateTime EventItem::date() const
{
    // A series never grows too old for a filter.
    return mEvent.rule ? QDateTime() : mEvent.end;
}

QVector<WbxmlNode> EventItem::elements(const ItemShape &shape) const
{
    return EventShape::elements(mEvent, shape);
}

ItemPtr EventItem::withChanges(const WbxmlNode &applicationData, const UploadShape &upload) const
{
    return orNull(EventUpload(upload).changed(mEvent, applicationData));
}

ItemPtr EventItem::withInstance(
    const QString &instanceId, const WbxmlNode &applicationData, const UploadShape &upload) const
{
    return orNull(EventUpload(upload).changedInstance(mEvent, instanceId, applicationData));
}

ItemPtr EventItem::withoutInstance(const QString &instanceId, const UploadShape &upload) const
{
    return orNull(EventUpload(upload).deletedInstance(mEvent, instanceId));
}

std::optional<ItemAttachment> EventItem::attachment(int number) const
{
    std::optional<ItemAttachment> found = find(mEvent.attachments, number);
    for (const EventException &exception : mEvent.exceptions) {
        if (!found && exception.own.contains(QStringLiteral("Attachments")))
            found = find(exception.details.attachments, number);
    }
    return found;
}

} // namespace Simulator
