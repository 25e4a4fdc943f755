// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/containers/easattachmentcontainer.h"
#include "easitems/containers/ientitybase.h"

/** The database row of an event's attachment, with the fields of the attachment itself. A plain value. */
class AttachmentEntity final : public IEntityBase<AttachmentEntity>, public EasAttachmentContainer
{
public:
    AttachmentEntity() = default;
    explicit AttachmentEntity(const EasAttachmentContainer &attachment)
        : EasAttachmentContainer(attachment)
    {
    }
    AttachmentEntity(const AttachmentEntity &) = default;

    AttachmentEntity &operator=(const AttachmentEntity &other) override
    {
        EasAttachmentContainer::operator=(other);
        return *this;
    }

    void clear() override { EasAttachmentContainer::clear(); }
};
