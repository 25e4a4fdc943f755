// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QMap>
#include <QMetaType>
#include <QVariant>

class QDBusArgument;

/** From the number of a policy to the value that the device does not meet; "a{iv}" on the bus. */
using FailedPolicyMap = QMap<int, QVariant>;

QDBusArgument &operator<<(QDBusArgument &argument, const FailedPolicyMap &policies);
const QDBusArgument &operator>>(const QDBusArgument &argument, FailedPolicyMap &policies);

Q_DECLARE_METATYPE(FailedPolicyMap)
