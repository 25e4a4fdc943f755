// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QJsonObject>
#include <QString>
#include <QVariantMap>

/** What the daemon tells of an account's push, made readable. */
namespace PushState {

/**
 * "enabled", "heartbeat", "folders", "lastAnswer", "lastAnswerName", "lastAnswerAt", "nextStep",
 * "nextStepName" and "nextStepAt", as far as the daemon told them; heartbeat in seconds.
 */
QJsonObject describe(const QVariantMap &state);

/** The same in a line: "on, heartbeat 300 s, folders: 5, last answer: changes, next: await changes". */
QString sentence(const QVariantMap &state);

} // namespace PushState
