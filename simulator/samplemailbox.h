// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/mailbox.h"

namespace Simulator {

/**
 * A mailbox as people have them, for demonstrations: HTML, nested multiparts, attachments (one of about 300
 * KB), an inline image, non-ASCII headers and folder names, a meeting request, events of these weeks,
 * contacts. All messages are a few days old at most.
 */
namespace SampleMailbox {

/** Returns the number of messages. */
int fill(Mailbox &mailbox);

} // namespace SampleMailbox
} // namespace Simulator
