// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/containers/easprovisiondoc.h"

#include "easitems/containers/provisiondocfields.h"

#include <algorithm>

bool EasProvisionDoc::operator==(const EasProvisionDoc &other) const
{
    const QVector<ProvisionDocField> &fields = ProvisionDocFields::all();
    return std::all_of(fields.cbegin(), fields.cend(),
        [this, &other](const ProvisionDocField &field) { return field.value(*this) == field.value(other); });
}
