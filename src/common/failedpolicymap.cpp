// SPDX-License-Identifier: LGPL-2.1-or-later
#include "common/failedpolicymap.h"

#include <QDBusArgument>
#include <QDBusVariant>

// QtDBus has operators for maps of its own, but a value in them would have to be a QDBusVariant already.
QDBusArgument &operator<<(QDBusArgument &argument, const FailedPolicyMap &policies)
{
    argument.beginMap(QMetaType::Int, qMetaTypeId<QDBusVariant>());
    for (auto policy = policies.cbegin(); policy != policies.cend(); ++policy) {
        argument.beginMapEntry();
        argument << policy.key() << QDBusVariant(policy.value());
        argument.endMapEntry();
    }
    argument.endMap();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, FailedPolicyMap &policies)
{
    policies.clear();
    argument.beginMap();
    while (!argument.atEnd()) {
        int policy = 0;
        QDBusVariant value;
        argument.beginMapEntry();
        argument >> policy >> value;
        argument.endMapEntry();
        policies.insert(policy, value.variant());
    }
    argument.endMap();
    return argument;
}
