// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QObject>

/** Small enumerations that the item classes share. */
class EasItemsCommon
{
    Q_GADGET

public:
    enum TBoolean { TUndefined = -1, TFalse = 0, TTrue = 1 };
    Q_ENUM(TBoolean)

    enum NativeBodyType {
        NativeBodyTypeUnspecified = -1,
        PlainTextNativeBodyType = 1,
        HTMLNativeBodyType = 2,
        RTFNativeBodyType = 3
    };
    Q_ENUM(NativeBodyType)

    enum UserResponseType {
        UserResponseUndefined = 0,
        UserResponseAccepted = 1,
        UserResponseTentativelyAccepted = 2,
        UserResponseDeclined = 3,
        UserResponseMin = UserResponseAccepted,
        UserResponseMax = UserResponseDeclined
    };
    Q_ENUM(UserResponseType)
};
