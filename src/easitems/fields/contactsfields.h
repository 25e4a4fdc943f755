// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascontactsitem.h"
#include "easitems/fields/fieldtable.h"

/** The fields of a contact. */
namespace ContactsFields {

const FieldTable<EasContactsItem> &itemFields();
const FieldTable<EasBodyContainer> &bodyFields();

} // namespace ContactsFields
