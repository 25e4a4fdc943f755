// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "integration/statusscene.h"

#include <memory>

/** Everything that a device asks of a server, each at one command where the server may want something first.
 */
namespace DemandScene {

struct Work
{
    const char *name;
    /** The command that is answered with the demand. */
    const char *command;
    /** So many of them pass before. */
    int passing;
    /** Brings both sides to where the work begins; false if that failed. */
    std::function<bool(SyncTestBed &)> prepare;
    /** Begins it; the identifier of the request. */
    std::function<qulonglong(SyncTestBed &)> start;
    /** Whether both sides are as they should be once it went well. */
    std::function<bool(SyncTestBed &)> isDone;
    const char *version = "14.1";
    /** Whether the command goes out once more after the demand was met, or the work goes on without it. */
    bool isRepeated = true;
};

const QList<Work> &works();

/** The device that does this work, with all services. */
std::unique_ptr<SyncTestBed> bedFor(const Work &work);

/** Has the command of the work answered like this, once or for ever. */
void answer(SyncTestBed &bed, const Work &work, const Simulator::Override &override, int times);

/** The server hands out a policy that every device meets, and does not look at the keys of commands. */
void offerPolicy(SyncTestBed &bed);

} // namespace DemandScene
