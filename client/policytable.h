// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/failedpolicymap.h"

#include <QJsonArray>
#include <QStringList>
#include <QVariantMap>

/**
 * The policies of a server in words: what each asks for, and what helps where the device does not meet it.
 * The daemon tells the document by the published names of its values, and what the device fails by numbers.
 */
namespace PolicyTable {

/** What the device makes of a document; the server was told the same. */
enum class Verdict { Met, PartlyMet, CriticalFailed };

Verdict verdictOf(const FailedPolicyMap &failed);

/**
 * A row for each value: its published "name", the same in words as "policy", the "value" and what it
 * "demands" in words, whether the device has "met" it, and what would "help" if not. What is failed without a
 * value in the document stands at the end.
 */
QJsonArray describe(const QVariantMap &document, const FailedPolicyMap &failed);

/** What the device fails, in words. */
QStringList failedPolicies(const FailedPolicyMap &failed);

} // namespace PolicyTable
