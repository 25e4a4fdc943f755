// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/itemoperationsfetchitem.h"

EasItemsCommon::ItemDataType ItemOperationsFetchItem::getClass() const
{
    if (mClass == QLatin1String("Email")) {
        return ItemsCommon::Email;
    }
    if (mClass == QLatin1String("Contacts")) {
        return ItemsCommon::Contact;
    }
    if (mClass == QLatin1String("Calendar")) {
        return ItemsCommon::Calendar;
    }
    return ItemsCommon::None;
}

template <class Change> void ItemOperationsFetchItem::changeBody(Change change)
{
    EasBodyContainer body = mEmailItem.body();
    change(body);
    mEmailItem.setBody(body);
}

template <class Change> void ItemOperationsFetchItem::changeBodyPart(Change change)
{
    EasBodyPartContainer bodyPart = mEmailItem.bodyPart();
    change(bodyPart);
    mEmailItem.setBodyPart(bodyPart);
}

void ItemOperationsFetchItem::setBodyType(EasBodyContainer::BodyType type)
{
    changeBody([=](EasBodyContainer &body) { body.setType(type); });
}

void ItemOperationsFetchItem::setBodyData(const QString &data)
{
    changeBody([&](EasBodyContainer &body) { body.setData(data); });
}

void ItemOperationsFetchItem::setBodyPreview(const QString &preview)
{
    changeBody([&](EasBodyContainer &body) { body.setPreview(preview); });
}

void ItemOperationsFetchItem::setBodyDataSize(int size)
{
    changeBody([=](EasBodyContainer &body) { body.setEstimatedDataSize(size); });
}

void ItemOperationsFetchItem::setBodyTruncated(bool truncated)
{
    changeBody([=](EasBodyContainer &body) { body.setTruncated(truncated); });
}

void ItemOperationsFetchItem::setBodyPart(int part)
{
    changeBody([=](EasBodyContainer &body) { body.setPart(part); });
}

void ItemOperationsFetchItem::setBodyPartType(EasBodyContainer::BodyType type)
{
    changeBodyPart([=](EasBodyPartContainer &bodyPart) { bodyPart.setType(type); });
}

void ItemOperationsFetchItem::setBodyPartData(const QString &data)
{
    changeBodyPart([&](EasBodyPartContainer &bodyPart) { bodyPart.setData(data); });
}

void ItemOperationsFetchItem::setBodyPartPreview(const QString &preview)
{
    changeBodyPart([&](EasBodyPartContainer &bodyPart) { bodyPart.setPreview(preview); });
}

void ItemOperationsFetchItem::setBodyPartDataSize(int size)
{
    changeBodyPart([=](EasBodyPartContainer &bodyPart) { bodyPart.setEstimatedDataSize(size); });
}

void ItemOperationsFetchItem::setBodyPartTruncated(bool truncated)
{
    changeBodyPart([=](EasBodyPartContainer &bodyPart) { bodyPart.setTruncated(truncated); });
}

void ItemOperationsFetchItem::setBodyPartStatus(EasBodyPartContainer::BodyPartStatus status)
{
    changeBodyPart([=](EasBodyPartContainer &bodyPart) { bodyPart.setStatus(status); });
}

void ItemOperationsFetchItem::appendAttachment(const EasAttachmentContainer &attachment)
{
    mEmailItem.appendAttachment(attachment);
}
