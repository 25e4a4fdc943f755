// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/alwaysonstate.h"

namespace {

QString stepName(AlwaysOnState::Step step)
{
    switch (step) {
    case AlwaysOnState::Step::Off:
        break;
    case AlwaysOnState::Step::Ping:
        return QStringLiteral("ping");
    case AlwaysOnState::Step::Sync:
        return QStringLiteral("sync");
    case AlwaysOnState::Step::Pause:
        return QStringLiteral("pause");
    case AlwaysOnState::Step::Network:
        return QStringLiteral("network");
    case AlwaysOnState::Step::Stopped:
        return QStringLiteral("stopped");
    }
    return QStringLiteral("off");
}

} // namespace

QVariantMap AlwaysOnState::toMap() const
{
    QVariantMap map {
        { QStringLiteral("enabled"), isEnabled },
        { QStringLiteral("heartbeat"), heartbeat },
        { QStringLiteral("folders"), folders },
        { QStringLiteral("nextStep"), stepName(nextStep) },
    };
    if (lastAnswer) {
        map.insert(QStringLiteral("lastAnswer"), *lastAnswer);
        map.insert(QStringLiteral("lastAnswerAt"), lastAnswerAt.toSecsSinceEpoch());
    }
    if (nextStepAt.isValid())
        map.insert(QStringLiteral("nextStepAt"), nextStepAt.toSecsSinceEpoch());
    return map;
}
