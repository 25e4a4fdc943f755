// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/itemscommon.h"

#include <QDebug>
#include <QObject>

/** Small enumerations that the item classes share. */
class EasItemsCommon
{
    Q_GADGET

public:
    enum TBoolean : int { TUndefined = -1, TFalse = 0, TTrue = 1 };
    Q_ENUM(TBoolean)

    enum NativeBodyType : int {
        NativeBodyTypeUnspecified = -1,
        PlainTextNativeBodyType = 1,
        HTMLNativeBodyType = 2,
        RTFNativeBodyType = 3
    };
    Q_ENUM(NativeBodyType)

    enum UserResponseType : int {
        UserResponseUndefined = 0,
        UserResponseAccepted = 1,
        UserResponseTentativelyAccepted = 2,
        UserResponseDeclined = 3,
        UserResponseMin = UserResponseAccepted,
        UserResponseMax = UserResponseDeclined
    };
    Q_ENUM(UserResponseType)

    /** Class of an item; None until something tells. */
    using ItemDataType = ItemsCommon::ItemDataType;
};

QDebug operator<<(QDebug debug, EasItemsCommon::TBoolean value);
QDebug operator<<(QDebug debug, EasItemsCommon::NativeBodyType value);
QDebug operator<<(QDebug debug, EasItemsCommon::UserResponseType value);
