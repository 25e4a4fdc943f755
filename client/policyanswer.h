// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/failedpolicymap.h"

#include <QJsonObject>
#include <QObject>
#include <QVariantMap>

#include <optional>

class DaemonRequest;
class Output;

/**
 * What a request for the server's policy brings: the document, what the device fails of it, and what became
 * of it. Beside its request, on the stack of a command.
 */
class PolicyAnswer : public QObject
{
    Q_OBJECT

public:
    explicit PolicyAnswer(const DaemonRequest &request);

    /** Once the request has ended; prints what has come until then. */
    void print(Output &output) const;

    /** What became of a policy, in words: "no policy", "accepted"; by the status of the request as well. */
    static QString outcomeName(int status, int policyStatus);

private:
    bool hasPolicy() const;
    QString sentence() const;
    QJsonObject facts() const;

    const DaemonRequest &mRequest;
    QVariantMap mDocument;
    FailedPolicyMap mFailed;
    /** Nothing before the request has ended, and for one that does not tell. */
    std::optional<int> mPolicyStatus;
};
