// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/emailcontent.h"

namespace Simulator {

/** A message that answers or forwards another one, with that other one below its text as a server puts it
 * there. Other bytes of the message, its attachments for one, stay. */
namespace SourceQuote {

/** The source as text. */
QByteArray replied(const QByteArray &message, const EmailContent &source);
/** The source as text and its attachments. */
QByteArray forwarded(const QByteArray &message, const EmailContent &source);

} // namespace SourceQuote
} // namespace Simulator
