// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/algorithms/fieldtable.h"
#include "easitems/eascontactsitem.h"

/** The fields of a contact. */
namespace ContactsFields {

const FieldTable<EasContactsItem> &itemFields();
const FieldTable<EasBodyContainer> &bodyFields();

} // namespace ContactsFields
