// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/containers/easattachmentcontainer.h"
#include "easitems/containers/easbodycontainer.h"
#include "easitems/fields/fieldtable.h"

/** The fields of bodies and attachments, which mail, events and contacts share. */
namespace SharedFields {

/** What is logged for a number or a flag of a body that does not convert; the item classes differ. */
struct BodyRefusals
{
    const char *type;
    const char *size;
    const char *truncated;
};

FieldTable<EasBodyContainer> bodyFields(const BodyRefusals &refusals);

const FieldTable<EasAttachmentContainer> &attachmentFields();

/** Whether a body goes out: it does if its type is set. */
bool bodyIsSent(const EasBodyContainer &body);

} // namespace SharedFields
