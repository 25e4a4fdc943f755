// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QStringList>

/** Addresses as clients list them in one text. */
namespace AddressList {

/**
 * The bare addresses of "Ann <ann@example.com>; \"Berg, Bo\" <bo@example.com>, c@example.com": commas,
 * semicolons and line ends part them, but not in quotes. Display names are dropped, an address that comes
 * again as well; none has a control character.
 */
QStringList addresses(const QString &text);

} // namespace AddressList
