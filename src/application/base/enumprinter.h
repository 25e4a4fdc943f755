// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QDebug>
#include <QMetaEnum>

/**
 * Prints a registered enumeration as its scope, "::" and the key, or as a bare number where no key exists.
 * (Qt's own printer names the enumeration around an unknown number.)
 */
namespace EnumPrinter {

QDebug print(QDebug debug, const QMetaEnum &meta, int value);

template <typename Enum> QDebug print(QDebug debug, Enum value)
{
    return print(debug, QMetaEnum::fromType<Enum>(), static_cast<int>(value));
}

} // namespace EnumPrinter
