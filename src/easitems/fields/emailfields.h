// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/easemailitem.h"
#include "easitems/fields/fieldtable.h"

/** The fields of a mail item and of what is nested in it. */
namespace EmailFields {

const FieldTable<EasEmailItem> &itemFields();
const FieldTable<EasBodyContainer> &bodyFields();
const FieldTable<EasBodyPartContainer> &bodyPartFields();
const FieldTable<EasFlagContainer> &flagFields();
const FieldTable<EasMeetingRequestContainer> &meetingRequestFields();
/** Of the recurrences of a meeting request. */
const FieldTable<EasRecurrenceContainer> &recurrenceFields();

} // namespace EmailFields
