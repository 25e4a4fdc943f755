// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easrequeststatus.h"

/**
 * How a request stands: the status of its last step, and beside it a failure of some part of the work, which
 * lets the rest go on but must not end as a success.
 */
class Outcome
{
public:
    int status() const { return mStatus; }
    void setStatus(int status) { mStatus = status; }
    /** A failed part of the work; 0 notes nothing, and the last one counts. */
    void noteFailure(int status)
    {
        if (status != EasRequestStatus::RequestStatusSuccess)
            mFailure = status;
    }
    /** 0 if no part failed. */
    int failure() const { return mFailure; }
    void forgetFailure() { mFailure = EasRequestStatus::RequestStatusSuccess; }

    /** Whether the last step went well: 0, or the server's own word for it, 1. */
    bool isSuccess() const { return isSuccess(mStatus); }
    static constexpr bool isSuccess(int status)
    {
        return status == EasRequestStatus::RequestStatusSuccess || status == ServerSuccess;
    }

private:
    static constexpr int ServerSuccess = 1;

    int mStatus = EasRequestStatus::RequestStatusSuccess;
    int mFailure = EasRequestStatus::RequestStatusSuccess;
};
