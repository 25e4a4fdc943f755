// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "support/vcard.h"

#include <QMap>
#include <QString>

class EasContactsItem;

/** A contact as "field" and value, from either side; a field without a value is not there. */
namespace ContactListing {

QMap<QString, QString> ofItem(const EasContactsItem &item);
QMap<QString, QString> ofCard(const VCard &card);

} // namespace ContactListing
