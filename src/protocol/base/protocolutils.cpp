// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/base/protocolutils.h"

#include <QObject>
#include <QVariant>

namespace {
constexpr char AccountProperty[] = "easAccountId";
}

void ProtocolUtils::setAccountId(QObject *object, EasAccountId accountId)
{
    if (object)
        object->setProperty(AccountProperty, QVariant::fromValue<qulonglong>(accountId));
}

EasAccountId ProtocolUtils::accountId(const QObject *object)
{
    return object ? object->property(AccountProperty).toULongLong() : 0;
}
