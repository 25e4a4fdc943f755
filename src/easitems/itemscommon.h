// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QDebug>
#include <QObject>

/** The item enumerations under the scope that logs name them by, and the kind of an item. */
class ItemsCommon
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

    enum ItemDataType { None = 0, Email = 1, Contact = 2, Calendar = 3 };
    Q_ENUM(ItemDataType)
};

QDebug operator<<(QDebug debug, ItemsCommon::TBoolean value);
QDebug operator<<(QDebug debug, ItemsCommon::NativeBodyType value);
QDebug operator<<(QDebug debug, ItemsCommon::UserResponseType value);
QDebug operator<<(QDebug debug, ItemsCommon::ItemDataType value);
