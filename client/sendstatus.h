// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class DaemonRequest;
class RequestRun;

/** What the ends of a request to send a message mean for its sender. */
namespace SendStatus {

/** Has the run explain the failures of sending. */
void explain(RequestRun &run);

/** The server no longer has the original of a reply or a forward, so that the engine sends the whole. */
bool isSentWhole(const DaemonRequest &request);
/** Whether the server may have had the message although its answer did not come; by how the run judges the
 * request. */
bool mayHaveGone(const DaemonRequest &request, int exitStatus);

} // namespace SendStatus
