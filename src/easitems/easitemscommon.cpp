// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/easitemscommon.h"

#include "application/base/enumprinter.h"

QDebug operator<<(QDebug debug, EasItemsCommon::TBoolean value)
{
    return EnumPrinter::print(debug, value);
}

QDebug operator<<(QDebug debug, EasItemsCommon::NativeBodyType value)
{
    return EnumPrinter::print(debug, value);
}

QDebug operator<<(QDebug debug, EasItemsCommon::UserResponseType value)
{
    return EnumPrinter::print(debug, value);
}
