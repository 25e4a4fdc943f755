// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailmessage.h>

/**
 * What a message's body is, as the mail store notes it beside the message.
 *
 * Revisions of the store differ: the type has two names, and the later ones deprecate the note, which the
 * earlier ones need. All of that stands here.
 */
namespace MailContentKind {

using Kind = decltype(QMailMessageMetaData::HtmlContent);

Kind of(const QMailMessageMetaData &message);
void set(QMailMessageMetaData &message, Kind kind);

} // namespace MailContentKind
